// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "capture/scanner/sane_device_list.h"
#include "tests/support/scripted_sane.h"

#include <QRegularExpression>
#include <QTest>
#include <set>
#include <thread>

namespace folidex {

using test::ScriptedSane;

class SaneSessionTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void sane_is_begun_once_and_left_at_the_end();
    void all_calls_come_from_one_thread();
    void local_sources_come_first_and_network_ones_join_in_the_order_found();
    void the_search_is_waited_for_no_longer_than_told();
    void a_search_that_fails_finds_nothing();
    void sane_that_cannot_be_started_offers_nothing();
    void a_device_that_hangs_does_not_keep_the_session_alive();
};

namespace {

/// Less than a scripted call hangs by itself.
constexpr std::chrono::seconds kLong{60};
constexpr int kLongestWait = 60'000;

bool wait_until(const std::function<bool()>& condition) {
    return QTest::qWaitFor(condition, kLongestWait);
}

test::ScriptedDevice device(const char* name, bool local) {
    test::ScriptedDevice device;
    device.name = name;
    device.local = local;
    return device;
}

} // namespace

void SaneSessionTest::sane_is_begun_once_and_left_at_the_end() {
    ScriptedSane sane;
    sane.add();
    {
        SaneSession session(sane.api());
        for (int k = 0; k < 3; ++k) {
            const auto list = SaneDeviceList::search(session);
            QVERIFY(wait_until([&] { return list->complete(); }));
        }
    }
    // The thread of a session may outlast it.
    QVERIFY(wait_until([&] { return sane.calls().contains(QStringLiteral("exit")); }));
    QCOMPARE(sane.calls().count(QStringLiteral("init")), 1);
    QCOMPARE(sane.calls().count(QStringLiteral("exit")), 1);
    QCOMPARE(sane.calls().last(), QStringLiteral("exit"));
}

void SaneSessionTest::all_calls_come_from_one_thread() {
    std::mutex mutex;
    std::set<std::thread::id> threads;
    const auto note = [&] {
        const std::lock_guard lock(mutex);
        threads.insert(std::this_thread::get_id());
    };
    ScriptedSane sane;
    SaneApi api = sane.api();
    api.init = [&, init = api.init](SANE_Int* version, SANE_Auth_Callback authorize) {
        note();
        return init(version, authorize);
    };
    api.get_devices = [&, list = api.get_devices](const SANE_Device*** devices, SANE_Bool local) {
        note();
        return list(devices, local);
    };
    api.exit = [&, exit = api.exit] {
        note();
        exit();
    };
    {
        SaneSession session(api);
        const auto list = SaneDeviceList::search(session);
        QVERIFY(wait_until([&] { return list->complete(); }));
    }
    QVERIFY(wait_until([&] { return sane.calls().contains(QStringLiteral("exit")); }));
    QCOMPARE(threads.size(), std::size_t{1});
    QVERIFY(!threads.contains(std::this_thread::get_id()));
}

void SaneSessionTest::local_sources_come_first_and_network_ones_join_in_the_order_found() {
    ScriptedSane sane;
    sane.add(device("net:1", false));
    sane.add(device("usb:1", true));
    sane.add(device("usb:2", true));
    sane.hang(QStringLiteral("list all"));
    SaneSession session(sane.api());
    const auto list = SaneDeviceList::search(session);
    const auto names = [&] {
        QByteArrayList found;
        for (const SaneSource& source : list->sources())
            found.append(source.device);
        return found;
    };
    list->wait_for_local(kLong);
    QCOMPARE(names(), QByteArrayList({"usb:1", "usb:2"}));
    QVERIFY(!list->complete());
    sane.release();
    QVERIFY(wait_until([&] { return list->complete(); }));
    QCOMPARE(names(), QByteArrayList({"usb:1", "usb:2", "net:1"}));
}

void SaneSessionTest::the_search_is_waited_for_no_longer_than_told() {
    ScriptedSane sane;
    sane.add();
    sane.hang(QStringLiteral("list local"));
    SaneSession session(sane.api());
    const auto list = SaneDeviceList::search(session);
    QVERIFY(wait_until([&] { return sane.hanging(); }));
    list->wait_for_local(std::chrono::milliseconds(100));
    QVERIFY2(sane.hanging(), "it waited for the device");
    QVERIFY(list->sources().isEmpty());
    sane.release();
    QVERIFY(wait_until([&] { return list->sources().size() == 1; }));
}

void SaneSessionTest::a_search_that_fails_finds_nothing() {
    ScriptedSane sane;
    sane.add();
    sane.listing = SANE_STATUS_NO_MEM;
    const QRegularExpression words(QStringLiteral("search for scanners failed: .*memory"));
    QTest::ignoreMessage(QtWarningMsg, words);
    QTest::ignoreMessage(QtWarningMsg, words);
    SaneSession session(sane.api());
    const auto list = SaneDeviceList::search(session);
    QVERIFY(wait_until([&] { return list->complete(); }));
    QVERIFY(list->sources().isEmpty());
}

void SaneSessionTest::sane_that_cannot_be_started_offers_nothing() {
    ScriptedSane sane;
    sane.add();
    sane.init = SANE_STATUS_IO_ERROR;
    {
        SaneSession session(sane.api());
        const auto list = SaneDeviceList::search(session);
        QVERIFY(wait_until([&] { return list->complete(); }));
        QVERIFY(list->sources().isEmpty());
    }
    QVERIFY(!sane.calls().contains(QStringLiteral("list local")));
    QVERIFY(!sane.calls().contains(QStringLiteral("exit")));
}

void SaneSessionTest::a_device_that_hangs_does_not_keep_the_session_alive() {
    ScriptedSane sane;
    sane.add();
    sane.hang(QStringLiteral("list local"));
    {
        SaneSession session(sane.api());
        const auto list = SaneDeviceList::search(session);
        QVERIFY(wait_until([&] { return sane.hanging(); }));
    }
    QVERIFY2(sane.hanging(), "it waited for the device");
}

} // namespace folidex

QTEST_GUILESS_MAIN(folidex::SaneSessionTest)
#include "test_sane_session.moc"
