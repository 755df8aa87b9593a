// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "app/process_values.h"
#include "data/database.h"
#include "tests/support/test_station.h"
#include "tests/unit/data/thrown.h"

namespace folidex::test {

inline Recordset open_set(const QString& sql) {
    return database().open_recordset(sql);
}

inline void add_pair(int scan, int tag) {
    database().execute(
        QStringLiteral("INSERT INTO tagged (scan, tag) VALUES (%1, %2)").arg(scan).arg(tag));
}

/// Document 9 with the tags 30, 2 and 17, in this order.
inline void add_three_pairs() {
    for (const int tag : {30, 2, 17})
        add_pair(9, tag);
}

/// Whether another station could change the file now; it would be refused at once while the
/// file is held.
inline bool can_write_elsewhere(const TestStation& station) {
    const auto other = Database::open(station.database_path());
    other->execute(QStringLiteral("PRAGMA busy_timeout = 0"));
    return !thrown(
        [&] { other->execute(QStringLiteral("INSERT INTO tagged (scan, tag) VALUES (1, 1)")); });
}

} // namespace folidex::test
