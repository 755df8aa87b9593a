// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "capture/scanner/twain_sources.h"
#include "tests/support/scripted_twain.h"

#include <QTest>
#include <thread>

using namespace folidex;
using namespace Qt::StringLiterals;

namespace {

/// Beyond the patience with a list, which is what ends a wait for one that does not come.
constexpr std::chrono::minutes kLong{10};
constexpr std::chrono::milliseconds kBrief{50};
constexpr int kLongestWait = 60'000;

QStringList described(const QList<TwainSource>& sources) {
    QStringList lines;
    for (const TwainSource& source : sources)
        lines.append(u"%1/%2 %3"_s.arg(source.bits).arg(source.index).arg(source.name));
    return lines;
}

} // namespace

class TwainSourcesTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup() {
        sources_.reset();
        twain_.reset();
    }
    void both_lists_stand_one_behind_the_other();
    void names_are_kept_as_the_manager_lists_them();
    void the_32_bit_list_is_held_back_until_the_other_has_ended();
    void a_list_that_hangs_is_given_up_and_tried_again();
    void what_came_before_a_list_broke_off_is_kept_data();
    void what_came_before_a_list_broke_off_is_kept();
    void a_word_size_that_cannot_be_listed_has_no_sources_data();
    void a_word_size_that_cannot_be_listed_has_no_sources();
    void an_earlier_list_is_there_at_once();
    void a_later_list_takes_the_place_of_an_earlier_one();
    void one_search_is_under_way_at_a_time();
    void a_new_search_waits_for_nothing_when_nothing_was_found();
    void sources_are_added_at_the_end_data();
    void sources_are_added_at_the_end();

private:
    /// Searches until all is known.
    QStringList search();
    bool wait_for_the_end();
    bool wait_until_noted(const QString& line) const {
        return QTest::qWaitFor([&] { return twain_->noted(line); }, kLongestWait);
    }

    std::unique_ptr<test::ScriptedTwain> twain_;
    std::unique_ptr<TwainSources> sources_;
};

void TwainSourcesTest::init() {
    twain_ = std::make_unique<test::ScriptedTwain>();
}

QStringList TwainSourcesTest::search() {
    if (!sources_)
        sources_ = std::make_unique<TwainSources>(twain_->settings);
    sources_->search();
    if (!wait_for_the_end())
        return {u"the search does not end"_s};
    return described(sources_->list());
}

bool TwainSourcesTest::wait_for_the_end() {
    return QTest::qWaitFor([this] { return !sources_->searching(); }, kLongestWait);
}

void TwainSourcesTest::both_lists_stand_one_behind_the_other() {
    twain_->list(64, {u"source 0 Desk"_s, u"source 1 Copier"_s, u"done 0"_s});
    twain_->list(32, {u"source 0 Old desk"_s, u"source 1 Old copier"_s, u"done 0"_s});
    QCOMPARE(search(), QStringList({u"64/0 Desk"_s, u"64/1 Copier"_s, u"32/0 Old desk"_s,
                                    u"32/1 Old copier"_s}));
}

void TwainSourcesTest::names_are_kept_as_the_manager_lists_them() {
    twain_->list(64, {u"source 0 WIA-Büro   Gerät (2)"_s, u"source 7 Twin"_s, u"alive gone"_s});
    twain_->list(32, {u"source 3 Twin"_s, u"source 4 Twin"_s, u"done 0"_s});
    twain_->open_gate(u"gone"_s);
    twain_->list(
        64, {u"source 0 WIA-Büro   Gerät (2)"_s, u"alive gone"_s, u"source 7 Twin"_s, u"done 0"_s});
    QCOMPARE(search(), QStringList({u"64/0 WIA-Büro   Gerät (2)"_s, u"64/7 Twin"_s, u"32/3 Twin"_s,
                                    u"32/4 Twin"_s}));
}

void TwainSourcesTest::the_32_bit_list_is_held_back_until_the_other_has_ended() {
    twain_->list(64, {u"source 0 Desk"_s, u"gate more"_s, u"source 1 Copier"_s, u"done 0"_s});
    twain_->list(32, {u"source 0 Old"_s, u"done 0"_s, u"await"_s});
    sources_ = std::make_unique<TwainSources>(twain_->settings);
    sources_->search();
    // Let go by the program once it has taken in all of the list.
    QVERIFY(wait_until_noted(u"list32: input ended"_s));
    QTRY_COMPARE_WITH_TIMEOUT(described(sources_->list()), QStringList({u"64/0 Desk"_s}),
                              kLongestWait);
    sources_->wait(kBrief);
    QCOMPARE(described(sources_->list()), QStringList({u"64/0 Desk"_s}));
    twain_->open_gate(u"more"_s);
    QVERIFY(wait_for_the_end());
    QCOMPARE(described(sources_->list()),
             QStringList({u"64/0 Desk"_s, u"64/1 Copier"_s, u"32/0 Old"_s}));
}

void TwainSourcesTest::a_list_that_hangs_is_given_up_and_tried_again() {
    twain_->settings.list = std::chrono::milliseconds(500);
    twain_->list(64, {u"hang"_s});
    twain_->list(32, {u"source 0 Old"_s, u"done 0"_s});
    // A busy machine may take that long for a list that does come: then a later search has it.
    const auto found = [this](const QStringList& expected) {
        return QTest::qWaitFor([&] { return search() == expected; }, kLongestWait);
    };
    while (!twain_->noted(u"list64: hangs"_s))
        QVERIFY(found({u"32/0 Old"_s}));
    QVERIFY(!twain_->noted(u"list64: left with 9"_s));
    twain_->list(64, {u"source 0 Desk"_s, u"done 0"_s});
    QVERIFY(found({u"64/0 Desk"_s, u"32/0 Old"_s}));
    QVERIFY(twain_->log().count(u"list64"_s) >= 2);
}

void TwainSourcesTest::what_came_before_a_list_broke_off_is_kept_data() {
    QTest::addColumn<QString>("end");
    QTest::newRow("gone without a word") << u"exit 3"_s;
    QTest::newRow("a crash") << u"done 5 2 0 0 3221225477"_s;
    QTest::newRow("a manager that cannot be used just now") << u"done 2 2 1 2"_s;
}

void TwainSourcesTest::what_came_before_a_list_broke_off_is_kept() {
    QFETCH(QString, end);
    twain_->list(64, {u"source 0 Desk"_s, u"source 1 Copier"_s, u"done 0"_s});
    QCOMPARE(search(), QStringList({u"64/0 Desk"_s, u"64/1 Copier"_s}));
    twain_->list(64, {u"source 0 Desk"_s, u"source 1 New"_s, end});
    QCOMPARE(search(), QStringList({u"64/0 Desk"_s, u"64/1 Copier"_s, u"64/1 New"_s}));
}

void TwainSourcesTest::a_word_size_that_cannot_be_listed_has_no_sources_data() {
    QTest::addColumn<QStringList>("script");
    QTest::newRow("no manager") << QStringList{u"done 4 1"_s};
    QTest::newRow("a manager that cannot be opened") << QStringList{u"done 2 2 1 2"_s};
    QTest::newRow("a manager that crashes") << QStringList{u"done 5 2 0 0 3221225477"_s};
    QTest::newRow("gone without a word") << QStringList{u"exit 3"_s};
    QTest::newRow("a helper that prints") << QStringList{u"raw 48 65 6c 6c 6f 20 20 20 20"_s};
    QTest::newRow("no helper program") << QStringList{};
}

void TwainSourcesTest::a_word_size_that_cannot_be_listed_has_no_sources() {
    QFETCH(QStringList, script);
    if (script.isEmpty())
        twain_->settings.program64.path = u"/nowhere/folidex-twain64"_s;
    else
        twain_->list(64, script);
    twain_->list(32, {u"source 0 Old"_s, u"done 0"_s});
    QCOMPARE(search(), QStringList({u"32/0 Old"_s}));
}

void TwainSourcesTest::an_earlier_list_is_there_at_once() {
    twain_->list(64, {u"source 0 Desk"_s, u"done 0"_s});
    twain_->list(32, {u"source 0 Old"_s, u"done 0"_s});
    QCOMPARE(search(), QStringList({u"64/0 Desk"_s, u"32/0 Old"_s}));
    twain_->list(64, {u"gate more"_s, u"source 0 Desk"_s, u"done 0"_s});
    sources_->search();
    sources_->wait(kLong);
    QVERIFY2(sources_->searching(), "it waited for the new list until that was given up");
    QCOMPARE(described(sources_->list()), QStringList({u"64/0 Desk"_s, u"32/0 Old"_s}));
    twain_->open_gate(u"more"_s);
}

void TwainSourcesTest::a_later_list_takes_the_place_of_an_earlier_one() {
    twain_->list(64, {u"source 0 Desk"_s, u"source 1 Copier"_s, u"done 0"_s});
    search();
    twain_->list(64, {u"source 0 New"_s, u"source 1 Copier"_s, u"done 0"_s});
    QCOMPARE(search(), QStringList({u"64/0 New"_s, u"64/1 Copier"_s}));
    twain_->list(64, {u"done 4"_s});
    QCOMPARE(search(), QStringList());
}

void TwainSourcesTest::one_search_is_under_way_at_a_time() {
    twain_->list(64, {u"gate more"_s, u"source 0 Desk"_s, u"done 0"_s});
    twain_->list(32, {u"gate more"_s, u"done 0"_s});
    sources_ = std::make_unique<TwainSources>(twain_->settings);
    for (int k = 0; k < 3; ++k)
        sources_->search();
    QVERIFY(wait_until_noted(u"list64: at more"_s) && wait_until_noted(u"list32: at more"_s));
    twain_->open_gate(u"more"_s);
    QVERIFY(wait_for_the_end());
    QCOMPARE(twain_->log().count(u"list64"_s), 1);
    QCOMPARE(twain_->log().count(u"list32"_s), 1);
    QCOMPARE(described(sources_->list()), QStringList({u"64/0 Desk"_s}));
}

void TwainSourcesTest::a_new_search_waits_for_nothing_when_nothing_was_found() {
    QCOMPARE(search(), QStringList());
    twain_->list(64, {u"gate more"_s, u"source 0 Desk"_s, u"done 0"_s});
    sources_->search();
    // Asked for as soon as the search began; the list comes only once the gate is open.
    QStringList known;
    std::thread asking([&] {
        sources_->wait(kLong);
        known = described(sources_->list());
    });
    const bool under_way = wait_until_noted(u"list64: at more"_s);
    twain_->open_gate(u"more"_s);
    asking.join();
    QVERIFY(under_way);
    QCOMPARE(known, QStringList({u"64/0 Desk"_s}));
}

void TwainSourcesTest::sources_are_added_at_the_end_data() {
    QTest::addColumn<QStringList>("before");
    QTest::addColumn<QStringList>("now");
    QTest::addColumn<QStringList>("after");
    const QStringList two{u"A"_s, u"B"_s};
    QTest::newRow("nothing new") << two << two << QStringList{u"0 A"_s, u"1 B"_s};
    QTest::newRow("a new one in front")
        << two << QStringList{u"N"_s, u"A"_s, u"B"_s} << QStringList{u"1 A"_s, u"2 B"_s, u"0 N"_s};
    QTest::newRow("one that went") << two << QStringList{u"B"_s} << QStringList{u"0 A"_s, u"0 B"_s};
    QTest::newRow("a twin") << two << QStringList{u"A"_s, u"A"_s}
                            << QStringList{u"0 A"_s, u"1 B"_s, u"1 A"_s};
    QTest::newRow("the first list") << QStringList{} << two << QStringList{u"0 A"_s, u"1 B"_s};
}

void TwainSourcesTest::sources_are_added_at_the_end() {
    QFETCH(QStringList, before);
    QFETCH(QStringList, now);
    QFETCH(QStringList, after);
    const auto list_of = [](const QStringList& names) {
        QList<TwainSource> list;
        for (const QString& name : names)
            list.append({64, static_cast<std::uint32_t>(list.size()), name});
        return list;
    };
    QStringList got;
    for (const TwainSource& source : merged(list_of(before), list_of(now)))
        got.append(u"%1 %2"_s.arg(source.index).arg(source.name));
    QCOMPARE(got, after);
    const QList<TwainSource> other_size{{32, 0, u"A"_s}};
    QCOMPARE(merged(list_of(before), other_size).size(), before.size() + 1);
}

QTEST_GUILESS_MAIN(TwainSourcesTest)
#include "test_twain_sources.moc"
