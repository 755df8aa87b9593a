// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "app/Module1.h"
#include "app/application.h"
#include "app/process_values.h"
#include "common/error_trap.h"
#include "common/message_box.h"
#include "data/database.h"
#include "platform/safe_file.h"
#include "tests/support/planned_boxes.h"
#include "tests/support/test_station.h"
#include "tests/support/test_system.h"

#include <QLineEdit>
#include <QMenu>
#include <QPointer>
#include <QPushButton>
#include <QRadioButton>
#include <QTest>
#include <QTimer>
#include <QToolBar>

using namespace folidex;
using namespace folidex::test;
using namespace Qt::StringLiterals;

/// When the program's own event loop ends and when it goes on.
class TestApplication : public QObject {
    Q_OBJECT

    static constexpr int kEnded = 0;
    static constexpr int kReached = 7;
    static constexpr int kNeverReached = 99;
    static constexpr int kPatience = 60'000;

    std::unique_ptr<QTemporaryDir> root_;
    std::unique_ptr<AllUsersFolder> all_users_;

    QString at(const QString& name) const {
        return QDir::toNativeSeparators(root_->filePath(name));
    }
    QString preferences_file() const { return at(u"all/Brightmoor/folidex_Preferences.xml"_s); }
    QString recorded() const {
        PreferencesDocument saved;
        return saved.load(preferences_file()) ? saved.child_text(u"dblocation"_s) : u"<no file>"_s;
    }
    void record_a_data_folder() const {
        create_folder_at(at(u"data"_s));
        copy_file(template_database(), at(u"data/db.mdb"_s));
        PreferencesDocument document;
        document.set_root_tag(u"folidex"_s);
        document.set_child_text(u"dblocation"_s, at(u"data"_s));
        QDir().mkpath(at(u"all/Brightmoor"_s));
        document.save(preferences_file());
    }
    static QWidget* window(const QString& name) {
        for (QWidget* shown : QApplication::topLevelWidgets())
            if (shown->objectName() == name && shown->isVisible())
                return shown;
        return nullptr;
    }
    static void press(const QString& form, const QString& button) {
        QTest::mouseClick(window(form)->findChild<QPushButton*>(button), Qt::LeftButton);
    }
    static void choose_data_location() {
        QWidget* main = window(u"frmMain"_s);
        main->findChild<QToolBar*>(u"TB1"_s)->findChild<QAction*>(u"Maintenance"_s)->trigger();
        auto* menu = main->findChild<QMenu*>(u"Dmnu"_s);
        menu->hide();
        for (QAction* action : menu->actions())
            if (action->text() == u"Data Location")
                action->trigger();
    }
    /// Starts an action from the loop and runs it until the program ends or a state is reached.
    static int run(std::function<void()> action, const std::function<bool()>& reached) {
        QTimer look;
        int times = 0;
        on(&look, &QTimer::timeout, &look, [&] {
            times = reached() ? times + 1 : 0;
            // Twice: what was posted on the way there, such as the program's end, comes between.
            if (times == 2)
                QApplication::exit(kReached);
        });
        look.start(10);
        later(&look, kPatience, [] { QApplication::exit(kNeverReached); });
        later(&look, 0, std::move(action));
        return QApplication::exec();
    }
    static bool never() { return false; }

private Q_SLOTS:
    void init() {
        root_ = std::make_unique<QTemporaryDir>();
        all_users_ = std::make_unique<AllUsersFolder>(at(u"all"_s));
        Preferences() = PreferencesDocument{};
        DbOpenError.clear();
        set_database(nullptr);
    }
    void cleanup() {
        QApplication::closeAllWindows();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        set_database(nullptr);
        all_users_.reset();
    }

    void leaving_the_location_form_ends_the_program_and_records_nothing_data() {
        QTest::addColumn<std::function<void()>>("leave");
        const auto form = [] { return window(u"frmLocateDatabase"_s); };
        QTest::newRow("Cancel") << std::function<void()>(
            [] { press(u"frmLocateDatabase"_s, u"cmdCancel"_s); });
        QTest::newRow("Escape") << std::function<void()>(
            [form] { QTest::keyClick(form(), Qt::Key_Escape); });
        QTest::newRow("the window's close button")
            << std::function<void()>([form] { form()->close(); });
    }

    void leaving_the_location_form_ends_the_program_and_records_nothing() {
        QFETCH(std::function<void()>, leave);
        PlannedBoxes no_boxes;
        outermost(Main);
        QCOMPARE(run(leave, never), kEnded);
        QCOMPARE(recorded(), QString());
        QVERIFY(no_boxes.verify());
    }

    void closing_the_main_window_ends_the_program() {
        record_a_data_folder();
        PlannedBoxes no_boxes;
        outermost(Main);
        QCOMPARE(run([] { window(u"frmMain"_s)->close(); }, never), kEnded);
        QVERIFY(no_boxes.verify());
    }

    void data_location_replaces_the_main_window_and_leads_back_to_it() {
        record_a_data_folder();
        PlannedBoxes no_boxes;
        outermost(Main);
        QCOMPARE(run(choose_data_location,
                     [] { return window(u"frmLocateDatabase"_s) && !window(u"frmMain"_s); }),
                 kReached);
        QCOMPARE(run([] { press(u"frmLocateDatabase"_s, u"cmdSave"_s); },
                     [] { return window(u"frmMain"_s) && !window(u"frmLocateDatabase"_s); }),
                 kReached);
        QCOMPARE(recorded(), at(u"data"_s));
        QVERIFY(no_boxes.verify());
    }

    void a_wrong_folder_brings_the_location_form_back_after_its_message() {
        PlannedBoxes boxes;
        boxes.expect_containing(u"Folidex cannot find or open your database file."_s, kOkOnly,
                                u"Folidex"_s);
        outermost(Main);
        const auto point_nowhere = [this] {
            QWidget* form = window(u"frmLocateDatabase"_s);
            form->findChild<QRadioButton*>(u"opt2"_s)->setChecked(true);
            form->findChild<QLineEdit*>(u"txtLocation2"_s)->setText(at(u"nowhere"_s));
            press(u"frmLocateDatabase"_s, u"cmdSave"_s);
        };
        QCOMPARE(run(point_nowhere,
                     [&] {
                         const QWidget* form = window(u"frmLocateDatabase"_s);
                         return form && !DbOpenError.isEmpty();
                     }),
                 kReached);
        QVERIFY(boxes.verify());
        QCOMPARE(recorded(), at(u"nowhere"_s));
    }

    void an_empty_folder_brings_the_location_form_back_without_a_message() {
        record_a_data_folder();
        QVERIFY(QFile::remove(at(u"data/db.mdb"_s)));
        {
            PlannedBoxes boxes;
            boxes.expect_containing(u"Folidex cannot find"_s, kOkOnly, u"Folidex"_s);
            outermost(Main);
            QVERIFY(boxes.verify());
        }
        PlannedBoxes no_boxes;
        const QPointer<QWidget> first = window(u"frmLocateDatabase"_s);
        const auto point_to_nothing = [] {
            window(u"frmLocateDatabase"_s)->findChild<QLineEdit*>(u"txtLocation2"_s)->clear();
            press(u"frmLocateDatabase"_s, u"cmdSave"_s);
        };
        QCOMPARE(run(point_to_nothing,
                     [&] {
                         const QWidget* form = window(u"frmLocateDatabase"_s);
                         return form && form != first;
                     }),
                 kReached);
        QVERIFY(no_boxes.verify());
        QCOMPARE(recorded(), QString());
        QVERIFY(DbOpenError.isEmpty());
    }
};

int main(int argc, char** argv) {
    Application application(argc, argv);
    TestApplication test;
    return QTest::qExec(&test, argc, argv);
}

#include "test_application.moc"
