// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "tests/bench/sample_data.h"

#include "app/process_values.h"
#include "common/error.h"
#include "data/database.h"
#include "data/statement.h"

#include <QFile>
#include <QRandomGenerator>
#include <cmath>

namespace folidex::bench {

using namespace Qt::StringLiterals;

namespace {

constexpr int kFirstLink = 1000;
constexpr int kUsualSize = 100'000;

int some_tag(QRandomGenerator& random) {
    return static_cast<int>(std::pow(random.generateDouble(), 2.5) * kTags);
}

void fill(int documents) {
    QRandomGenerator random(2009);
    Statement(database(), u"BEGIN"_s).run();
    Statement document(database(), u"INSERT INTO scans VALUES (?, ?, ?, ?, ?)"_s);
    Statement tagged(database(), u"INSERT INTO tagged (scan, tag) VALUES (?, ?)"_s);
    for (int link = kFirstLink; link < kFirstLink + documents; ++link) {
        const QVariant fields[] = {link, u"Invoice %1 of the year's deliveries"_s.arg(link),
                                   static_cast<double>(kFirstDay + random.bounded(kDays)),
                                   u"101209120000_%1.pdf"_s.arg(link), u"1009"_s};
        for (int i = 0; i < 5; ++i)
            document.bind(i + 1, fields[i]);
        document.run();
        document.reset();
        for (int pairs = 1 + static_cast<int>(random.bounded(5)); pairs > 0; --pairs) {
            tagged.bind(1, static_cast<qint64>(link));
            tagged.bind(2, static_cast<qint64>(some_tag(random)));
            tagged.run();
            tagged.reset();
        }
    }
    Statement(database(), u"UPDATE comp SET NewLink = %1"_s.arg(kFirstLink + documents)).run();
    Statement(database(), u"COMMIT"_s).run();
}

} // namespace

void open_sample(const QString& file_name, int documents) {
    if (!QFile::copy(QStringLiteral(FOLIDEX_TEMPLATE), file_name))
        throw Error{kFileNotFound, QStringLiteral(FOLIDEX_TEMPLATE)};
    set_database(Database::open(file_name));
    fill(documents);
}

int sample_size() {
    const int wished = qEnvironmentVariableIntValue("FOLIDEX_BENCH_DOCUMENTS");
    return wished > 0 ? wished : kUsualSize;
}

} // namespace folidex::bench
