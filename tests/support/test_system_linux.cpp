// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "tests/support/test_system.h"

#include "common/error.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <csignal>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

namespace folidex::test {

namespace {

constexpr uid_t kNobody = 65534;
constexpr rlim_t kSmallFile = 1 << 20;
constexpr rlim_t kLongestRun = 20;

mode_t mode_for(Rights rights) {
    return rights == Rights::kRead ? 0555 : 0;
}

void set_mode(const QString& path, mode_t mode) {
    if (::chmod(QFile::encodeName(path).constData(), mode) != 0)
        qFatal("cannot change the rights to %s", qPrintable(path));
}

void open_folders_above(const QString& path) {
    for (QFileInfo folder(QFileInfo(path).path());
         folder.ownerId() == 0 && folder.filePath().startsWith(QDir::tempPath() + u'/');
         folder.setFile(folder.path()))
        set_mode(folder.filePath(), 0777);
}

} // namespace

struct LimitedRights::State {
    QString path;
    mode_t before = 0;
    bool dropped = false;
};

LimitedRights::LimitedRights(const QString& path, Rights rights)
    : state_(std::make_unique<State>()) {
    struct stat found {};
    if (::stat(QFile::encodeName(path).constData(), &found) != 0)
        qFatal("there is no %s", qPrintable(path));
    state_->path = path;
    state_->before = found.st_mode & 07777;
    set_mode(path, mode_for(rights));
    if (::geteuid() != 0)
        return;
    open_folders_above(path);
    // The real one too, which access() asks; the saved one is the way back.
    state_->dropped = ::setresuid(kNobody, kNobody, 0) == 0;
}

LimitedRights::~LimitedRights() {
    if (state_->dropped && ::setresuid(0, 0, 0) != 0)
        ::_exit(99);
    if (QFileInfo::exists(state_->path))
        set_mode(state_->path, state_->before);
}

struct SmallDisk::State {
    QTemporaryDir folder;
    rlimit before{};
    void (*former_handler)(int) = nullptr;
};

SmallDisk::SmallDisk() : state_(std::make_unique<State>()) {
    state_->former_handler = std::signal(SIGXFSZ, SIG_IGN);
    ::getrlimit(RLIMIT_FSIZE, &state_->before);
    rlimit limit = state_->before;
    limit.rlim_cur = kSmallFile;
    ::setrlimit(RLIMIT_FSIZE, &limit);
}

SmallDisk::~SmallDisk() {
    ::setrlimit(RLIMIT_FSIZE, &state_->before);
    std::signal(SIGXFSZ, state_->former_handler);
}

QString SmallDisk::folder() const {
    return state_->folder.path();
}

QString SmallDisk::full_file() const {
    return QStringLiteral("/dev/full");
}

int SmallDisk::error_number() const {
    return kInternalError;
}

struct AllUsersFolder::State {
    QByteArray before;
};

AllUsersFolder::AllUsersFolder(const QString& path) : state_(std::make_unique<State>()) {
    state_->before = qgetenv("XDG_DATA_HOME");
    qputenv("XDG_DATA_HOME", QFile::encodeName(path));
}

AllUsersFolder::~AllUsersFolder() {
    if (state_->before.isNull())
        qunsetenv("XDG_DATA_HOME");
    else
        qputenv("XDG_DATA_HOME", state_->before);
}

// Neither the environment nor a home names one, and the system's own belongs to superusers.
struct NoAllUsersFolder::State {
    QTemporaryDir folder;
    LimitedRights no_superuser{folder.path(), Rights::kRead};
    AllUsersFolder none{QString()};
    QByteArray home = qgetenv("HOME");
};

NoAllUsersFolder::NoAllUsersFolder() : state_(std::make_unique<State>()) {
    qputenv("HOME", "/");
}

NoAllUsersFolder::~NoAllUsersFolder() {
    qputenv("HOME", state_->home);
}

TemporaryFolder::TemporaryFolder(const QString& path) : before_(qgetenv("TMPDIR")) {
    qputenv("TMPDIR", QFile::encodeName(path));
}

TemporaryFolder::~TemporaryFolder() {
    if (before_.isNull())
        qunsetenv("TMPDIR");
    else
        qputenv("TMPDIR", before_);
}

Said run_tool(const QString& tool, const QStringList& arguments) {
    return run(tool, arguments);
}

bool is_private(const QFileInfo& file) {
    const auto others = QFile::ReadGroup | QFile::WriteGroup | QFile::ReadOther | QFile::WriteOther;
    return file.permissions() & QFile::ReadOwner && !(file.permissions() & others);
}

void fail_quietly() {
    const rlimit no_core{0, 0};
    ::setrlimit(RLIMIT_CORE, &no_core);
    const rlimit no_endless_loop{kLongestRun, kLongestRun};
    ::setrlimit(RLIMIT_CPU, &no_endless_loop);
}

qint64 peak_memory_kb() {
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly))
        return 0;
    for (const QByteArray& line : status.readAll().split('\n'))
        if (line.startsWith("VmHWM:"))
            return line.mid(6).trimmed().split(' ').first().toLongLong();
    return 0;
}

} // namespace folidex::test
