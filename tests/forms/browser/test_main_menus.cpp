// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "app/process_values.h"
#include "browser/frmAbout.h"
#include "common/drop_menu.h"
#include "common/error_trap.h"
#include "common/pop_up_menu.h"
#include "controls/active_link.h"
#include "controls/grid.h"
#include "controls/tag_combo.h"
#include "data/database.h"
#include "platform/shell.h"
#include "tests/forms/browser/main_window.h"

#include <QApplication>
#include <QCheckBox>
#include <QLabel>
#include <QPushButton>
#include <QTest>
#include <QToolBar>

using namespace folidex;
using namespace folidex::test;
using namespace Qt::StringLiterals;

/// The Maintenance and Help menus and what hangs on them.
class TestMainMenus : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { main_ = std::make_unique<MainWindow>(); }
    void cleanup();

    void maintenance_has_its_items_in_order();
    void help_has_its_items_in_order();
    void the_check_mark_shows_the_double_click_action_data();
    void the_check_mark_shows_the_double_click_action();
    void choosing_an_action_stores_it();
    void the_heading_does_nothing();
    void a_deleted_tag_leaves_the_chosen_tags_but_not_the_results();
    void an_emptied_catalogue_empties_the_chosen_tags();
    void tag_maintenance_refills_the_combo();
    void a_renamed_tag_keeps_its_text_until_it_is_chosen_again();
    void data_location_closes_the_window_and_shows_the_form();
    void help_and_support_open_their_pages();
    void the_about_box_shows_the_version();

private:
    void open_menu(const QString& button);
    void pick(const QString& key);
    QStringList captions() const;

    std::unique_ptr<MainWindow> main_;
};

void TestMainMenus::cleanup() {
    const bool as_planned = main_->boxes.verify();
    const QList<int> ended = main_->ended;
    main_.reset();
    QVERIFY(as_planned);
    QCOMPARE(ended, QList<int>{});
}

void TestMainMenus::open_menu(const QString& button) {
    for (QAction* action : (*main_)->TB1->actions())
        if (action->objectName() == button)
            QTest::mouseClick((*main_)->TB1->widgetForAction(action), Qt::LeftButton);
    QTRY_VERIFY((*main_)->Dmnu->isVisible());
}

void TestMainMenus::pick(const QString& key) {
    const qsizetype index = pop_keys.indexOf(key);
    QVERIFY2(index > 0, qPrintable(key));
    (*main_)->Dmnu->hide();
    Q_EMIT(*main_)->Dmnu->ItemClick(static_cast<int>(index));
}

QStringList TestMainMenus::captions() const {
    QStringList texts;
    for (int index = 1; index <= (*main_)->Dmnu->ItemCount(); ++index)
        texts.append((*main_)->Dmnu->ItemCaption(index));
    return texts;
}

void TestMainMenus::maintenance_has_its_items_in_order() {
    main_->open();
    open_menu(u"Maintenance"_s);
    QCOMPARE(captions(), (QStringList{u"When double clicking on a file..."_s, u" -> Edit Scan"_s,
                                      u" -> Open PDF"_s, u" -> Locate PDF"_s, u"Tag Maintenance"_s,
                                      u"Data Location"_s}));
    QCOMPARE(pop_keys.mid(1, 6),
             (QStringList{u"mnuAddFile"_s, u"mnuDoubleClickEdit"_s, u"mnuDoubleClickOpen"_s,
                          u"mnuDoubleClickLocate"_s, u"mnuTags"_s, u"mnuData"_s}));
    QCOMPARE(pop_count, 20);
    for (int index = 1; index <= 6; ++index) {
        QCOMPARE((*main_)->Dmnu->item_fore_color(index), QColor(128, 128, 128));
        QVERIFY((*main_)->Dmnu->item_enabled(index));
    }
}

void TestMainMenus::help_has_its_items_in_order() {
    main_->open();
    open_menu(u"Help"_s);
    QCOMPARE(captions(), (QStringList{u"Online Help"_s, u"Get Support"_s, u"About Folidex"_s}));
    QCOMPARE(pop_keys.mid(1, 3), (QStringList{u"mnuHelp"_s, u"mnuSupport"_s, u"mnuAbout"_s}));
    QCOMPARE(pop_count, 10);
}

void TestMainMenus::the_check_mark_shows_the_double_click_action_data() {
    QTest::addColumn<QString>("action");
    QTest::addColumn<int>("checked");
    QTest::newRow("never set") << QString() << 2;
    QTest::newRow("Edit") << u"Edit"_s << 2;
    QTest::newRow("Open") << u"Open"_s << 3;
    QTest::newRow("Locate") << u"Locate"_s << 4;
}

void TestMainMenus::the_check_mark_shows_the_double_click_action() {
    QFETCH(QString, action);
    QFETCH(int, checked);
    main_->open();
    if (!action.isEmpty())
        main_->set_preference(u"DoubleClick"_s, action);
    open_menu(u"Maintenance"_s);
    for (int index = 1; index <= 6; ++index)
        QCOMPARE((*main_)->Dmnu->item_checked(index), index == checked);
}

void TestMainMenus::choosing_an_action_stores_it() {
    main_->open();
    for (const QString& action : {u"Open"_s, u"Locate"_s, u"Edit"_s}) {
        open_menu(u"Maintenance"_s);
        pick(u"mnuDoubleClick"_s + action);
        QCOMPARE(main_->preference(u"DoubleClick"_s), action);
    }
}

void TestMainMenus::the_heading_does_nothing() {
    main_->open();
    open_menu(u"Maintenance"_s);
    pick(u"mnuAddFile"_s);
    QCOMPARE(main_->preference(u"DoubleClick"_s), QString());
    QVERIFY(main_->window->isVisible());
}

void TestMainMenus::a_deleted_tag_leaves_the_chosen_tags_but_not_the_results() {
    const int bills = main_->station.add_tag(u"Bills"_s);
    const int home = main_->station.add_tag(u"Home"_s);
    main_->station.add_document(u"Power"_s, MainWindow::kDay, {bills});
    main_->station.add_document(u"Rent"_s, MainWindow::kDay, {home});
    main_->open();
    (*main_)->chkDates->setChecked(true);
    main_->choose(u"Bills"_s);
    main_->choose(u"Home"_s);
    main_->in_tags = [bills] {
        database().execute(u"DELETE * FROM tags where link = "_s + QString::number(bills));
    };
    open_menu(u"Maintenance"_s);
    pick(u"mnuTags"_s);
    QCOMPARE(main_->tag_catalogues, 1);
    QCOMPARE(main_->chosen(), QStringList{u"Home"_s});
    QCOMPARE(main_->documents(), (QStringList{u"Power"_s, u"Rent"_s}));
    (*main_)->chkDates->setChecked(false);
    (*main_)->chkDates->setChecked(true);
    QCOMPARE(main_->documents(), QStringList{u"Rent"_s});
}

void TestMainMenus::an_emptied_catalogue_empties_the_chosen_tags() {
    main_->station.add_tag(u"Bills"_s);
    main_->station.add_tag(u"Home"_s);
    main_->open();
    main_->choose(u"Bills"_s);
    main_->choose(u"Home"_s);
    main_->in_tags = [] { database().execute(u"DELETE * FROM tags"_s); };
    open_menu(u"Maintenance"_s);
    pick(u"mnuTags"_s);
    QCOMPARE(main_->chosen(), QStringList{});
    QCOMPARE((*main_)->cmbTags->item_count(), 0);
    QCOMPARE((*main_)->fgL->viewport()->findChild<QLabel*>()->text(), u"No tag chosen yet"_s);
    QVERIFY((*main_)->fgL->viewport()->findChild<QLabel*>()->isVisible());
}

void TestMainMenus::tag_maintenance_refills_the_combo() {
    main_->open();
    main_->in_tags = [this] { main_->station.add_tag(u"Garden"_s); };
    open_menu(u"Maintenance"_s);
    pick(u"mnuTags"_s);
    QCOMPARE((*main_)->cmbTags->item_count(), 1);
    QCOMPARE((*main_)->cmbTags->item(0).description, u"Garden"_s);
}

void TestMainMenus::a_renamed_tag_keeps_its_text_until_it_is_chosen_again() {
    const int bills = main_->station.add_tag(u"Bills"_s);
    main_->open();
    main_->choose(u"Bills"_s);
    main_->in_tags = [bills] {
        database().execute(u"UPDATE tags SET Description = 'Invoices' where link = "_s +
                           QString::number(bills));
    };
    open_menu(u"Maintenance"_s);
    pick(u"mnuTags"_s);
    QCOMPARE(main_->chosen(), QStringList{u"Bills"_s});
    QCOMPARE((*main_)->cmbTags->item(0).description, u"Invoices"_s);
}

void TestMainMenus::data_location_closes_the_window_and_shows_the_form() {
    main_->open();
    open_menu(u"Maintenance"_s);
    pick(u"mnuData"_s);
    QCOMPARE(main_->data_locations, 1);
    QTRY_VERIFY(main_->window.isNull());
}

void TestMainMenus::help_and_support_open_their_pages() {
    main_->open();
    open_menu(u"Help"_s);
    pick(u"mnuHelp"_s);
    QCOMPARE((*main_)->AL1->mode(), static_cast<int>(ActiveLink::kWebAddress));
    open_menu(u"Help"_s);
    pick(u"mnuSupport"_s);
    QCOMPARE(main_->opened,
             (QStringList{site_page(u"/help/index.html"_s), site_page(u"/support/index.html"_s)}));
}

void TestMainMenus::the_about_box_shows_the_version() {
    main_->open();
    open_menu(u"Help"_s);
    QString version;
    later(main_->window, 0, [&] {
        auto* about = qobject_cast<frmAbout*>(QApplication::activeModalWidget());
        if (about == nullptr)
            return;
        version = about->findChild<QLabel*>(u"lblVersion"_s)->text();
        QTest::mouseClick(about->findChild<QPushButton*>(u"cmdOK"_s), Qt::LeftButton);
    });
    pick(u"mnuAbout"_s);
    QCOMPARE(version, QStringLiteral("Version %1.%2.%3")
                          .arg(FOLIDEX_VERSION_MAJOR)
                          .arg(FOLIDEX_VERSION_MINOR)
                          .arg(FOLIDEX_VERSION_REVISION));
}

QTEST_MAIN(TestMainMenus)
#include "test_main_menus.moc"
