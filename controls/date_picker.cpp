// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "controls/date_picker.h"

#include "common/day_number.h"
#include "common/error_trap.h"

#include <QCalendarWidget>
#include <QKeyEvent>
#include <QLayout>
#include <QLineEdit>
#include <QLocale>
#include <QMouseEvent>
#include <QPushButton>
#include <QToolButton>
#include <QWheelEvent>
#include <cmath>

namespace folidex {

using namespace Qt::StringLiterals;

namespace {

const QDate kFirstDate(100, 1, 1);
const QDate kLastDate(9999, 12, 31);

// Room that a line of text leaves on its left and right, and its caret.
constexpr int kTextMargins = 2 * 2;

double nearest_date(double number) {
    if (std::isnan(number))
        return 0;
    if (from_day_number(number))
        return number;
    return day_number(number < 0 ? kFirstDate : kLastDate);
}

} // namespace

QString short_date_format() {
    QString format = QLocale::system().dateFormat(QLocale::ShortFormat);
    if (!format.contains("yyyy"_L1))
        format.replace("yy"_L1, "yyyy"_L1);
    return format;
}

DatePicker::DatePicker(QWidget* parent) : QDateTimeEdit(parent) {
    setTimeSpec(Qt::UTC);
    setDisplayFormat(short_date_format());
    setDateRange(kFirstDate, kLastDate);
    setCalendarPopup(true);
    // Half-typed years are no dates to search by; the date counts when the field is left.
    setKeyboardTracking(false);
    setFocusPolicy(Qt::StrongFocus);
    draw_plain_arrows();
    add_today_button();
    setDate(QDate::currentDate());
    value_ = day_number(date());
    on(this, &QDateTimeEdit::dateChanged, this, [this](const QDate& date) {
        if (date == from_day_number(value_)->date())
            return;
        value_ = day_number(date);
        Q_EMIT change();
    });
}

// The arrows of the style, sharp at every scale, in place of its old pictures.
void DatePicker::draw_plain_arrows() {
    const auto draw = [this](const QString& name, Qt::ArrowType arrow) {
        if (auto* button = calendarWidget()->findChild<QToolButton*>(name)) {
            button->setIcon(QIcon());
            button->setArrowType(arrow);
            QPalette on_the_bar = button->palette();
            on_the_bar.setColor(QPalette::ButtonText, on_the_bar.color(QPalette::HighlightedText));
            button->setPalette(on_the_bar);
        }
    };
    draw(u"qt_calendar_prevmonth"_s, isRightToLeft() ? Qt::RightArrow : Qt::LeftArrow);
    draw(u"qt_calendar_nextmonth"_s, isRightToLeft() ? Qt::LeftArrow : Qt::RightArrow);
}

void DatePicker::add_today_button() {
    QCalendarWidget* calendar = calendarWidget();
    auto* button = new QPushButton(tr("Today"), calendar);
    button->setObjectName(u"cmdToday"_s);
    // The calendar counts only its own parts; its last week would make room for the button.
    calendar->setMinimumSize(calendar->sizeHint() + QSize(0, button->sizeHint().height()));
    calendar->layout()->addWidget(button);
    on(button, &QPushButton::clicked, calendar,
       [calendar] { Q_EMIT calendar->activated(QDate::currentDate()); });
}

double DatePicker::value() const {
    const_cast<DatePicker*>(this)->interpretText();
    return value_;
}

void DatePicker::set_value(double day_number) {
    const double changed = nearest_date(day_number);
    if (changed == value_)
        return;
    value_ = changed;
    setDate(from_day_number(changed)->date());
    Q_EMIT change();
}

QStyleOptionComboBox DatePicker::style_option() const {
    QStyleOptionComboBox option;
    option.initFrom(this);
    option.editable = true;
    option.frame = hasFrame();
    option.subControls = QStyle::SC_All;
    return option;
}

QSize DatePicker::with_room_for_a_date(QSize size) const {
    QStyleOptionComboBox option = style_option();
    option.rect = QRect(QPoint(), size);
    const QRect field =
        style()->subControlRect(QStyle::CC_ComboBox, &option, QStyle::SC_ComboBoxEditField, this);
    QString longest = text();
    for (QChar& character : longest)
        if (character.isDigit())
            character = u'0';
    const int wanted = fontMetrics().horizontalAdvance(longest) + kTextMargins +
                       style()->pixelMetric(QStyle::PM_TextCursorWidth, nullptr, this);
    size.rwidth() += qMax(0, wanted - field.width());
    return size;
}

QSize DatePicker::sizeHint() const {
    return with_room_for_a_date(QDateTimeEdit::sizeHint());
}

QSize DatePicker::minimumSizeHint() const {
    return with_room_for_a_date(QDateTimeEdit::minimumSizeHint());
}

// The base opens its calendar for the pointer only.
void DatePicker::open_calendar() {
    const QStyleOptionComboBox option = style_option();
    const QPointF arrow =
        style()
            ->subControlRect(QStyle::CC_ComboBox, &option, QStyle::SC_ComboBoxArrow, this)
            .center();
    QMouseEvent press(QEvent::MouseButtonPress, arrow, mapToGlobal(arrow), Qt::LeftButton,
                      Qt::LeftButton, Qt::NoModifier);
    mousePressEvent(&press);
}

void DatePicker::keyPressEvent(QKeyEvent* event) {
    const bool alt_down = event->key() == Qt::Key_Down && event->modifiers() == Qt::AltModifier;
    if (alt_down || event->key() == Qt::Key_F4)
        open_calendar();
    else
        QDateTimeEdit::keyPressEvent(event);
}

void DatePicker::wheelEvent(QWheelEvent* event) {
    // Scrolling a window past the field must not change the date.
    if (hasFocus())
        QDateTimeEdit::wheelEvent(event);
    else
        event->ignore();
}

} // namespace folidex
