// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "app/preferences.h"
#include "common/error_trap.h"
#include "platform/shell.h"
#include "tests/support/test_system.h"

#include <windows.h>

#include <shlobj.h>

#include <commctrl.h>

#include <QDir>
#include <QRegularExpression>
#include <QSettings>
#include <QTemporaryDir>
#include <QTest>
#include <functional>

using namespace folidex;
using namespace Qt::StringLiterals;

namespace {

constexpr int kPatience = 100'000;

/// While it lives, files of a kind have a program that opens them: by the verb that is the
/// kind's own, and by no other. It copies the file to the place that is told.
class KindOfFile {
public:
    KindOfFile(const QString& suffix, const QString& verb, const QString& copy) {
        const QString command =
            u"cmd.exe /c copy \"%1\" \"%2\""_s.arg(u"%1"_s, QDir::toNativeSeparators(copy));
        classes_.setValue(suffix + u"/."_s, kName);
        classes_.setValue(kName + u"/shell/."_s, verb);
        classes_.setValue(kName + u"/shell/%1/command/."_s.arg(verb), command);
        classes_.sync();
        suffix_ = suffix;
    }
    ~KindOfFile() {
        classes_.remove(suffix_);
        classes_.remove(kName);
    }
    KindOfFile(const KindOfFile&) = delete;
    KindOfFile& operator=(const KindOfFile&) = delete;

private:
    const QString kName = u"Folidex.Test.Kind"_s;
    QSettings classes_{u"HKEY_LOCAL_MACHINE\\Software\\Classes"_s, QSettings::NativeFormat};
    QString suffix_;
};

/// While it lives, the first of the system's dialogs that this thread shows is handed to somebody
/// who answers it.
class Answer {
public:
    explicit Answer(std::function<void(HWND)> how) {
        how_ = std::move(how);
        // The dialog's own loop hands timers on.
        timer_ = SetTimer(nullptr, 0, 20, look);
    }
    ~Answer() {
        KillTimer(nullptr, timer_);
        how_ = nullptr;
    }
    Answer(const Answer&) = delete;
    Answer& operator=(const Answer&) = delete;

private:
    static void CALLBACK look(HWND, UINT, UINT_PTR, DWORD) {
        EnumThreadWindows(GetCurrentThreadId(), try_window, 0);
    }
    static BOOL CALLBACK try_window(HWND window, LPARAM) {
        wchar_t kind[8] = {};
        GetClassNameW(window, kind, std::size(kind));
        if (std::wstring_view(kind) != L"#32770" || !IsWindowVisible(window))
            return TRUE;
        if (const auto how = std::exchange(how_, nullptr))
            how(window);
        return FALSE;
    }

    static inline std::function<void(HWND)> how_;
    UINT_PTR timer_;
};

QString text_of(HWND window) {
    wchar_t text[1024] = {};
    GetWindowTextW(window, text, std::size(text));
    return QString::fromWCharArray(text);
}

/// The texts that a dialog shows, its title first.
QStringList texts_of(HWND dialog) {
    QStringList texts{text_of(dialog)};
    EnumChildWindows(
        dialog,
        [](HWND child, LPARAM list) -> BOOL {
            reinterpret_cast<QStringList*>(list)->append(text_of(child));
            return TRUE;
        },
        reinterpret_cast<LPARAM>(&texts));
    return texts;
}

void press(HWND dialog, int button) {
    SendMessageW(dialog, WM_COMMAND, static_cast<WPARAM>(button), 0);
}

/// Goes to a place of the shell's in the folder picker; whether it may be taken.
bool go_to(HWND picker, int folder_id) {
    PIDLIST_ABSOLUTE place = nullptr;
    if (FAILED(SHGetSpecialFolderLocation(nullptr, folder_id, &place)))
        return false;
    SendMessageW(picker, BFFM_SETSELECTIONW, FALSE, reinterpret_cast<LPARAM>(place));
    CoTaskMemFree(place);
    return IsWindowEnabled(GetDlgItem(picker, IDOK));
}

} // namespace

class TestShellWindows : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void folder_35_is_the_program_data_of_all_users() {
        QCOMPARE(SpecialFolder(kCommonAppData).toLower(),
                 qEnvironmentVariable("ProgramData").toLower());
        QVERIFY(QFileInfo(SpecialFolder(kCommonAppData)).isDir());
    }

    void a_redirected_folder_of_all_users_is_followed() {
        const QTemporaryDir elsewhere;
        const QString given = QDir::toNativeSeparators(elsewhere.filePath(u"Παντες 共有"_s));
        const test::AllUsersFolder all_users(given);
        QCOMPARE(shell_folder(kCommonAppData), given);
    }

    void a_number_that_names_no_folder_is_error_513() {
        const auto report = std::exchange(show_report, [](const Report&) {});
        int number = 0;
        QString description;
        show_report = [&](const Report& shown) {
            number = shown.number;
            description = shown.description;
        };
        QVERIFY_EXCEPTION_THROWN(SpecialFolder(0x7ff), Error);
        show_report = report;
        QCOMPARE(number, 513);
        QCOMPARE(description, u"The folder path could not be detected"_s);
    }

    void a_file_is_opened_in_the_way_that_its_kind_prefers_data() {
        QTest::addColumn<QString>("verb");
        QTest::newRow("the usual one") << u"open"_s;
        QTest::newRow("one of its own") << u"view"_s;
    }
    void a_file_is_opened_in_the_way_that_its_kind_prefers() {
        QFETCH(QString, verb);
        const QTemporaryDir folder;
        const QString file = folder.filePath(u"Miete für März.folidextest"_s);
        const QString copy = folder.filePath(u"copy"_s);
        QVERIFY(QFile(file).open(QIODevice::WriteOnly));
        const KindOfFile kind(u".folidextest"_s, verb, copy);
        QString told;
        const Answer close([&](HWND box) {
            told = texts_of(box).join(u'|');
            press(box, IDCANCEL);
            press(box, IDOK);
        });
        open_with_desktop(file);
        QCOMPARE(told, QString());
        QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(copy), kPatience);
    }

    void of_a_missing_file_the_shell_tells_itself() {
        const QTemporaryDir folder;
        QStringList told;
        const Answer close([&](HWND box) {
            told = texts_of(box);
            press(box, IDOK);
        });
        open_with_desktop(folder.filePath(u"gone.pdf"_s));
        // Windows names the file, wine does not.
        QVERIFY2(told.join(u' ').contains(QRegularExpression(
                     u"not found|cannot find"_s, QRegularExpression::CaseInsensitiveOption)),
                 qPrintable(told.join(u'|')));
    }

    void the_folder_picker_has_its_old_title_and_takes_folders_of_the_disk_alone() {
        QStringList told;
        bool takes_computer = true;
        bool takes_folder = false;
        const Answer choose([&](HWND picker) {
            told = texts_of(picker);
            takes_computer = go_to(picker, CSIDL_DRIVES);
            takes_folder = go_to(picker, CSIDL_WINDOWS);
            press(picker, IDOK);
        });
        const auto picked = pick_folder(nullptr, u"unused"_s);
        QVERIFY2(told.mid(1).contains(u"C:\\"_s), qPrintable(told.join(u'|')));
        QVERIFY(!takes_computer);
        QVERIFY(takes_folder);
        QVERIFY(picked.has_value());
        QCOMPARE(picked->toLower(), shell_folder(CSIDL_WINDOWS).toLower());
    }

    void a_folder_picker_that_is_cancelled_names_none() {
        const Answer cancel([](HWND picker) { press(picker, IDCANCEL); });
        QVERIFY(!pick_folder(nullptr, u"unused"_s));
    }
};

QTEST_GUILESS_MAIN(TestShellWindows)
#include "test_shell_windows.moc"
