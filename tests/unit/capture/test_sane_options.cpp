// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "capture/scanner/sane_device_list.h"
#include "capture/scanner/sane_options.h"
#include "tests/support/scripted_sane.h"

#include <QTest>

namespace folidex {

class SaneOptionsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void the_feeder_is_found_among_the_sources_data();
    void the_feeder_is_found_among_the_sources();
    void the_glass_is_found_among_the_sources();
    void the_resolution_is_what_the_options_tell_data();
    void the_resolution_is_what_the_options_tell();
    void sources_that_read_alike_carry_their_device_names();
    void a_source_without_names_goes_by_its_device_name();
};

void SaneOptionsTest::the_feeder_is_found_among_the_sources_data() {
    using Names = QList<QByteArray>;
    QTest::addColumn<Names>("sources");
    QTest::addColumn<QByteArray>("one_side");
    QTest::addColumn<QByteArray>("both_sides");
    const auto row = [](const char* name, const Names& sources, const QByteArray& one_side,
                        const QByteArray& both_sides) {
        QTest::newRow(name) << sources << one_side << both_sides;
    };
    row("in full", {"Flatbed", "Automatic Document Feeder"}, "Automatic Document Feeder",
        "Automatic Document Feeder");
    row("with duplex", {"Flatbed", "ADF", "ADF Duplex"}, "ADF", "ADF Duplex");
    row("sides apart", {"ADF Back", "ADF Front", "ADF Duplex"}, "ADF Front", "ADF Duplex");
    row("duplex alone", {"Flatbed", "ADF", "Duplex"}, "ADF", "Duplex");
    row("in small letters", {"flatbed", "adf"}, "adf", "adf");
    row("glass only", {"Flatbed"}, "", "");
    row("film", {"Flatbed", "Slide Feeder", "Transparency Unit"}, "", "");
    row("nothing", {}, "", "");
}

void SaneOptionsTest::the_feeder_is_found_among_the_sources() {
    QFETCH(QList<QByteArray>, sources);
    QFETCH(QByteArray, one_side);
    QFETCH(QByteArray, both_sides);
    QCOMPARE(feeder_source(sources, false), one_side);
    QCOMPARE(feeder_source(sources, true), both_sides);
}

void SaneOptionsTest::the_glass_is_found_among_the_sources() {
    QCOMPARE(glass_source({"ADF", "Flatbed"}), QByteArray("Flatbed"));
    QCOMPARE(glass_source({"ADF", "Document Table Glass"}), QByteArray("Document Table Glass"));
    QCOMPARE(glass_source({"ADF Front", "ADF Duplex"}), QByteArray());
}

void SaneOptionsTest::the_resolution_is_what_the_options_tell_data() {
    QTest::addColumn<QList<int>>("values"); // resolution, x, y, left, right in mm; 0: no option
    QTest::addColumn<double>("x");
    QTest::addColumn<double>("y");
    QTest::newRow("one for both") << QList<int>{300, 0, 0, 0, 0} << 300.0 << 300.0;
    QTest::newRow("each its own") << QList<int>{0, 300, 600, 0, 0} << 300.0 << 600.0;
    QTest::newRow("x apart") << QList<int>{300, 150, 0, 0, 0} << 150.0 << 300.0;
    QTest::newRow("x only") << QList<int>{0, 150, 0, 0, 0} << 150.0 << 150.0;
    // 508 mm are 20 inches; the line has 3000 pixels.
    QTest::newRow("by the scan area") << QList<int>{0, 0, 0, 2, 510} << 150.0 << 150.0;
    QTest::newRow("told before measured") << QList<int>{300, 0, 0, 2, 510} << 300.0 << 300.0;
    QTest::newRow("nothing told") << QList<int>{0, 0, 0, 0, 0} << 300.0 << 300.0;
}

void SaneOptionsTest::the_resolution_is_what_the_options_tell() {
    QFETCH(QList<int>, values);
    QFETCH(double, x);
    QFETCH(double, y);
    const QList<QByteArray> names{"resolution", "x-resolution", "y-resolution", "tl-x", "br-x"};
    test::ScriptedDevice device;
    for (qsizetype k = 0; k < names.size(); ++k)
        if (values[k] > 0)
            device.options.push_back(
                test::number_option(names[k], k < 3 ? SANE_UNIT_DPI : SANE_UNIT_MM, values[k]));
    test::ScriptedSane sane;
    sane.add(device);
    const SaneApi api = sane.api();
    SANE_Handle handle = nullptr;
    QCOMPARE(api.open("script:0", &handle), SANE_STATUS_GOOD);
    const SaneResolution resolution = sane_scale(SaneOptions(api, handle)).resolution(3000);
    QCOMPARE(resolution.x, x);
    QCOMPARE(resolution.y, y);
}

void SaneOptionsTest::sources_that_read_alike_carry_their_device_names() {
    const QList<SaneSource> sources{{"usb:1", QStringLiteral("Acme"), QStringLiteral("X1"), {}},
                                    {"usb:2", QStringLiteral("Acme"), QStringLiteral("X2"), {}},
                                    {"net:1", QStringLiteral("Acme"), QStringLiteral("X1"), {}}};
    QCOMPARE(source_names(sources),
             QStringList({QStringLiteral("Acme X1 (usb:1)"), QStringLiteral("Acme X2"),
                          QStringLiteral("Acme X1 (net:1)")}));
}

void SaneOptionsTest::a_source_without_names_goes_by_its_device_name() {
    QCOMPARE(source_names({{"usb:1", {}, {}, {}}}), QStringList({QStringLiteral("usb:1")}));
    QCOMPARE(source_names({{"usb:1", {}, QStringLiteral(" X1 "), {}}}),
             QStringList({QStringLiteral("X1")}));
}

} // namespace folidex

QTEST_APPLESS_MAIN(folidex::SaneOptionsTest)
#include "test_sane_options.moc"
