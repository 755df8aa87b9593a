// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QDateTimeEdit>
#include <QStyleOptionComboBox>

namespace folidex {

/// The system's short date format, with the year in four digits: a document of 1926 must not
/// look like one of 2026.
QString short_date_format();

/// A date picker with a calendar, in the system's short format. Its value is a day number
/// (common/day_number.h); a time of day that was set is kept, though only the date is shown,
/// until another date is chosen: a chosen day begins at midnight, as documents are dated. F4 and
/// Alt+Down open the calendar.
class DatePicker : public QDateTimeEdit {
    Q_OBJECT

public:
    explicit DatePicker(QWidget* parent = nullptr);

    /// Takes in what is still being typed first.
    double value() const;
    /// Values that are no date (NaN, before the year 100, after 9999) go to the nearest date.
    void set_value(double day_number);

    /// Wide enough for the longest date: some styles forget the width of the calendar's arrow.
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

Q_SIGNALS:
    /// The value changed, by the user or by set_value.
    void change();

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

private:
    void draw_plain_arrows();
    void add_today_button();
    void open_calendar();
    QStyleOptionComboBox style_option() const;
    QSize with_room_for_a_date(QSize size) const;

    double value_ = 0;
};

} // namespace folidex
