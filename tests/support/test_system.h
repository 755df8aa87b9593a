// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QByteArray>
#include <QFileInfo>
#include <QString>
#include <QStringList>
#include <memory>

namespace folidex::test {

/// What tests ask of the system; one source per system.

enum class Rights { kNone, kRead };

/// While it lives, a file or folder can only be read, or not even that; in such a folder nothing
/// can be made, replaced or deleted. Superusers are above that: on Linux the test gives its rights
/// up meanwhile, and the folders above are opened to everybody; on Windows it is not run as one.
class LimitedRights {
public:
    LimitedRights(const QString& path, Rights rights);
    ~LimitedRights();
    LimitedRights(const LimitedRights&) = delete;
    LimitedRights& operator=(const LimitedRights&) = delete;

private:
    struct State;
    std::unique_ptr<State> state_;
};

/// While it lives, a folder on a disk that has no room for a file of more than a megabyte. On
/// Linux no file anywhere can become larger; on Windows the folder is one on a disk of that size,
/// which the environment names as FOLIDEX_SMALL_DISK.
class SmallDisk {
public:
    SmallDisk();
    ~SmallDisk();
    SmallDisk(const SmallDisk&) = delete;
    SmallDisk& operator=(const SmallDisk&) = delete;

    QString folder() const;
    /// The name of a file that opens for writing and has no room for a single byte.
    QString full_file() const;
    /// The number of the failure to write there: Linux tells a file that is too large from a disk
    /// that is full.
    int error_number() const;

private:
    struct State;
    std::unique_ptr<State> state_;
};

/// While it lives, the system names this folder as that of all users' application data.
class AllUsersFolder {
public:
    explicit AllUsersFolder(const QString& path);
    ~AllUsersFolder();
    AllUsersFolder(const AllUsersFolder&) = delete;
    AllUsersFolder& operator=(const AllUsersFolder&) = delete;

private:
    struct State;
    std::unique_ptr<State> state_;
};

/// While it lives, the system cannot name a folder of all users' application data.
class NoAllUsersFolder {
public:
    NoAllUsersFolder();
    ~NoAllUsersFolder();
    NoAllUsersFolder(const NoAllUsersFolder&) = delete;
    NoAllUsersFolder& operator=(const NoAllUsersFolder&) = delete;

private:
    struct State;
    std::unique_ptr<State> state_;
};

/// While it lives, the system names this folder as that of temporary files; it need not exist.
class TemporaryFolder {
public:
    explicit TemporaryFolder(const QString& path);
    ~TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

private:
    QByteArray before_;
};

/// What a program said on both its outputs, and its exit code; -1 when it could not be run.
struct Said {
    int exit_code = -1;
    QString text;
};

/// Runs one of the project's own programs.
Said run(const QString& program, const QStringList& arguments);
/// Runs a tool that looks into files, such as qpdf. On Windows it is asked for in the folder that
/// the environment names as FOLIDEX_TOOLS, where tests/windows/tools_for_tests runs it.
Said run_tool(const QString& tool, const QStringList& arguments);

/// Whether only this user can read a file: by its mode, or on Windows by lying in the user's own
/// profile, whose rights it takes over.
bool is_private(const QFileInfo& file);

/// For a program that is going to fail: no window of the system's, no core file, no endless loop.
void fail_quietly();

/// The largest amount of memory that this process has had, in kilobytes.
qint64 peak_memory_kb();

} // namespace folidex::test
