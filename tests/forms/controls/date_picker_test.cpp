// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "controls/date_picker.h"

#include "common/day_number.h"

#include <QCalendarWidget>
#include <QLineEdit>
#include <QPushButton>
#include <QScrollBar>
#include <QSignalSpy>
#include <QStyleFactory>
#include <QTableView>
#include <QTest>
#include <cmath>
#include <limits>
#include <memory>

using namespace folidex;
using namespace Qt::StringLiterals;

class DatePickerTest : public QObject {
    Q_OBJECT

private:
    static void show(QWidget& widget) {
        widget.show();
        widget.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&widget));
    }

private Q_SLOTS:
    void a_new_picker_holds_today() {
        const QDate before = QDate::currentDate();
        const DatePicker picker;
        const QDate today = picker.date();
        QVERIFY(today >= before && today <= QDate::currentDate());
        QCOMPARE(picker.value(), day_number(today));
    }

    void values_are_day_numbers() {
        DatePicker picker;
        picker.set_value(40098);
        QCOMPARE(picker.value(), 40098.0);
        QCOMPARE(picker.date(), QDate(2009, 10, 12));
    }

    void the_year_has_four_digits() {
        QVERIFY(short_date_format().contains(u"yyyy"_s));
        DatePicker picker;
        picker.set_value(40098);
        QVERIFY(picker.text().contains(u"2009"_s));
        QCOMPARE(picker.displayFormat(), short_date_format());
    }

    void a_date_is_shown_whole_data() {
        QTest::addColumn<QString>("style");
        QTest::newRow("plain") << u"Fusion"_s;
        QTest::newRow("with a wide arrow") << u"Windows"_s;
    }
    void a_date_is_shown_whole() {
        QFETCH(QString, style);
        const std::unique_ptr<QStyle> own_style(QStyleFactory::create(style));
        QVERIFY(own_style);
        QWidget window;
        DatePicker picker(&window);
        picker.setStyle(own_style.get());
        picker.set_value(day_number(QDate(2008, 12, 28)));
        picker.resize(picker.minimumSizeHint());
        show(window);
        const auto* line = picker.findChild<QLineEdit*>();
        QVERIFY(line);
        // Where the text stands when nothing is cut off or scrolled away.
        const int beside_text = 2 * 2;
        QVERIFY2(line->width() >=
                     line->fontMetrics().horizontalAdvance(picker.text()) + beside_text,
                 qPrintable(u"%1 of %2 pixels"_s.arg(line->width())
                                .arg(line->fontMetrics().horizontalAdvance(picker.text()))));
    }

    // Documents are dated at midnight: a bound at noon would leave out those of its own day.
    void a_time_of_day_is_kept_until_another_date_is_chosen() {
        DatePicker picker;
        picker.set_value(40098.75);
        QCOMPARE(picker.value(), 40098.75);
        picker.setDate(QDate(2009, 10, 12));
        QCOMPARE(picker.value(), 40098.75);
        picker.setDate(QDate(2009, 10, 14));
        QCOMPARE(picker.value(), 40100.0);
    }

    void a_change_is_told_once_and_no_change_not_at_all() {
        DatePicker picker;
        QSignalSpy changes(&picker, &DatePicker::change);
        picker.set_value(40098);
        QCOMPARE(changes.size(), 1);
        picker.set_value(40098);
        QCOMPARE(changes.size(), 1);
        picker.set_value(40098.5);
        QCOMPARE(changes.size(), 2);
        picker.setDate(QDate(2009, 10, 13));
        QCOMPARE(changes.size(), 3);
        picker.setDate(QDate(2009, 10, 13));
        QCOMPARE(changes.size(), 3);
    }

    void what_is_no_date_goes_to_the_nearest_data() {
        QTest::addColumn<double>("given");
        QTest::addColumn<double>("taken");
        QTest::newRow("before the year 100") << -1e6 << day_number(QDate(100, 1, 1));
        QTest::newRow("after 9999") << 1e9 << day_number(QDate(9999, 12, 31));
        QTest::newRow("endless") << std::numeric_limits<double>::infinity()
                                 << day_number(QDate(9999, 12, 31));
        QTest::newRow("no number") << std::nan("") << 0.0;
        QTest::newRow("first") << day_number(QDate(100, 1, 1)) << day_number(QDate(100, 1, 1));
        QTest::newRow("last") << day_number(QDate(9999, 12, 31)) << day_number(QDate(9999, 12, 31));
        QTest::newRow("before 1900")
            << day_number(QDate(1815, 6, 18)) << day_number(QDate(1815, 6, 18));
    }
    void what_is_no_date_goes_to_the_nearest() {
        QFETCH(double, given);
        QFETCH(double, taken);
        DatePicker picker;
        picker.set_value(given);
        QCOMPARE(picker.value(), taken);
        QCOMPARE(picker.date(), from_day_number(taken)->date());
    }

    void keys_change_the_date_and_tell_once() {
        DatePicker picker;
        picker.setDisplayFormat(u"dd/MM/yyyy"_s);
        picker.set_value(40098);
        show(picker);
        QSignalSpy changes(&picker, &DatePicker::change);
        picker.setCurrentSection(QDateTimeEdit::DaySection);
        QTest::keyClick(&picker, Qt::Key_Up);
        QCOMPARE(changes.size(), 1);
        QCOMPARE(picker.value(), 40099.0);
    }

    void typing_counts_when_it_is_done() {
        DatePicker picker;
        picker.setDisplayFormat(u"dd/MM/yyyy"_s);
        picker.set_value(40098);
        show(picker);
        QSignalSpy changes(&picker, &DatePicker::change);
        picker.setSelectedSection(QDateTimeEdit::YearSection);
        QTest::keyClicks(&picker, u"2011"_s);
        QCOMPARE(changes.size(), 0);
        QTest::keyClick(&picker, Qt::Key_Return);
        QCOMPARE(changes.size(), 1);
        QCOMPARE(picker.value(), day_number(QDate(2011, 10, 12)));
    }

    void asking_for_the_value_takes_in_what_is_being_typed() {
        DatePicker picker;
        picker.setDisplayFormat(u"dd/MM/yyyy"_s);
        picker.set_value(40098);
        show(picker);
        QSignalSpy changes(&picker, &DatePicker::change);
        picker.setSelectedSection(QDateTimeEdit::YearSection);
        QTest::keyClicks(&picker, u"2011"_s);
        QCOMPARE(picker.value(), day_number(QDate(2011, 10, 12)));
        QCOMPARE(picker.value(), day_number(QDate(2011, 10, 12)));
        QCOMPARE(changes.size(), 1);
    }

    void the_calendar_has_a_button_for_today() {
        DatePicker picker;
        picker.set_value(40098.25);
        show(picker);
        QSignalSpy changes(&picker, &DatePicker::change);
        QTest::keyClick(&picker, Qt::Key_F4);
        auto* today = picker.calendarWidget()->findChild<QPushButton*>(u"cmdToday"_s);
        QVERIFY(today);
        QTRY_VERIFY(today->isVisible());
        const auto* days = picker.calendarWidget()->findChild<QTableView*>();
        QCOMPARE(days->verticalScrollBar()->maximum(), 0);
        QVERIFY(days->height() >= 7 * picker.fontMetrics().height());
        const QDate before = QDate::currentDate();
        QTest::mouseClick(today, Qt::LeftButton);
        QTRY_VERIFY(!today->isVisible());
        QVERIFY(picker.date() >= before && picker.date() <= QDate::currentDate());
        QCOMPARE(picker.value(), day_number(picker.date()));
        QCOMPARE(changes.size(), 1);
    }

    void the_calendar_opens_by_key_and_escape_leaves_the_date_data() {
        QTest::addColumn<int>("key");
        QTest::addColumn<int>("modifier");
        QTest::newRow("F4") << int(Qt::Key_F4) << int(Qt::NoModifier);
        QTest::newRow("Alt+Down") << int(Qt::Key_Down) << int(Qt::AltModifier);
    }
    void the_calendar_opens_by_key_and_escape_leaves_the_date() {
        QFETCH(int, key);
        QFETCH(int, modifier);
        DatePicker picker;
        picker.set_value(40098);
        show(picker);
        QSignalSpy changes(&picker, &DatePicker::change);
        QTest::keyClick(&picker, Qt::Key(key), Qt::KeyboardModifiers(modifier));
        QTRY_VERIFY(picker.calendarWidget()->isVisible());
        QTest::keyClick(picker.calendarWidget(), Qt::Key_Escape);
        QTRY_VERIFY(!picker.calendarWidget()->isVisible());
        QCOMPARE(picker.value(), 40098.0);
        QCOMPARE(changes.size(), 0);
    }
};

QTEST_MAIN(DatePickerTest)
#include "date_picker_test.moc"
