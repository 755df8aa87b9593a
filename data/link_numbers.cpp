// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "data/link_numbers.h"

#include "app/process_values.h"
#include "common/day_number.h"
#include "common/error_trap.h"
#include "data/database.h"
#include "data/settings_store.h"

#include <cmath>
#include <limits>

namespace folidex {

namespace {

constexpr int kOverflow = 6;
constexpr int kFirstOfKey = 5000;
constexpr int kNoUser = -1;

int whole_number(double number) {
    const double rounded = std::nearbyint(number);
    if (!(rounded >= std::numeric_limits<int>::min() && rounded <= std::numeric_limits<int>::max()))
        throw Error{kOverflow, QStringLiteral("Overflow")};
    return static_cast<int>(rounded);
}

int next_after(int number) {
    return whole_number(static_cast<double>(number) + 1);
}

// Between edit and update the file is locked, and the number is the one read under the lock:
// that alone keeps two stations from drawing the same.
int draw_shared_number() {
    Recordset counter = database().open_recordset(QStringLiteral("Select * from comp"));
    counter.edit();
    const int number = whole_number(counter.field(QStringLiteral("NewLink")).toDouble());
    counter.set_field(QStringLiteral("newlink"), next_after(number));
    counter.update();
    counter.close();
    return number;
}

int draw_number_of_key(const QString& key) {
    const QString form = QStringLiteral("NewLink");
    const int stored = whole_number(numeric_value(get_pref(form, key, kNoUser)));
    const int number = std::max(stored, kFirstOfKey);
    set_pref(form, key, kNoUser, QString::number(next_after(number)));
    return number;
}

} // namespace

int getNewLink(const QString& key) {
    return trapped("Utilities", "getNewLink",
                   [&] { return key.isEmpty() ? draw_shared_number() : draw_number_of_key(key); });
}

} // namespace folidex
