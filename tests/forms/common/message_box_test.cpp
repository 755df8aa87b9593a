// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "common/message_box.h"

#include "common/error_trap.h"

#include <QApplication>
#include <QInputDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>
#include <QTextBlock>
#include <QTextDocument>
#include <QTextLayout>

using namespace folidex;
using namespace Qt::StringLiterals;

class MessageBoxTest : public QObject {
    Q_OBJECT

private:
    /// Looks at the box as soon as it is up, and closes it if the look does not.
    template <class Box> void when_up(std::function<void(Box&)> look) {
        looked_ = 0;
        later(this, 0, [this, look = std::move(look)] {
            auto* box = qobject_cast<Box*>(QApplication::activeModalWidget());
            if (!box)
                return;
            ++looked_;
            look(*box);
            if (box->isVisible())
                box->reject();
        });
    }
    int looked_ = 0;

    /// The text in the lines that the box shows.
    static QStringList lines_of(const QMessageBox& box) {
        const auto* document =
            box.findChild<QLabel*>(u"qt_msgbox_label"_s)->findChild<QTextDocument*>();
        QStringList lines;
        for (QTextBlock block = document->begin(); block.isValid(); block = block.next())
            for (int i = 0; i < block.layout()->lineCount(); ++i) {
                const QTextLine line = block.layout()->lineAt(i);
                lines << block.text().mid(line.textStart(), line.textLength());
            }
        return lines;
    }

private Q_SLOTS:
    void style_decides_icon_and_buttons_data() {
        QTest::addColumn<int>("style");
        QTest::addColumn<int>("icon");
        QTest::addColumn<int>("buttons");
        QTest::newRow("plain") << 0 << int(QMessageBox::NoIcon) << int(QMessageBox::Ok);
        QTest::newRow("critical") << 16 << int(QMessageBox::Critical) << int(QMessageBox::Ok);
        QTest::newRow("information") << 64 << int(QMessageBox::Information) << int(QMessageBox::Ok);
        QTest::newRow("question") << 36 << int(QMessageBox::Question)
                                  << int(QMessageBox::Yes | QMessageBox::No);
    }
    void style_decides_icon_and_buttons() {
        QFETCH(int, style);
        QFETCH(int, icon);
        QFETCH(int, buttons);
        when_up<QMessageBox>([&](QMessageBox& box) {
            QCOMPARE(int(box.icon()), icon);
            QCOMPARE(int(box.standardButtons()), buttons);
            QCOMPARE(box.windowTitle(), u"Title"_s);
            QVERIFY(box.isModal());
            QCOMPARE(box.iconPixmap().isNull(), icon == int(QMessageBox::NoIcon));
        });
        message_box(u"text"_s, style, u"Title"_s);
        QCOMPARE(looked_, 1);
    }

    void the_answer_is_the_button_data() {
        QTest::addColumn<int>("style");
        QTest::addColumn<int>("button");
        QTest::addColumn<int>("answer");
        QTest::newRow("ok") << 64 << int(QMessageBox::Ok) << kAnswerOk;
        QTest::newRow("yes") << 36 << int(QMessageBox::Yes) << kAnswerYes;
        QTest::newRow("no") << 36 << int(QMessageBox::No) << kAnswerNo;
    }
    void the_answer_is_the_button() {
        QFETCH(int, style);
        QFETCH(int, button);
        QFETCH(int, answer);
        when_up<QMessageBox>([&](QMessageBox& box) {
            QTest::mouseClick(box.button(QMessageBox::StandardButton(button)), Qt::LeftButton);
        });
        QCOMPARE(message_box(u"text"_s, style, u"Title"_s), answer);
        QCOMPARE(looked_, 1);
    }

    void escape_means_no_and_return_means_yes() {
        when_up<QMessageBox>([](QMessageBox& box) { QTest::keyClick(&box, Qt::Key_Escape); });
        QCOMPARE(message_box(u"Sure?"_s, 36, u"Confirm"_s), kAnswerNo);
        when_up<QMessageBox>([](QMessageBox& box) { QTest::keyClick(&box, Qt::Key_Return); });
        QCOMPARE(message_box(u"Sure?"_s, 36, u"Confirm"_s), kAnswerYes);
    }

    void the_text_is_plain_with_its_lines() {
        when_up<QMessageBox>([](QMessageBox& box) {
            QCOMPARE(box.textFormat(), Qt::PlainText);
            QCOMPARE(box.text(), u"<b>a</b> & b\n\nc"_s);
            QVERIFY(box.detailedText().isEmpty());
        });
        message_box(u"<b>a</b> & b\r\n\r\nc"_s);
        QCOMPARE(looked_, 1);
    }

    void it_belongs_to_the_active_window_and_is_titled_after_the_program() {
        QWidget window;
        window.show();
        window.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&window));
        when_up<QMessageBox>([&](QMessageBox& box) {
            QCOMPARE(box.parentWidget(), &window);
            QCOMPARE(box.windowTitle(), u"Folidex"_s);
        });
        message_box(u"text"_s);
        QCOMPARE(looked_, 1);
    }

    void a_window_that_goes_takes_its_box_along() {
        QPointer<QWidget> window = new QWidget;
        window->show();
        window->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(window));
        later(this, 0, [window] { delete window; });
        QCOMPARE(message_box(u"Sure?"_s, 36, u"Confirm"_s), kAnswerNo);
        QVERIFY(window.isNull());
    }

    void long_and_odd_texts_fit_the_screen_and_are_kept_whole_data() {
        QTest::addColumn<QString>("text");
        QTest::newRow("path") << u"/"_s + QString(u"folder/"_s).repeated(60);
        QTest::newRow("path on a drive") << u"C:\\"_s + QString(u"folder\\"_s).repeated(60);
        QTest::newRow("one long word") << QString(32000, u'x');
        QTest::newRow("many lines") << QString(u"line\n"_s).repeated(500);
        QTest::newRow("emoji") << QString(u"\U0001F4C4"_s).repeated(2000);
        QTest::newRow("right to left") << QString(u"\u05E9\u05DC\u05D5\u05DD "_s).repeated(400);
    }
    void long_and_odd_texts_fit_the_screen_and_are_kept_whole() {
        QFETCH(QString, text);
        when_up<QMessageBox>([&](QMessageBox& box) {
            const QSize screen = box.screen()->availableGeometry().size();
            QVERIFY(box.frameGeometry().width() <= screen.width());
            QVERIFY(box.frameGeometry().height() <= screen.height());
            QString shown = box.detailedText().isEmpty() ? box.text() : box.detailedText();
            QCOMPARE(shown.remove(u'\n'), QString(text).remove(u'\n'));
            const QString head = box.text();
            QVERIFY(head.toUtf8().size() > 0 && !head.contains(QChar::ReplacementCharacter));
            QCOMPARE(QString::fromUtf8(head.toUtf8()), head);
        });
        message_box(text, 16, u"Error"_s);
        QCOMPARE(looked_, 1);
    }

    void a_path_is_not_parted_from_its_drive() {
        // Longer by a letter each time, so that the line ends everywhere in the path.
        for (int letters = 1; letters < 40 && !QTest::currentTestFailed(); ++letters) {
            const QString text =
                QString(letters, u'x') +
                u" of P:\\Office\\scanned_files\\1009\\101209143005_57.pdf is open"_s;
            when_up<QMessageBox>([&](QMessageBox& box) {
                QCOMPARE(box.text(), text);
                const QStringList lines = lines_of(box);
                QCOMPARE(lines.join(QString()), text);
                for (const QString& line : lines)
                    QVERIFY2(!line.endsWith(u"P:"), qPrintable(lines.join(u'|')));
            });
            message_box(text, 16, u"Error"_s);
            QCOMPARE(looked_, 1);
        }
    }

    void an_input_box_returns_what_was_typed() {
        when_up<QInputDialog>([](QInputDialog& box) {
            QCOMPARE(box.windowTitle(), u"Profile"_s);
            QTest::keyClicks(box.findChild<QLineEdit*>(), u"Bills & more"_s);
            QTest::keyClick(&box, Qt::Key_Return);
        });
        QCOMPARE(input_box(u"Name"_s, u"Profile"_s), u"Bills & more"_s);
        QCOMPARE(looked_, 1);
    }

    void a_cancelled_input_box_returns_nothing_and_its_prompt_is_plain() {
        when_up<QInputDialog>([](QInputDialog& box) {
            QTest::keyClicks(box.findChild<QLineEdit*>(), u"half"_s);
            const auto* label = box.findChild<QLabel*>();
            QCOMPARE(label->text(), u"<i>Name</i>\nplease"_s);
            QCOMPARE(label->textFormat(), Qt::PlainText);
            QTest::keyClick(&box, Qt::Key_Escape);
        });
        QCOMPARE(input_box(u"<i>Name</i>\r\nplease"_s, u"Profile"_s), QString());
        QCOMPARE(looked_, 1);
    }

    void presenters_replace_the_boxes_and_nothing_restores_them() {
        set_message_box_presenter([](const QString&, int, const QString&) { return 42; });
        QCOMPARE(message_box(u"x"_s), 42);
        set_message_box_presenter({});
        when_up<QMessageBox>([](QMessageBox&) {});
        QCOMPARE(message_box(u"x"_s), kAnswerOk);
        QCOMPARE(looked_, 1);
    }
};

QTEST_MAIN(MessageBoxTest)
#include "message_box_test.moc"
