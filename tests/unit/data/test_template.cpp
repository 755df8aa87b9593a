// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "tests/support/test_station.h"

#include <QFile>
#include <QTest>

using namespace folidex;
using namespace folidex::test;
using namespace Qt::StringLiterals;

/// The template of every new data folder, as the build made it.
class TestTemplate : public QObject {
    Q_OBJECT

private slots:
    void init() { station_ = std::make_unique<TestStation>(); }
    void cleanup() { station_.reset(); }

    void the_template_holds_five_empty_tables_and_one_counter();
    void the_template_has_the_indexes_that_searching_relies_on();
    void the_template_is_a_plain_file_with_a_rollback_journal();

private:
    static QByteArray content_of(const QString& path) {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    std::unique_ptr<TestStation> station_;
};

void TestTemplate::the_template_holds_five_empty_tables_and_one_counter() {
    QCOMPARE(station_->rows(u"select name from sqlite_master where type = 'table' order by name"_s),
             QStringList({u"comp"_s, u"scans"_s, u"settings"_s, u"tagged"_s, u"tags"_s}));
    for (const QString& table : {u"scans"_s, u"settings"_s, u"tagged"_s, u"tags"_s})
        QCOMPARE(station_->rows(u"select * from "_s + table), QStringList());
    QCOMPARE(station_->rows(u"select NewLink from comp"_s), QStringList{u"1"_s});
}

void TestTemplate::the_template_has_the_indexes_that_searching_relies_on() {
    QCOMPARE(station_->rows(u"select tbl_name, sql from sqlite_master where type = 'index' "
                            "order by name"_s),
             QStringList({u"scans|CREATE INDEX scans_date_link ON scans (date, link)"_s,
                          u"tagged|CREATE INDEX tagged_scan ON tagged (scan)"_s,
                          u"tagged|CREATE INDEX tagged_tag_scan ON tagged (tag, scan)"_s}));
}

void TestTemplate::the_template_is_a_plain_file_with_a_rollback_journal() {
    const QByteArray file = content_of(template_database());
    QVERIFY(file.startsWith(QByteArrayView("SQLite format 3\0", 16)));
    QCOMPARE(file.mid(16, 2), QByteArray("\x10\x00", 2));         // pages of 4096 bytes
    QCOMPARE(file.mid(18, 2), QByteArray("\x01\x01", 2));         // read and written by journal
    QCOMPARE(file.mid(56, 4), QByteArray("\x00\x00\x00\x01", 4)); // UTF-8
    QVERIFY(!QFile::exists(template_database() + u"-journal"_s));
    QVERIFY(!QFile::exists(template_database() + u"-wal"_s));
}

QTEST_GUILESS_MAIN(TestTemplate)
#include "test_template.moc"
