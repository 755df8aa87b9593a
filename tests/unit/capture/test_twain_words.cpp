// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "capture/scanner/twain_words.h"

#include <QRegularExpression>
#include <QSet>
#include <QTest>

using namespace folidex;
using twain::Ending;
using twain::Outcome;
using twain::Step;

namespace {

constexpr std::uint16_t kFailure = 1;

/// Condition codes by their names in the public document, with a word that a clerk must find.
struct Code {
    const char* name;
    std::uint16_t code;
    const char* word;
};
constexpr Code kConditions[] = {
    {"SUCCESS", 0, "no reason"},
    {"BUMMER", 1, "unknown"},
    {"LOWMEMORY", 2, "memory"},
    {"NODS", 3, "driver was not found"},
    {"MAXCONNECTIONS", 4, "in use"},
    {"OPERATIONERROR", 5, "driver met a failure"},
    {"BADCAP", 6, "setting"},
    {"BADPROTOCOL", 9, "does not know what it was asked for"},
    {"BADVALUE", 10, "value"},
    {"SEQERROR", 11, "out of turn"},
    {"BADDEST", 12, "source manager"},
    {"CAPUNSUPPORTED", 13, "does not support"},
    {"CAPBADOPERATION", 14, "setting"},
    {"CAPSEQERROR", 15, "depends"},
    {"DENIED", 16, "denied"},
    {"FILEEXISTS", 17, "there already"},
    {"FILENOTFOUND", 18, "not found"},
    {"NOTEMPTY", 19, "not empty"},
    {"PAPERJAM", 20, "jammed"},
    {"PAPERDOUBLEFEED", 21, "several sheets"},
    {"FILEWRITEERROR", 22, "write a file"},
    {"CHECKDEVICEONLINE", 23, "switched off"},
    {"INTERLOCK", 24, "cover is open"},
    {"DAMAGEDCORNER", 25, "damaged corner"},
    {"FOCUSERROR", 26, "focus"},
    {"DOCTOOLIGHT", 27, "too light"},
    {"DOCTOODARK", 28, "too dark"},
    {"NOMEDIA", 29, "no paper"},
};
constexpr Code kReturns[] = {
    {"CHECKSTATUS", 2, "exactly"},
    {"CANCEL", 3, "cancelled"},
    {"DSEVENT", 4, "event"},
    {"NOTDSEVENT", 5, "event"},
    {"XFERDONE", 6, "page"},
    {"ENDOFLIST", 7, "list of scanners"},
    {"INFONOTSUPPORTED", 8, "information"},
    {"DATANOTAVAILABLE", 9, "no data"},
    {"BUSY", 10, "busy"},
    {"SCANNERLOCKED", 11, "locked"},
};

Ending failed(std::uint16_t return_code, std::uint16_t condition_code, Step step = Step::kTransfer,
              std::uint32_t pages = 0) {
    return {Outcome::kFailed, step, return_code, condition_code, 0, pages, 0};
}

QString words_of(const Ending& ending) {
    return twain_error(QStringLiteral("Acme 3000"), ending).description;
}

/// The scanner and what happened; what to do; the codes.
bool has_the_three_parts(const QString& words) {
    static const QRegularExpression shape(QStringLiteral(
        "^[^\r\n]*\"Acme 3000\"[^\r\n]*\\.\r\n\r\n[A-Z][^\r\n]+\\.\r\n\r\n\\([^\r\n]+\\)$"));
    return shape.match(words).hasMatch();
}

} // namespace

class TwainWordsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void every_condition_has_words_data();
    void every_condition_has_words();
    void every_return_code_has_words_data();
    void every_return_code_has_words();
    void codes_that_nobody_knows_still_have_words_data();
    void codes_that_nobody_knows_still_have_words();
    void no_two_conditions_read_alike();
    void a_condition_says_more_than_the_return_code();
    void every_step_is_named_data();
    void every_step_is_named();
    void what_became_of_the_pages_is_told_data();
    void what_became_of_the_pages_is_told();
    void a_crash_names_its_code_and_leaves_the_document();
    void a_helper_that_went_without_a_word_is_a_crash();
    void a_missing_manager_is_told();
    void a_page_that_is_no_good_names_the_scanner_and_the_page();
    void a_helper_that_cannot_be_started_names_its_path();
};

void TwainWordsTest::every_condition_has_words_data() {
    QTest::addColumn<int>("code");
    QTest::addColumn<QString>("word");
    for (const Code& condition : kConditions)
        QTest::newRow(condition.name) << int{condition.code} << QString::fromLatin1(condition.word);
}

void TwainWordsTest::every_condition_has_words() {
    QFETCH(int, code);
    QFETCH(QString, word);
    const QString words = words_of(failed(kFailure, static_cast<std::uint16_t>(code)));
    QVERIFY2(words.startsWith(QStringLiteral("The scanner \"Acme 3000\" reports: ")),
             qPrintable(words));
    QVERIFY2(has_the_three_parts(words), qPrintable(words));
    QVERIFY2(words.section(QStringLiteral("\r\n"), 0, 0).contains(word), qPrintable(words));
    QVERIFY2(
        words.endsWith(QStringLiteral("(TWAIN codes 1 and %1, while scanning a page)").arg(code)),
        qPrintable(words));
    const QString short_words = twain_words(kFailure, static_cast<std::uint16_t>(code));
    QVERIFY2(words.contains(short_words), qPrintable(short_words));
    QVERIFY(!short_words.endsWith(u'.'));
}

void TwainWordsTest::every_return_code_has_words_data() {
    QTest::addColumn<int>("code");
    QTest::addColumn<QString>("word");
    for (const Code& code : kReturns)
        QTest::newRow(code.name) << int{code.code} << QString::fromLatin1(code.word);
}

void TwainWordsTest::every_return_code_has_words() {
    QFETCH(int, code);
    QFETCH(QString, word);
    const QString words = words_of(failed(static_cast<std::uint16_t>(code), 0, Step::kEnable));
    QVERIFY2(has_the_three_parts(words), qPrintable(words));
    QVERIFY2(words.section(QStringLiteral("\r\n"), 0, 0).contains(word), qPrintable(words));
    QVERIFY2(words.contains(QStringLiteral("(TWAIN codes %1 and 0, while").arg(code)),
             qPrintable(words));
}

void TwainWordsTest::codes_that_nobody_knows_still_have_words_data() {
    QTest::addColumn<int>("return_code");
    QTest::addColumn<int>("condition_code");
    QTest::addColumn<QString>("word");
    const QString unknown = QStringLiteral("TWAIN does not know");
    const QString makers = QStringLiteral("only its maker knows");
    for (const int code : {7, 8, 30, 31, 99, 0x7fff})
        QTest::addRow("condition %d", code) << 1 << code << unknown;
    for (const int code : {0x8000, 0x8001, 0xffff})
        QTest::addRow("maker's condition %d", code) << 1 << code << makers;
    for (const int code : {12, 13, 0x7fff})
        QTest::addRow("return code %d", code) << code << 0 << unknown;
    for (const int code : {0x8000, 0xffff})
        QTest::addRow("maker's return code %d", code) << code << 0 << makers;
}

void TwainWordsTest::codes_that_nobody_knows_still_have_words() {
    QFETCH(int, return_code);
    QFETCH(int, condition_code);
    QFETCH(QString, word);
    const QString words = words_of(failed(static_cast<std::uint16_t>(return_code),
                                          static_cast<std::uint16_t>(condition_code)));
    QVERIFY2(has_the_three_parts(words), qPrintable(words));
    QVERIFY2(words.contains(word), qPrintable(words));
    QVERIFY2(words.contains(QStringLiteral("codes %1 and %2").arg(return_code).arg(condition_code)),
             qPrintable(words));
}

void TwainWordsTest::no_two_conditions_read_alike() {
    QSet<QString> all;
    for (const Code& condition : kConditions)
        all.insert(twain_words(kFailure, condition.code));
    for (const Code& code : kReturns)
        all.insert(twain_words(code.code, 0));
    QCOMPARE(all.size(), qsizetype{std::size(kConditions) + std::size(kReturns)});
}

void TwainWordsTest::a_condition_says_more_than_the_return_code() {
    const std::uint16_t jam = 20;
    for (const std::uint16_t code : std::initializer_list<std::uint16_t>{0, 1, 2})
        QCOMPARE(twain_words(code, jam), QStringLiteral("Paper is jammed in the feeder"));
    QCOMPARE(twain_words(10, jam), QStringLiteral("It is busy"));
}

void TwainWordsTest::every_step_is_named_data() {
    QTest::addColumn<int>("step");
    QTest::addColumn<QString>("named");
    const auto row = [](Step step, const char* named) {
        QTest::newRow(named) << static_cast<int>(step) << QString::fromLatin1(named);
    };
    row(Step::kNone, "while scanning)");
    row(Step::kLoadManager, "while loading the source manager)");
    row(Step::kOpenManager, "while opening the source manager)");
    row(Step::kFindSource, "while finding the source)");
    row(Step::kOpenSource, "while opening the source)");
    row(Step::kEnable, "while starting the scan)");
    row(Step::kPageInfo, "while asking about a page)");
    row(Step::kTransfer, "while scanning a page)");
    row(Step::kBadPage, "while reading a page)");
    row(Step::kEndPage, "while ending a page)");
    row(Step::kForeignPage, "while choosing the form of a page)");
    row(static_cast<Step>(77), "while step 77)");
}

void TwainWordsTest::every_step_is_named() {
    QFETCH(int, step);
    QFETCH(QString, named);
    const QString words = words_of(failed(kFailure, 11, static_cast<Step>(step)));
    QVERIFY2(words.endsWith(named), qPrintable(words));
    QVERIFY2(words.contains(QStringLiteral("out of turn")), qPrintable(words));
}

void TwainWordsTest::what_became_of_the_pages_is_told_data() {
    QTest::addColumn<int>("pages");
    QTest::addColumn<QString>("told");
    QTest::newRow("none") << 0 << QString();
    QTest::newRow("one") << 1 << QStringLiteral(" The page scanned before was not kept.\r\n");
    QTest::newRow("many") << 12
                          << QStringLiteral(" The 12 pages scanned before were not kept.\r\n");
}

void TwainWordsTest::what_became_of_the_pages_is_told() {
    QFETCH(int, pages);
    QFETCH(QString, told);
    const QString words =
        words_of(failed(kFailure, 23, Step::kTransfer, static_cast<std::uint32_t>(pages)));
    QVERIFY2(has_the_three_parts(words), qPrintable(words));
    if (told.isEmpty())
        QVERIFY2(!words.contains(QStringLiteral("kept")), qPrintable(words));
    else
        QVERIFY2(words.contains(told), qPrintable(words));
}

void TwainWordsTest::a_crash_names_its_code_and_leaves_the_document() {
    Ending ending{Outcome::kCrashed, Step::kTransfer, 0, 0, 0, 3, 0xC0000005u};
    const QString words = words_of(ending);
    QVERIFY2(has_the_three_parts(words), qPrintable(words));
    QVERIFY2(words.startsWith(QStringLiteral("The driver of the scanner \"Acme 3000\" has crashed. "
                                             "The 3 pages scanned before were not kept. The "
                                             "document is as it was before.\r\n")),
             qPrintable(words));
    QVERIFY2(words.endsWith(QStringLiteral("(Exception C0000005)")), qPrintable(words));
    ending.pages = 0;
    QVERIFY(words_of(ending).contains(QStringLiteral("has crashed. No page was kept. ")));
}

void TwainWordsTest::a_helper_that_went_without_a_word_is_a_crash() {
    const QString words = twain_gone_error(QStringLiteral("Acme 3000"), 1, 3).description;
    QVERIFY2(has_the_three_parts(words), qPrintable(words));
    QVERIFY2(words.contains(QStringLiteral("has crashed. The page scanned before was not kept.")),
             qPrintable(words));
    QVERIFY2(words.endsWith(QStringLiteral("(Exit code 00000003)")), qPrintable(words));
}

void TwainWordsTest::a_missing_manager_is_told() {
    const QString words = words_of({Outcome::kNoManager, Step::kLoadManager, 0, 0, 0, 0, 0});
    QVERIFY2(has_the_three_parts(words), qPrintable(words));
    QVERIFY2(words.contains(QStringLiteral("source manager is missing")), qPrintable(words));
}

void TwainWordsTest::a_page_that_is_no_good_names_the_scanner_and_the_page() {
    const Error error =
        twain_page_error(QStringLiteral("Acme %1"), 4, {7, QStringLiteral("It is too wide.")});
    QCOMPARE(error.number, 7);
    QCOMPARE(error.description, QStringLiteral("Page 4 of the scanner \"Acme %1\" is no good; no "
                                               "page was kept.\r\n\r\nIt is too wide."));
}

void TwainWordsTest::a_helper_that_cannot_be_started_names_its_path() {
    const QString words = twain_program_error(QStringLiteral("Acme"), QStringLiteral("gone.exe"),
                                              QStringLiteral("No such file"))
                              .description;
    for (const char* part : {"\"Acme\"", "gone.exe", "No such file", "Install Folidex again"})
        QVERIFY2(words.contains(QString::fromLatin1(part)), qPrintable(words));
}

QTEST_GUILESS_MAIN(TwainWordsTest)
#include "test_twain_words.moc"
