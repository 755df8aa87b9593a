// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "tests/support/test_system.h"

#include "common/error.h"

#include <windows.h>

#include <aclapi.h>
#include <psapi.h>

#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>
#include <array>
#include <vector>

namespace folidex::test {

using namespace Qt::StringLiterals;

namespace {

const wchar_t* wide(const QString& text) {
    return reinterpret_cast<const wchar_t*>(text.utf16());
}

constexpr int kPatience = 100'000;
constexpr const wchar_t* kShellFolders =
    L"Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\User Shell Folders";
constexpr const wchar_t* kAllUsersData = L"Common AppData";

// The older call: the newer one mixes in the rights of the folder above, even where told not to.
void set_access(const QString& path, ACL* list) {
    SECURITY_DESCRIPTOR descriptor{};
    InitializeSecurityDescriptor(&descriptor, SECURITY_DESCRIPTOR_REVISION);
    SetSecurityDescriptorDacl(&descriptor, TRUE, list, FALSE);
    SetSecurityDescriptorControl(&descriptor, SE_DACL_PROTECTED, SE_DACL_PROTECTED);
    if (!SetFileSecurityW(wide(QDir::toNativeSeparators(path)), DACL_SECURITY_INFORMATION,
                          &descriptor))
        qWarning("cannot change the rights to %s: %lu", qPrintable(path), GetLastError());
}

} // namespace

struct LimitedRights::State {
    QString path;
    PSECURITY_DESCRIPTOR before = nullptr;
    ACL* list_before = nullptr;
};

LimitedRights::LimitedRights(const QString& path, Rights rights)
    : state_(std::make_unique<State>()) {
    state_->path = path;
    if (GetNamedSecurityInfoW(wide(QDir::toNativeSeparators(path)), SE_FILE_OBJECT,
                              DACL_SECURITY_INFORMATION, nullptr, nullptr, &state_->list_before,
                              nullptr, &state_->before) != ERROR_SUCCESS)
        qFatal("cannot read the rights to %s", qPrintable(path));
    std::array<unsigned char, SECURITY_MAX_SID_SIZE> everybody{};
    DWORD size = static_cast<DWORD>(everybody.size());
    CreateWellKnownSid(WinWorldSid, nullptr, everybody.data(), &size);
    std::array<unsigned char, 256> room{};
    auto* list = reinterpret_cast<ACL*>(room.data());
    InitializeAcl(list, static_cast<DWORD>(room.size()), ACL_REVISION);
    if (rights == Rights::kRead)
        AddAccessAllowedAce(list, ACL_REVISION, FILE_GENERIC_READ | FILE_GENERIC_EXECUTE,
                            everybody.data());
    set_access(path, list);
}

LimitedRights::~LimitedRights() {
    if (QFileInfo::exists(state_->path))
        set_access(state_->path, state_->list_before);
    LocalFree(state_->before);
}

struct SmallDisk::State {
    explicit State(const QString& disk) : folder(disk + u"/folidex-XXXXXX"_s) {}
    QTemporaryDir folder;
};

SmallDisk::SmallDisk() {
    const QString disk = qEnvironmentVariable("FOLIDEX_SMALL_DISK");
    if (!QFileInfo(disk).isDir())
        qFatal("FOLIDEX_SMALL_DISK has to name a folder on a disk of a megabyte");
    state_ = std::make_unique<State>(disk);
}

SmallDisk::~SmallDisk() = default;

QString SmallDisk::folder() const {
    return state_->folder.path();
}

QString SmallDisk::full_file() const {
    QFile filler(folder() + u"/filler"_s);
    if (!filler.open(QIODevice::WriteOnly | QIODevice::Unbuffered))
        qFatal("cannot fill the small disk");
    for (qint64 size = 1 << 16; size > 0; size /= 2)
        while (filler.write(QByteArray(size, 'x')) == size) {
        }
    return folder() + u"/full"_s;
}

int SmallDisk::error_number() const {
    return kDiskFull;
}

struct AllUsersFolder::State {
    std::vector<wchar_t> before = std::vector<wchar_t>(MAX_PATH);

    static void set(const wchar_t* path) {
        const auto size = static_cast<DWORD>((wcslen(path) + 1) * sizeof(wchar_t));
        if (RegSetKeyValueW(HKEY_LOCAL_MACHINE, kShellFolders, kAllUsersData, REG_EXPAND_SZ, path,
                            size) != ERROR_SUCCESS)
            qFatal("this account may not redirect the folder of all users");
    }
};

AllUsersFolder::AllUsersFolder(const QString& path) : state_(std::make_unique<State>()) {
    auto size = static_cast<DWORD>(state_->before.size() * sizeof(wchar_t));
    if (RegGetValueW(HKEY_LOCAL_MACHINE, kShellFolders, kAllUsersData,
                     RRF_RT_REG_SZ | RRF_RT_REG_EXPAND_SZ | RRF_NOEXPAND, nullptr,
                     state_->before.data(), &size) != ERROR_SUCCESS)
        qFatal("Windows does not know the folder of all users");
    // Windows sets it up with the machine; a program never finds it missing.
    QDir().mkpath(path);
    State::set(wide(QDir::toNativeSeparators(path)));
}

AllUsersFolder::~AllUsersFolder() {
    State::set(state_->before.data());
}

// Windows names no folder that is not there.
struct NoAllUsersFolder::State {
    QTemporaryDir folder;
    AllUsersFolder gone{folder.path()};
};

NoAllUsersFolder::NoAllUsersFolder() : state_(std::make_unique<State>()) {
    state_->folder.remove();
}

NoAllUsersFolder::~NoAllUsersFolder() = default;

TemporaryFolder::TemporaryFolder(const QString& path) : before_(qgetenv("TMP")) {
    qputenv("TMP", QDir::toNativeSeparators(path).toLocal8Bit());
}

TemporaryFolder::~TemporaryFolder() {
    qputenv("TMP", before_);
}

// The order is written beside its name and renamed, and so is the answer: neither is ever half
// there when it is seen.
Said run_tool(const QString& tool, const QStringList& arguments) {
    const QTemporaryDir order(qEnvironmentVariable("FOLIDEX_TOOLS") + u"/order-XXXXXX"_s);
    const QString answer = order.filePath(u"answer"_s);
    QFile request(order.filePath(u"request.new"_s));
    if (!request.open(QIODevice::WriteOnly))
        return {-1, u"FOLIDEX_TOOLS names no folder to order tools in: "_s + request.errorString()};
    request.write((QStringList{tool} + arguments).join(u'\n').toUtf8());
    request.close();
    if (!request.rename(order.filePath(u"request"_s)) ||
        !QTest::qWaitFor([&] { return QFileInfo::exists(answer); }, kPatience))
        return {-1, tool + u": nobody answers in FOLIDEX_TOOLS"_s};
    QFile said(answer);
    if (!said.open(QIODevice::ReadOnly))
        return {-1, said.errorString()};
    const int exit_code = said.readLine().trimmed().toInt();
    return {exit_code, QString::fromUtf8(said.readAll())};
}

bool is_private(const QFileInfo& file) {
    const QString profile = QDir::fromNativeSeparators(qEnvironmentVariable("USERPROFILE")) + u'/';
    return file.exists() && file.absoluteFilePath().startsWith(profile, Qt::CaseInsensitive);
}

void fail_quietly() {
    SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX | SEM_NOOPENFILEERRORBOX);
}

qint64 peak_memory_kb() {
    PROCESS_MEMORY_COUNTERS counters{};
    if (!GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof counters))
        return 0;
    return static_cast<qint64>(counters.PeakWorkingSetSize) / 1024;
}

} // namespace folidex::test
