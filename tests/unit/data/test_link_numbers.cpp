// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "app/process_values.h"
#include "common/error_trap.h"
#include "data/database.h"
#include "data/link_numbers.h"
#include "tests/support/test_station.h"
#include "tests/unit/data/thrown.h"

#include <QProcess>
#include <QTest>

using namespace folidex;
using namespace folidex::test;
using namespace Qt::StringLiterals;

class TestLinkNumbers : public QObject {
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void the_first_number_is_the_templates_and_leaves_it_one_higher();
    void numbers_follow_each_other();
    void a_number_that_another_station_drew_is_not_drawn_again();
    void a_key_starts_at_5000_and_stores_5001();
    void a_key_stays_at_5000_while_one_value_is_stored();
    void a_key_goes_on_when_its_value_was_stored_twice();
    void a_key_that_stands_below_5000_starts_there();
    void a_key_with_an_apostrophe_has_its_own_counter();
    void the_counter_ends_with_the_largest_number();
    void a_file_without_a_counter_row_is_reported();
    void a_failure_is_reported_under_the_procedures_name();
    void eight_stations_draw_every_number_once();

private:
    QStringList stored() {
        return station_->rows(u"select form, description, user, value from settings order by id"_s);
    }

    std::unique_ptr<TestStation> station_;
    QList<Report> reports_;
};

void TestLinkNumbers::init() {
    station_ = std::make_unique<TestStation>();
    reports_.clear();
    show_report = [this](const Report& report) { reports_.append(report); };
}

void TestLinkNumbers::cleanup() {
    station_.reset();
}

void TestLinkNumbers::the_first_number_is_the_templates_and_leaves_it_one_higher() {
    const int first = station_->value(u"Select NewLink from comp"_s).toInt();
    QCOMPARE(getNewLink(QString()), first);
    QCOMPARE(station_->rows(u"Select * from comp"_s), QStringList{QString::number(first + 1)});
}

void TestLinkNumbers::numbers_follow_each_other() {
    for (int expected = 1; expected < 20; ++expected)
        QCOMPARE(getNewLink(QString()), expected);
    QCOMPARE(stored(), QStringList());
}

void TestLinkNumbers::a_number_that_another_station_drew_is_not_drawn_again() {
    QCOMPARE(getNewLink(QString()), 1);
    Database::open(station_->database_path())->execute(u"UPDATE comp SET comp.NewLink = 40"_s);
    QCOMPARE(getNewLink(QString()), 40);
}

void TestLinkNumbers::a_key_starts_at_5000_and_stores_5001() {
    QCOMPARE(getNewLink(u"x"_s), 5000);
    QCOMPARE(stored(), QStringList{u"NewLink|x|-1|5001"_s});
    QCOMPARE(station_->value(u"Select * from comp"_s), u"1"_s);
}

void TestLinkNumbers::a_key_stays_at_5000_while_one_value_is_stored() {
    QCOMPARE(getNewLink(u"x"_s), 5000);
    QCOMPARE(getNewLink(u"x"_s), 5000);
    QCOMPARE(stored(), QStringList{u"NewLink|x|-1|5001"_s});
}

// The count is 1 however many rows there are, so even then the value is not read.
void TestLinkNumbers::a_key_goes_on_when_its_value_was_stored_twice() {
    for (int i = 0; i < 2; ++i)
        database().execute(u"INSERT INTO settings ([form], [description], [user], [value]) "
                           "VALUES ('NewLink', 'x', -1, '6000')"_s);
    QCOMPARE(getNewLink(u"x"_s), 5000);
    QCOMPARE(stored(), QStringList({u"NewLink|x|-1|5001"_s, u"NewLink|x|-1|6000"_s}));
}

void TestLinkNumbers::a_key_that_stands_below_5000_starts_there() {
    database().execute(u"INSERT INTO settings ([form], [description], [user], [value]) "
                       "VALUES ('NewLink', 'x', -1, '17')"_s);
    QCOMPARE(getNewLink(u"x"_s), 5000);
    QCOMPARE(stored(), QStringList{u"NewLink|x|-1|5001"_s});
}

void TestLinkNumbers::a_key_with_an_apostrophe_has_its_own_counter() {
    QCOMPARE(getNewLink(u"it's"_s), 5000);
    QCOMPARE(getNewLink(u"its"_s), 5000);
    QCOMPARE(stored(), QStringList({u"NewLink|it's|-1|5001"_s, u"NewLink|its|-1|5001"_s}));
}

void TestLinkNumbers::the_counter_ends_with_the_largest_number() {
    database().execute(u"UPDATE comp SET NewLink = 2147483646"_s);
    QCOMPARE(getNewLink(QString()), 2147483646);
    QCOMPARE(thrown_number([] { getNewLink(QString()); }), kPassedOn);
    QCOMPARE(reports_.size(), 1);
    QCOMPARE(reports_[0].number, 6);
    QCOMPARE(station_->value(u"Select * from comp"_s), u"2147483647"_s);
}

void TestLinkNumbers::a_file_without_a_counter_row_is_reported() {
    database().execute(u"DELETE * FROM comp"_s);
    QCOMPARE(thrown_number([] { getNewLink(QString()); }), kPassedOn);
    QCOMPARE(reports_.size(), 1);
    QCOMPARE(reports_[0].number, 3021);
}

void TestLinkNumbers::a_failure_is_reported_under_the_procedures_name() {
    database().execute(u"DROP TABLE comp"_s);
    QCOMPARE(thrown_number([] { getNewLink(QString()); }), kPassedOn);
    QCOMPARE(reports_.size(), 1);
    QCOMPARE(reports_[0].module, u"Utilities"_s);
    QCOMPARE(reports_[0].procedure, u"getNewLink"_s);
    QVERIFY(reports_[0].description.contains(station_->database_path()));
}

void TestLinkNumbers::eight_stations_draw_every_number_once() {
    constexpr int kStations = 8;
    constexpr int kRounds = 25;
    constexpr int kPatience = 60'000;
    const auto line_of = [](QProcess& station) {
        while (!station.canReadLine() && station.waitForReadyRead(kPatience)) {
        }
        return station.readLine().trimmed();
    };
    std::vector<std::unique_ptr<QProcess>> stations;
    for (int i = 0; i < kStations; ++i) {
        QProcess& process = *stations.emplace_back(std::make_unique<QProcess>());
        process.start(QStringLiteral(FOLIDEX_DRAW_NUMBERS), {station_->database_path()});
    }
    for (const auto& process : stations)
        QCOMPARE(line_of(*process), QByteArray("ready"));
    QList<int> drawn;
    // Round by round, so that nobody has to wait for more than one number of each of the others,
    // however slow the disk is.
    for (int round = 0; round < kRounds; ++round) {
        for (const auto& process : stations) {
            process->write("go\n");
            QVERIFY(process->waitForBytesWritten(kPatience));
        }
        for (const auto& process : stations) {
            const QByteArray line = line_of(*process);
            QVERIFY2(!line.isEmpty(), process->readAllStandardError().constData());
            drawn.append(line.toInt());
        }
    }
    for (const auto& process : stations) {
        process->closeWriteChannel();
        QVERIFY(process->state() == QProcess::NotRunning || process->waitForFinished(kPatience));
        QCOMPARE(process->readAllStandardError(), QByteArray());
        QCOMPARE(process->exitCode(), 0);
        QCOMPARE(process->readAllStandardOutput(), QByteArray());
    }
    std::sort(drawn.begin(), drawn.end());
    for (int i = 0; i < drawn.size(); ++i)
        QCOMPARE(drawn[i], i + 1);
    QCOMPARE(station_->value(u"Select * from comp"_s), QString::number(kStations * kRounds + 1));
}

QTEST_GUILESS_MAIN(TestLinkNumbers)
#include "test_link_numbers.moc"
