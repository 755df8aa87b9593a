// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "data/settings_store.h"
#include "data/window_positions.h"
#include "tests/support/test_station.h"

#include <QTest>

using namespace folidex;
using namespace folidex::test;
using namespace Qt::StringLiterals;

namespace {

/// A window of 6000 by 3000 twips on a screen of 19200 by 10800.
class FakeWindow : public PositionedWindow {
public:
    QString name() const override { return u"frmTags"_s; }
    double top() const override { return top_; }
    double left() const override { return left_; }
    double width() const override { return 6000; }
    double height() const override { return 3000; }
    void set_top(double top) override {
        top_ = top;
        moves.append(u"Top"_s);
    }
    void set_left(double left) override {
        left_ = left;
        moves.append(u"Left"_s);
    }
    double screen_width() const override { return 19200; }
    double screen_height() const override { return 10800; }
    double main_width() const override { return 15001; }

    QStringList moves;

private:
    double top_ = 111;
    double left_ = 222;
};

} // namespace

class TestWindowPositions : public QObject {
    Q_OBJECT

private slots:
    void init() { station_ = std::make_unique<TestStation>(); }
    void cleanup() { station_.reset(); }

    void a_window_never_positioned_comes_up_centred_and_is_stored_at_once();
    void a_stored_position_is_restored_top_first_data();
    void a_stored_position_is_restored_top_first();
    void only_the_missing_co_ordinate_is_placed();
    void a_stored_text_that_is_no_number_counts_as_0();
    void relative_to_the_main_window_the_missing_top_moves_sideways();
    void relative_to_the_main_window_only_a_missing_top_moves_sideways();
    void relative_to_the_main_window_only_a_missing_left_sets_the_height();
    void storing_keeps_top_and_left();
    void a_fraction_of_a_twip_survives();

private:
    static QString stored(const QString& key) { return get_FormSettings(u"frmTags"_s, key); }
    static void store(const QString& key, const QString& value) {
        set_FormSettings(u"frmTags"_s, key, value);
    }

    std::unique_ptr<TestStation> station_;
};

void TestWindowPositions::a_window_never_positioned_comes_up_centred_and_is_stored_at_once() {
    FakeWindow window;
    GetScreenPosition(window, false);
    QCOMPARE(window.top(), 3900.0);
    QCOMPARE(window.left(), 6600.0);
    QCOMPARE(stored(u"Top"_s), u"3900"_s);
    QCOMPARE(stored(u"Left"_s), u"6600"_s);
}

void TestWindowPositions::a_stored_position_is_restored_top_first_data() {
    QTest::addColumn<bool>("relative");
    QTest::newRow("on the screen") << false;
    QTest::newRow("relative to the main window") << true;
}

void TestWindowPositions::a_stored_position_is_restored_top_first() {
    QFETCH(bool, relative);
    store(u"Top"_s, u"-45"_s);
    store(u"Left"_s, u"1200.5"_s);
    FakeWindow window;
    GetScreenPosition(window, relative);
    QCOMPARE(window.top(), -45.0);
    QCOMPARE(window.left(), 1200.5);
    QCOMPARE(window.moves, QStringList({u"Top"_s, u"Left"_s}));
    QCOMPARE(stored(u"Left"_s), u"1200.5"_s);
}

void TestWindowPositions::only_the_missing_co_ordinate_is_placed() {
    store(u"Left"_s, u"17"_s);
    FakeWindow window;
    GetScreenPosition(window, false);
    QCOMPARE(window.top(), 3900.0);
    QCOMPARE(window.left(), 17.0);
    QCOMPARE(stored(u"Left"_s), u"17"_s);
}

void TestWindowPositions::a_stored_text_that_is_no_number_counts_as_0() {
    store(u"Top"_s, u"upper"_s);
    store(u"Left"_s, u"30 twips"_s);
    FakeWindow window;
    GetScreenPosition(window, false);
    QCOMPARE(window.top(), 0.0);
    QCOMPARE(window.left(), 30.0);
    QCOMPARE(stored(u"Top"_s), u"upper"_s);
}

void TestWindowPositions::relative_to_the_main_window_the_missing_top_moves_sideways() {
    FakeWindow window;
    GetScreenPosition(window, true);
    QCOMPARE(window.moves, QStringList({u"Left"_s, u"Top"_s}));
    QCOMPARE(window.left(), 3800.5);
    QCOMPARE(window.top(), 10.0);
    // Each key is stored with the value that the window has at that moment.
    QCOMPARE(stored(u"Top"_s), u"111"_s);
    QCOMPARE(stored(u"Left"_s), u"3800.5"_s);
}

void TestWindowPositions::relative_to_the_main_window_only_a_missing_top_moves_sideways() {
    store(u"Left"_s, u"50"_s);
    FakeWindow window;
    GetScreenPosition(window, true);
    QCOMPARE(window.top(), 111.0);
    QCOMPARE(window.left(), 50.0);
    QCOMPARE(stored(u"Top"_s), u"111"_s);
}

void TestWindowPositions::relative_to_the_main_window_only_a_missing_left_sets_the_height() {
    store(u"Top"_s, u"70"_s);
    FakeWindow window;
    GetScreenPosition(window, true);
    QCOMPARE(window.top(), 10.0);
    QCOMPARE(window.left(), 222.0);
    QCOMPARE(stored(u"Left"_s), u"222"_s);
    QCOMPARE(stored(u"Top"_s), u"70"_s);
}

void TestWindowPositions::storing_keeps_top_and_left() {
    FakeWindow window;
    SetScreenPosition(window);
    QCOMPARE(stored(u"Top"_s), u"111"_s);
    QCOMPARE(stored(u"Left"_s), u"222"_s);
    QCOMPARE(window.moves, QStringList());
}

void TestWindowPositions::a_fraction_of_a_twip_survives() {
    FakeWindow window;
    window.set_left(-7.5);
    SetScreenPosition(window);
    FakeWindow next;
    GetScreenPosition(next, false);
    QCOMPARE(next.left(), -7.5);
}

QTEST_GUILESS_MAIN(TestWindowPositions)
#include "test_window_positions.moc"
