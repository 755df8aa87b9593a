// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <sys/stat.h>
#include <unistd.h>

namespace folidex::test {

/// Gives up the superuser's rights while it lives, so that file permissions mean something when
/// the tests run as root. A folder that the test works in is opened to everybody first.
class OrdinaryUser {
public:
    explicit OrdinaryUser(const char* open_folder) {
        if (::geteuid() != 0)
            return;
        ::chmod(open_folder, 0777);
        dropped_ = ::seteuid(kNobody) == 0;
    }
    ~OrdinaryUser() {
        if (dropped_ && ::seteuid(0) != 0)
            ::_exit(99);
    }
    OrdinaryUser(const OrdinaryUser&) = delete;
    OrdinaryUser& operator=(const OrdinaryUser&) = delete;

private:
    static constexpr uid_t kNobody = 65534;
    bool dropped_ = false;
};

} // namespace folidex::test
