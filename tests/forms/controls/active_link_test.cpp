// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "controls/active_link.h"

#include "common/error.h"
#include "common/message_box.h"
#include "tests/support/planned_boxes.h"

#include <QTest>

using namespace folidex;
using namespace Qt::StringLiterals;

class ActiveLinkTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() {
        former_ = ActiveLink::opener;
        opened_.clear();
        ActiveLink::opener = [this](const QString& target) { opened_.append(target); };
    }
    void cleanup() { ActiveLink::opener = former_; }

    void a_file_is_handed_over_as_it_is_written() {
        ActiveLink link;
        QCOMPARE(link.mode(), int(ActiveLink::kFile));
        link.set_target(u"/data folder/scanned_files/1009/100%25 #1.pdf"_s);
        link.set_mode(ActiveLink::kFile);
        link.start();
        QCOMPARE(opened_, QStringList{u"/data folder/scanned_files/1009/100%25 #1.pdf"_s});
    }

    void a_web_address_is_handed_over() {
        ActiveLink link;
        link.set_mode(ActiveLink::kWebAddress);
        link.set_target(u"https://folidex.example/help/index.html"_s);
        link.start();
        link.start();
        QCOMPARE(opened_.size(), 2);
        QCOMPARE(opened_.constFirst(), u"https://folidex.example/help/index.html"_s);
    }

    void a_file_that_is_not_there_is_not_looked_for() {
        ActiveLink link;
        link.set_target(u"/no/such/file.pdf"_s);
        link.start();
        QCOMPARE(opened_, QStringList{u"/no/such/file.pdf"_s});
    }

    void a_refusal_of_the_desktop_is_told_and_goes_no_further() {
        ActiveLink::opener = [](const QString& target) {
            throw Error{51, u"No program could be started to open "_s + target};
        };
        test::PlannedBoxes boxes;
        boxes.expect(u"No program could be started to open /a.pdf"_s, kOkOnly, u"Folidex"_s);
        ActiveLink link;
        link.set_target(u"/a.pdf"_s);
        link.start();
        QVERIFY(boxes.verify());
    }

private:
    std::function<void(const QString&)> former_;
    QStringList opened_;
};

QTEST_MAIN(ActiveLinkTest)
#include "active_link_test.moc"
