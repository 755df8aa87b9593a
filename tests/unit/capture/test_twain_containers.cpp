// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "capture/scanner/twain/containers.h"
#include "capture/scanner/twain/options.h"
#include "capture/scanner/twain/twain_codes.h"

#include <QTest>
#include <vector>

using namespace folidex::twain;

namespace {

/// What the exact bytes of a container say.
template <typename Look> auto look(TW_UINT16 type, const char* hex, const Look& look_at) {
    const QByteArray bytes = QByteArray::fromHex(hex);
    const std::vector<std::uint8_t> exact(bytes.begin(), bytes.end());
    return look_at(Container{type, exact.data(), exact.size()});
}

std::optional<TW_UINT32> current(TW_UINT16 type, const char* hex) {
    return look(type, hex, current_value);
}

bool lists(TW_UINT16 type, const char* hex, TW_UINT32 value) {
    return look(type, hex, [&](const Container& container) { return offers(container, value); });
}

} // namespace

class TestTwainContainers : public QObject {
    Q_OBJECT

private slots:
    void one_value_is_as_wide_as_its_type() {
        QCOMPARE(current(TWON_ONEVALUE, "0400"
                                        "34127856"),
                 0x1234u);
        QCOMPARE(current(TWON_ONEVALUE, "0600"
                                        "0100ffff"),
                 1u);
        QCOMPARE(current(TWON_ONEVALUE, "0300"
                                        "34127856"),
                 0x34u);
        QCOMPARE(current(TWON_ONEVALUE, "0700"
                                        "2c010080"),
                 0x8000012cu);
    }

    void an_enumeration_tells_its_current_value() {
        const char* list = "0400"
                           "03000000"
                           "01000000"
                           "00000000"
                           "000006000200";
        QCOMPARE(current(TWON_ENUMERATION, list), 6u);
        QVERIFY(lists(TWON_ENUMERATION, list, 2));
        QVERIFY(lists(TWON_ENUMERATION, list, 0));
        QVERIFY(!lists(TWON_ENUMERATION, list, 5));
    }

    void a_range_tells_its_current_value() {
        QCOMPARE(current(TWON_RANGE, "0700"
                                     "01000000"
                                     "02000000"
                                     "03000000"
                                     "04000000"
                                     "05000000"),
                 5u);
    }

    void an_array_has_values_and_no_current_one() {
        const char* list = "0300"
                           "02000000"
                           "0607";
        QVERIFY(lists(TWON_ARRAY, list, 7));
        QVERIFY(!lists(TWON_ARRAY, list, 8));
        QVERIFY(!current(TWON_ARRAY, list));
    }

    void one_value_offers_itself() {
        QVERIFY(lists(TWON_ONEVALUE, "040006000000", 6));
        QVERIFY(!lists(TWON_ONEVALUE, "040006000000", 5));
    }

    void what_lies_beyond_the_container_is_not_read() {
        QVERIFY(!current(TWON_ONEVALUE, "0400"));
        QVERIFY(!current(TWON_ONEVALUE, ""));
        QVERIFY(!current(TWON_RANGE, "07000100000002000000"));
        // As many items as there are numbers, and an index to match.
        QVERIFY(!current(TWON_ENUMERATION, "0500"
                                           "ffffffff"
                                           "feffffff"
                                           "00000000"
                                           "01000000"));
        QVERIFY(!current(TWON_ENUMERATION, "0400"
                                           "01000000"
                                           "01000000"
                                           "00000000"
                                           "0600"));
        QVERIFY(!lists(TWON_ENUMERATION,
                       "0400"
                       "f0ffffff"
                       "00000000"
                       "00000000"
                       "0600",
                       7));
    }

    void types_without_numbers_say_nothing() {
        QVERIFY(!current(TWON_ONEVALUE, "090061626364"));
        QVERIFY(!lists(TWON_ENUMERATION,
                       "0900"
                       "01000000"
                       "00000000"
                       "00000000"
                       "61626364",
                       0x61));
        QVERIFY(!current(77, "040006000000"));
    }

    void the_command_line_is_understood() {
        const auto list = read_options({"list"});
        QVERIFY(list && !list->scan);
        const auto scan = read_options({"scan", "--index", "3", "--name", "B\xc3\xbcro -- 1",
                                        "--owner", "18446744073709551615", "--wishes", "31"});
        QVERIFY(scan && scan->scan);
        QCOMPARE(scan->index, 3u);
        QCOMPARE(scan->name, std::string("B\xc3\xbcro -- 1"));
        QCOMPARE(scan->owner, 18446744073709551615u);
        QCOMPARE(scan->wishes, 31u);
        QCOMPARE(scan->idle, 60'000u);
        QCOMPARE(read_options({"scan", "--idle", "250"})->idle, 250u);
    }

    void a_command_line_without_sense_is_refused() {
        for (const std::vector<std::string>& arguments : {std::vector<std::string>{},
                                                          {"print"},
                                                          {""},
                                                          {"scan", "--index"},
                                                          {"scan", "--index", "-1"},
                                                          {"scan", "--index", "1x"},
                                                          {"scan", "--index", ""},
                                                          {"scan", "--index", "4294967296"},
                                                          {"scan", "--colour", "1"},
                                                          {"list", "3"}})
            QVERIFY(!read_options(arguments));
    }
};

QTEST_APPLESS_MAIN(TestTwainContainers)
#include "test_twain_containers.moc"
