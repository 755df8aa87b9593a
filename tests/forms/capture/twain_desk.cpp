// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "tests/forms/capture/twain_desk.h"

#include <QFile>
#include <QRegularExpression>

using namespace Qt::StringLiterals;

namespace folidex::test {

/// Tells when it is opened and when it scans.
class TwainDesk::WatchedScanner : public TwainScanner {
public:
    explicit WatchedScanner(TwainDesk& desk) : TwainScanner(desk.session()), desk_(desk) {
        set_patience(desk.patience);
    }
    bool open_source() override {
        begin(desk_.while_opening_);
        return TwainScanner::open_source();
    }
    void acquire(QWidget* parent) override {
        begin(desk_.while_scanning_);
        TwainScanner::acquire(parent);
    }

private:
    void begin(std::function<void()>& action) {
        if (action)
            later(&watch_, 0, std::exchange(action, {}));
    }

    TwainDesk& desk_;
    QObject watch_;
};

TwainDesk::TwainDesk() {
    // Beyond the patience with a list, which is what ends the waiting for one that hangs.
    patience.first_answer = std::chrono::minutes(10);
    patience.give_up = std::chrono::minutes(1);
    twain.list(64, {u"source 0 Front desk"_s, u"source 1 Archive"_s, u"done 0"_s});
    twain.list(32, {u"source 0 Old copier"_s, u"done 0"_s});
    set_scanner_factory([this] { return std::make_unique<WatchedScanner>(*this); });
}

TwainDesk::~TwainDesk() {
    form.reset();
}

const std::shared_ptr<TwainSession>& TwainDesk::session() {
    if (!session_)
        session_ = std::make_shared<TwainSession>(twain.settings);
    return session_;
}

void TwainDesk::open_listed(int link) {
    open(link);
    wait_until([this] { return !session()->sources().searching(); });
}

void TwainDesk::scan_with(const QStringList& script) {
    twain.scan(64, script);
    scan();
}

void TwainDesk::press_when_shown(const char* button) {
    if (wait_until([button] { return progress_control(button) != nullptr; }))
        QTest::mouseClick(progress_control(button), Qt::LeftButton);
}

void TwainDesk::expect_box(const QString& part) {
    boxes.expect_containing(part, kOkOnly, QString::fromLatin1(kDefaultBoxTitle));
}

QByteArray TwainDesk::scanned_pdf() const {
    QFile file(temporary_scan());
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QList<int> TwainDesk::scanned_widths() const {
    static const QRegularExpression width(u"/Subtype /Image /Width (\\d+)"_s);
    QList<int> widths;
    const QString pdf = QString::fromLatin1(scanned_pdf());
    for (auto found = width.globalMatch(pdf); found.hasNext();)
        widths.append(found.next().captured(1).toInt());
    return widths;
}

void TwainDeskTest::init() {
    desk_ = std::make_unique<TwainDesk>();
}

void TwainDeskTest::cleanup() {
    const bool as_planned = desk_->boxes.verify();
    const QList<int> ended = desk_->ended;
    desk_.reset();
    QVERIFY(as_planned);
    QCOMPARE(ended, QList<int>());
}

} // namespace folidex::test
