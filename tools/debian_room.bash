# SPDX-FileCopyrightText: The Folidex authors
# SPDX-License-Identifier: Apache-2.0
#
# What the tools that work in a Debian 12 of their own share. Sourced, never run; the tool that
# sources it defines fail().

# mirror_of_this_machine [SUITE]: where this machine itself has the suite (bookworm) from, in either
# format of its source lists.
mirror_of_this_machine() {
    local suite=${1:-bookworm} file uri
    for file in /etc/apt/sources.list /etc/apt/sources.list.d/*.list; do
        [[ -r $file ]] || continue
        uri=$(sed -nE "s/^deb( +\[[^]]*\])? +([^ ]+) +$suite .*/\2/p" "$file" | head -n 1)
        [[ -z $uri ]] || { echo "$uri"; return; }
    done
    for file in /etc/apt/sources.list.d/*.sources; do
        [[ -r $file ]] || continue
        uri=$(awk -v suite="$suite" '/^URIs:/ { uri = $2 }
            /^Suites:/ { for (i = 2; i <= NF; i++) if ($i == suite) { print uri; exit } }' "$file")
        [[ -z $uri ]] || { echo "$uri"; return; }
    done
}

# What this machine's apt was told about proxies and the freshness of lists. sudo drops the proxy
# from the environment; who calls again as root hands it on as ROOM_APT_PROXY.
apt_settings_of_this_machine() {
    apt-config dump 2>/dev/null | grep -E \
        '^(Acquire::(http|https|ftp)::(Proxy|.*::Proxy)|Acquire::Check-(Valid-Until|Date)) ' || true
    local proxy=${http_proxy:-${ROOM_APT_PROXY:-}}
    [[ -z $proxy ]] || echo "Acquire::http::Proxy \"$proxy\";"
}

# need_tools TOOL...: each is a command and the package that has it.
need_tools() {
    local tool
    for tool in "$@"; do
        command -v "$tool" >/dev/null && continue
        apt-get -q update >/dev/null && DEBIAN_FRONTEND=noninteractive \
            apt-get -q -y install --no-install-recommends "$tool" >/dev/null || fail "there is no $tool and it could not be installed"
    done
}

# make_bare_debian FOLDER LOG PACKAGES: a minimal bookworm with some packages (joined by commas).
make_bare_debian() {
    local folder=$1 log=$2 packages=$3 mirror
    mirror=$(mirror_of_this_machine)
    debootstrap --variant=minbase --include="$packages" bookworm "$folder" \
        ${mirror:+"$mirror"} >"$log" 2>&1 || {
        tail -n 20 "$log" >&2
        fail "debootstrap failed; all of its output is in $log"
    }
    rm -f "$folder"/var/cache/apt/archives/*.deb
}

# Lets a room reach what this machine reaches.
connect_room() {
    local room=$1
    if [[ -e /etc/resolv.conf ]]; then cp -L /etc/resolv.conf "$room/etc/resolv.conf"; fi
    apt_settings_of_this_machine >"$room/etc/apt/apt.conf.d/90machine"
    echo 127.0.0.1 localhost "$(uname -n)" >"$room/etc/hosts"
}

mounted=()

# mount_into ROOM PLACE MOUNT-ARGUMENTS...
mount_into() {
    local room=$1 place=$1/$2
    shift 2
    mkdir -p "$place"
    mount "$@" "$place" || fail "cannot mount ${place#"$room"} (mount $*)"
    mounted+=("$place")
}

# /dev with nothing of the machine's own but what every program needs, and a /tmp.
mount_devices() {
    local room=$1 node
    mount_into "$room" dev -t tmpfs -o mode=755 tmpfs
    for node in null zero full random urandom tty; do
        touch "$room/dev/$node"
        mount --bind "/dev/$node" "$room/dev/$node" || fail "cannot mount /dev/$node"
        mounted+=("$room/dev/$node")
    done
    mount_into "$room" dev/pts -t devpts -o newinstance,ptmxmode=0666,mode=620 devpts
    ln -s pts/ptmx "$room/dev/ptmx"
    ln -s /proc/self/fd "$room/dev/fd"
    mount_into "$room" dev/shm -t tmpfs -o mode=1777 tmpfs
    mount_into "$room" tmp -t tmpfs -o mode=1777 tmpfs
}

# Unmounts what was mounted, the last first.
unmount_all() {
    local index
    for ((index = ${#mounted[@]} - 1; index >= 0; index--)); do
        umount "${mounted[index]}" 2>/dev/null || umount -l "${mounted[index]}" || true
    done
    mounted=()
}
