// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "app/preferences.h"
#include "app/process_values.h"
#include "common/drop_menu.h"
#include "controls/date_picker.h"
#include "controls/grid.h"
#include "controls/tag_combo.h"
#include "tests/forms/browser/main_window.h"

#include <QAccessible>
#include <QCheckBox>
#include <QFile>
#include <QGroupBox>
#include <QLabel>
#include <QPushButton>
#include <QScreen>
#include <QTest>
#include <QToolBar>

using namespace folidex;
using namespace folidex::test;
using namespace Qt::StringLiterals;

/// The main window as it stands on the screen: its layout, its toolbar, reaching everything by
/// keyboard, and closing it.
class TestMainLayout : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { main_ = std::make_unique<MainWindow>(); }
    void cleanup();

    void the_frames_follow_the_window_to_the_twip_data();
    void the_frames_follow_the_window_to_the_twip();
    void a_tiny_window_has_no_negative_sizes();
    void a_minimised_window_keeps_its_layout();
    void nothing_overlaps_with_a_large_font();
    void the_toolbar_has_its_buttons_in_order();
    void separators_do_nothing();
    void every_control_is_reached_with_the_tab_key_as_read();
    void controls_have_accessible_names();
    void the_window_opens_without_a_stored_position();
    void exit_writes_the_preferences_and_closes();
    void the_filter_survives_closing();

private:
    std::unique_ptr<MainWindow> main_;
};

namespace {

int pixels(double twips) {
    return qRound(qMax(twips, 0.0) / 15);
}

QRect in_window(const QWidget* widget) {
    return {widget->mapTo(widget->window(), QPoint()), widget->size()};
}

} // namespace

void TestMainLayout::cleanup() {
    const bool as_planned = main_->boxes.verify();
    const QList<int> ended = main_->ended;
    main_.reset();
    QVERIFY(as_planned);
    QCOMPARE(ended, QList<int>{});
}

void TestMainLayout::the_frames_follow_the_window_to_the_twip_data() {
    QTest::addColumn<QSize>("size");
    QTest::newRow("comfortable") << QSize(1000, 640);
    QTest::newRow("smallest") << QSize(860, 520);
    QTest::newRow("odd") << QSize(1237, 791);
}

void TestMainLayout::the_frames_follow_the_window_to_the_twip() {
    QFETCH(QSize, size);
    const frmMain& form = main_->open();
    main_->window->resize(size);
    QTRY_COMPARE(form.size(), size);
    const int height = size.height() * 15;
    const int width = size.width() * 15;
    QTRY_COMPARE(form.frL->height(), pixels(height - 1050));
    QCOMPARE(form.frR->height(), form.frL->height());
    QCOMPARE(form.frR->y(), form.frL->y());
    QCOMPARE(form.frR->width(), pixels(width - form.frL->width() * 15 - 330));
    QCOMPARE(form.fgL->width(), pixels(form.frL->width() * 15 - 370));
    QCOMPARE(form.fgL->height(), pixels(height - (form.fgL->y() + form.frL->y()) * 15 - 800));
    QCOMPARE(form.fgR->height(), pixels(height - (form.fgR->y() + form.frR->y()) * 15 - 800));
    QCOMPARE(form.fgR->width(), pixels(form.frR->width() * 15 - 200));
}

void TestMainLayout::a_tiny_window_has_no_negative_sizes() {
    const frmMain& form = main_->open();
    main_->window->setMinimumSize(1, 1);
    main_->window->resize(60, 40);
    QTRY_COMPARE(form.frL->height(), 0);
    QCOMPARE(form.frR->width(), 0);
    QCOMPARE(form.fgR->height(), 0);
    QCOMPARE(form.fgR->width(), 0);
}

void TestMainLayout::a_minimised_window_keeps_its_layout() {
    const frmMain& form = main_->open();
    const QRect before = form.frR->geometry();
    main_->window->setWindowState(Qt::WindowMinimized);
    QVERIFY(form.isMinimized());
    form.frR->resize(10, 10);
    main_->window->Form_Resize();
    QCOMPARE(form.frR->size(), QSize(10, 10));
    main_->window->setWindowState(Qt::WindowNoState);
    main_->window->Form_Resize();
    QCOMPARE(form.frR->geometry(), before);
}

void TestMainLayout::nothing_overlaps_with_a_large_font() {
    const frmMain& form = main_->open();
    QFont large = form.font();
    // Half as large again as desktops have it.
    large.setPointSizeF(13.5);
    main_->window->setFont(large);
    QTRY_COMPARE(form.chkDates->font().pointSizeF(), 13.5);
    const QList<QWidget*> column{
        form.TB1,  form.cmbTags, form.chkDates, form.dtFrom,
        form.dtTo, form.fgL,     form.Label1,   form.findChild<QWidget*>(u"StatusBar1"_s)};
    for (int i = 1; i < column.size(); ++i)
        QVERIFY2(in_window(column[i - 1]).bottom() < in_window(column[i]).top(),
                 qPrintable(column[i]->objectName()));
    for (const QWidget* widget :
         {static_cast<QWidget*>(form.cmdAdd), static_cast<QWidget*>(form.chkDates),
          static_cast<QWidget*>(form.dtFrom)})
        QVERIFY2(widget->width() >= widget->minimumSizeHint().width(),
                 qPrintable(widget->objectName()));
    QVERIFY(form.Label1->width() >=
            form.Label1->fontMetrics().horizontalAdvance(form.Label1->text()));
    for (const QWidget* widget :
         {static_cast<QWidget*>(form.dtFrom), static_cast<QWidget*>(form.Label1)})
        QVERIFY2(widget->height() >= widget->fontMetrics().height(),
                 qPrintable(widget->objectName()));
    QVERIFY(form.width() >=
            qMin(form.TB1->sizeHint().width(), form.screen()->availableSize().width()));
}

void TestMainLayout::the_toolbar_has_its_buttons_in_order() {
    const frmMain& form = main_->open();
    QStringList names;
    QStringList tips;
    for (const QAction* action : form.TB1->actions()) {
        names.append(action->objectName());
        tips.append(form.TB1->widgetForAction(const_cast<QAction*>(action))->toolTip());
    }
    QCOMPARE(names, (QStringList{u"New"_s, u"Edit"_s, u"Delete"_s, u"Button4"_s, u"Locate File"_s,
                                 u"Open File"_s, u"Button11"_s, u"Maintenance"_s, u"Button10"_s,
                                 u"Help"_s, u"Exit"_s}));
    QCOMPARE(tips, (QStringList{u"New Scan"_s, u"Edit Scan"_s, u"Delete Scan"_s, QString(),
                                QString(), u"Open in it's associated windows application"_s,
                                QString(), QString(), QString(), QString(), QString()}));
}

void TestMainLayout::separators_do_nothing() {
    main_->open();
    for (const QString& key : {u"Button4"_s, u"Button10"_s, u"Button11"_s}) {
        main_->window->TB1_ButtonClick(key);
        QVERIFY(main_->window->isVisible());
    }
    QCOMPARE(main_->captured, QList<int>{});
    main_->window->OsenXPToolBar1_Highlight();
}

void TestMainLayout::every_control_is_reached_with_the_tab_key_as_read() {
    main_->station.add_tag(u"Bills"_s);
    frmMain& form = main_->open();
    form.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&form));
    form.TB1->widgetForAction(form.TB1->actions().constFirst())->setFocus(Qt::TabFocusReason);
    QStringList reached;
    // A date field takes the key once for each of its three parts.
    for (int i = 0; i < 16 + 2 * 2; ++i) {
        QWidget* focused = QApplication::focusWidget();
        QVERIFY(focused != nullptr);
        while (focused->accessibleName().isEmpty())
            focused = focused->parentWidget();
        if (reached.isEmpty() || reached.constLast() != focused->accessibleName())
            reached.append(focused->accessibleName());
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    }
    QCOMPARE(reached, (QStringList{u"New"_s, u"Edit"_s, u"Delete"_s, u"Locate File"_s,
                                   u"Open File"_s, u"Maintenance"_s, u"Help"_s, u"Exit"_s,
                                   u"Tags"_s, u"Add"_s, u"All Dates"_s, u"From"_s, u"To"_s,
                                   u"Chosen tags"_s, u"Add All"_s, u"Documents"_s}));
}

void TestMainLayout::controls_have_accessible_names() {
    frmMain& form = main_->open();
    const QList<std::pair<QWidget*, QString>> expected{
        {form.cmbTags, u"Tags"_s},  {form.cmdAdd, u"Add"_s},     {form.chkDates, u"All Dates"_s},
        {form.dtFrom, u"From"_s},   {form.dtTo, u"To"_s},        {form.fgL, u"Chosen tags"_s},
        {form.fgR, u"Documents"_s}, {form.Label1, u"Add All"_s}, {form.frL, u"Filter"_s},
    };
    for (const auto& [widget, name] : expected) {
        const QAccessibleInterface* spoken = QAccessible::queryAccessibleInterface(widget);
        QVERIFY(spoken != nullptr);
        QCOMPARE(spoken->text(QAccessible::Name), name);
        QVERIFY2(!widget->objectName().isEmpty(), qPrintable(name));
    }
    QCOMPARE(form.frL->title(), u"Filter"_s);
    QCOMPARE(form.chkDates->text(), u"All Dates"_s);
    QCOMPARE(QAccessible::queryAccessibleInterface(form.Label1)->role(), QAccessible::PushButton);
}

void TestMainLayout::the_window_opens_without_a_stored_position() {
    main_->open();
    QCOMPARE(main_->preference(u"frmMainTop"_s), QString());
    main_->window->close();
    QCOMPARE(main_->preference(u"frmMainTop"_s), QString());
    QCOMPARE(main_->preference(u"frmMainLeft"_s), QString());
}

void TestMainLayout::exit_writes_the_preferences_and_closes() {
    main_->open();
    main_->set_preference(u"DoubleClick"_s, u"Locate"_s);
    QVERIFY(QFile::remove(preferences_path()));
    QWidget* exit = main_->window->TB1->widgetForAction(main_->window->TB1->actions().constLast());
    QTest::mouseClick(exit, Qt::LeftButton);
    QTRY_VERIFY(main_->window.isNull());
    QFile written(preferences_path());
    QVERIFY(written.open(QFile::ReadOnly));
    QVERIFY(written.readAll().contains("<DoubleClick>Locate</DoubleClick>"));
}

void TestMainLayout::the_filter_survives_closing() {
    main_->station.add_tag(u"Bills"_s);
    main_->open();
    main_->choose(u"Bills"_s);
    main_->window->close();
    QVERIFY(Preferences().load(preferences_path()));
    main_->open();
    QCOMPARE(main_->chosen(), QStringList{u"Bills"_s});
}

QTEST_MAIN(TestMainLayout)
#include "test_main_layout.moc"
