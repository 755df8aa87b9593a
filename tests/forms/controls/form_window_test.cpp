// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "controls/form_window.h"

#include <QGuiApplication>
#include <QLabel>
#include <QScreen>
#include <QTest>
#include <QVBoxLayout>
#include <cmath>
#include <limits>

using namespace folidex;
using namespace Qt::StringLiterals;

class FormWindowTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void fifteen_twips_are_a_pixel_data() {
        QTest::addColumn<double>("twips");
        QTest::addColumn<int>("pixels");
        QTest::newRow("whole") << 1500.0 << 100;
        QTest::newRow("nearest") << 1508.0 << 101;
        QTest::newRow("negative") << -150.0 << -10;
        QTest::newRow("far away") << 1e300 << 1000000;
        QTest::newRow("no number") << std::nan("") << 0;
        QTest::newRow("endless") << -std::numeric_limits<double>::infinity() << -1000000;
    }
    void fifteen_twips_are_a_pixel() {
        QFETCH(double, twips);
        QFETCH(int, pixels);
        QCOMPARE(to_pixels(twips), pixels);
    }

    void it_tells_its_place_and_size_in_twips() {
        QWidget form;
        form.setObjectName(u"frmTags"_s);
        form.setGeometry(100, 50, 400, 300);
        const FormWindow window(&form);
        QCOMPARE(window.name(), u"frmTags"_s);
        QCOMPARE(window.left(), 1500.0);
        QCOMPARE(window.top(), 750.0);
        QCOMPARE(window.width(), 6000.0);
        QCOMPARE(window.height(), 4500.0);
        const QSize screen = QGuiApplication::primaryScreen()->geometry().size();
        QCOMPARE(window.screen_width(), screen.width() * 15.0);
        QCOMPARE(window.screen_height(), screen.height() * 15.0);
    }

    void a_form_not_yet_shown_has_the_size_that_it_will_be_shown_with() {
        QWidget form;
        auto* layout = new QVBoxLayout(&form);
        auto* label = new QLabel(u"x"_s);
        label->setMinimumSize(321, 123);
        layout->addWidget(label);
        const FormWindow window(&form);
        const double width = window.width();
        const double height = window.height();
        form.show();
        QVERIFY(QTest::qWaitForWindowExposed(&form));
        QCOMPARE(to_twips(form.width()), width);
        QCOMPARE(to_twips(form.height()), height);
        QVERIFY(width >= 321 * 15.0);
    }

    void a_place_set_before_showing_is_where_it_comes_up() {
        QWidget form;
        form.resize(300, 200);
        FormWindow window(&form);
        window.set_top(1500);
        window.set_left(3000);
        form.show();
        QVERIFY(QTest::qWaitForWindowExposed(&form));
        QCOMPARE(window.top(), 1500.0);
        QCOMPARE(window.left(), 3000.0);
    }

    void a_place_that_no_screen_shows_is_moved_into_view_data() {
        QTest::addColumn<double>("top");
        QTest::addColumn<double>("left");
        QTest::newRow("screen that was unplugged") << 1500.0 << 90000.0;
        QTest::newRow("far left") << 1500.0 << -90000.0;
        QTest::newRow("below") << 90000.0 << 300.0;
        QTest::newRow("title above the screen") << -3000.0 << 300.0;
        QTest::newRow("nonsense") << 1e300 << -1e300;
        QTest::newRow("a sliver") << 1500.0 << -290 * 15.0;
    }
    void a_place_that_no_screen_shows_is_moved_into_view() {
        QFETCH(double, top);
        QFETCH(double, left);
        QWidget form;
        form.resize(300, 200);
        FormWindow window(&form);
        window.set_top(top);
        window.set_left(left);
        const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
        QVERIFY(screen.contains(form.frameGeometry()));
    }

    void a_place_partly_off_the_screen_stays() {
        QWidget form;
        form.resize(300, 200);
        FormWindow window(&form);
        window.set_left(-100 * 15.0);
        QCOMPARE(window.left(), -1500.0);
        const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
        window.set_top(to_twips(screen.bottom() - 40));
        QCOMPARE(window.top(), to_twips(screen.bottom() - 40));
    }

    void both_coordinates_count_as_they_were_stored() {
        QWidget form;
        form.resize(300, 200);
        FormWindow window(&form);
        const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
        form.move(screen.right() + 500, 100);
        window.set_top(750);
        window.set_left(1500);
        QCOMPARE(window.top(), 750.0);
        QCOMPARE(window.left(), 1500.0);
    }

    void the_main_window_lends_its_width() {
        QWidget form;
        const FormWindow window(&form);
        QCOMPARE(window.main_width(), 0.0);
        QWidget main;
        main.setObjectName(u"frmMain"_s);
        main.resize(800, 600);
        QCOMPARE(window.main_width(), 12000.0);
    }
};

QTEST_MAIN(FormWindowTest)
#include "form_window_test.moc"
