// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "tests/forms/capture/capture_desk.h"

#include <QStyleOptionButton>

using namespace folidex;
using namespace folidex::test;
using namespace Qt::StringLiterals;

namespace {

const QStringList kTabOrder{
    u"txtDescription"_s, u"dt"_s,      u"cmbTags"_s,  u"cmdAdd"_s,  u"fg1"_s,       u"cmdScan"_s,
    u"cmdView"_s,        u"cmdSave"_s, u"cmdSave2"_s, u"cmdDrop"_s, u"cmdCancel"_s, u"cmdHelp"_s};

} // namespace

class TestCaptureLayout : public QObject {
    Q_OBJECT

    std::unique_ptr<CaptureDesk> desk_;

    void nothing_is_clipped() {
        const QList<QWidget*> widgets = desk_->form->findChildren<QWidget*>();
        for (const QWidget* widget : widgets) {
            if (!widget->isVisible() || widget->window() != desk_->form.get())
                continue;
            const QRect place(widget->mapTo(desk_->form.get(), QPoint()), widget->size());
            if (widget->parentWidget() == desk_->form.get())
                QVERIFY2(desk_->form->rect().contains(place), qPrintable(widget->objectName()));
            if (const auto* button = qobject_cast<const QPushButton*>(widget))
                QVERIFY2(button->width() >= button->sizeHint().width() &&
                             button->height() >= button->sizeHint().height(),
                         qPrintable(widget->objectName()));
            if (const auto* label = qobject_cast<const QLabel*>(widget)) {
                const QRect needed = label->fontMetrics().boundingRect(
                    QRect(0, 0, label->width(), 10000),
                    label->wordWrap() ? int(Qt::TextWordWrap) : 0, label->text());
                QVERIFY2(label->height() >= needed.height(), qPrintable(widget->objectName()));
            }
        }
    }

private Q_SLOTS:
    void init() { desk_ = std::make_unique<CaptureDesk>(); }
    void cleanup() {
        leave(desk_);
        QApplication::setFont(QFont());
    }

    void tab_goes_through_the_form_as_it_is_read() {
        const int link = desk_->station.add_document(u"Old"_s, 40098, {}, u"1009"_s, u"a.pdf"_s);
        desk_->open(link);
        QStringList visited{desk_->focus_name()};
        // Day, month and year are steps of their own within the date.
        for (qsizetype step = 0; step < kTabOrder.size() + 2; ++step) {
            QTest::keyClick(desk_->form->focusWidget(), Qt::Key_Tab);
            if (visited.last() != desk_->focus_name())
                visited.append(desk_->focus_name());
        }
        QCOMPARE(visited, kTabOrder + QStringList(kTabOrder.first()));
    }

    void every_control_has_a_name_to_be_read_aloud_data() {
        QTest::addColumn<QString>("control");
        QTest::addColumn<QString>("name");
        const QStringList names{
            u"Description"_s, u"Date"_s, u"Tags"_s, u"Add"_s,        u"Assigned tags"_s,
            u"Scan"_s,        u"View"_s, u"Save"_s, u"Save & New"_s, u"Retain tags menu"_s,
            u"Cancel"_s,      u"Help"_s};
        for (qsizetype k = 0; k < names.size(); ++k)
            QTest::newRow(qPrintable(kTabOrder[k])) << kTabOrder[k] << names[k];
    }
    void every_control_has_a_name_to_be_read_aloud() {
        QFETCH(QString, control);
        desk_->open();
        QTEST(desk_->control<QWidget>(control.toLatin1().constData())->accessibleName(), "name");
    }

    void no_button_is_pressed_by_enter_elsewhere() {
        desk_->open();
        for (const QPushButton* button : desk_->form->findChildren<QPushButton*>())
            QVERIFY2(!button->isDefault() && !button->autoDefault(),
                     qPrintable(button->objectName()));
        QTest::keyClick(desk_->description(), Qt::Key_Return);
        QVERIFY(desk_->form->isVisible());
    }

    void enter_presses_the_button_that_has_the_focus() {
        desk_->have_help_page();
        desk_->open();
        desk_->control<QPushButton>("cmdHelp")->setFocus();
        QTest::keyClick(desk_->control<QPushButton>("cmdHelp"), Qt::Key_Return);
        QCOMPARE(desk_->opened.size(), 1);
        desk_->control<QPushButton>("cmdCancel")->setFocus();
        QTest::keyClick(desk_->control<QPushButton>("cmdCancel"), Qt::Key_Enter);
        QVERIFY(!desk_->form->isVisible());
    }

    void keys_save_and_help() {
        desk_->have_help_page();
        desk_->open();
        desk_->boxes.expect(u"Please enter a valid description."_s, kInformationIcon, u"Error"_s);
        QTest::keyClick(desk_->description(), Qt::Key_S, Qt::ControlModifier);
        QTRY_COMPARE(desk_->boxes.shown().size(), 1);
        QTest::keyClick(desk_->description(), Qt::Key_F1);
        QTRY_COMPARE(desk_->opened.size(), 1);
    }

    void the_idle_button_is_never_shown_and_does_nothing() {
        desk_->open();
        auto* idle = desk_->control<QPushButton>("OsenXPButton1");
        QVERIFY(!idle->isVisible());
        idle->click();
        QVERIFY(desk_->form->isVisible());
        QCOMPARE(desk_->opened, QStringList());
    }

    void texts_fit_at_any_font_size_data() {
        QTest::addColumn<int>("points");
        for (const int points : {8, 10, 14, 20, 28})
            QTest::addRow("%d points", points) << points;
    }
    void texts_fit_at_any_font_size() {
        QFETCH(int, points);
        QFont font;
        font.setPointSize(points);
        QApplication::setFont(font);
        desk_->open();
        nothing_is_clipped();
        desk_->fill_in(u"Letter"_s, u"Letters"_s);
        nothing_is_clipped();
        desk_->scanner->sources.clear();
        desk_->open();
        nothing_is_clipped();
    }

    void nothing_moves_when_a_document_arrives() {
        const int letters = desk_->station.add_tag(u"Letters"_s);
        const int link = desk_->station.add_document(QString(500, u'x'), 40098, {letters});
        desk_->show(link);
        const auto places = [this] {
            QList<QRect> rects{desk_->form->geometry()};
            for (const QString& name : kTabOrder)
                rects.append(desk_->control<QWidget>(name.toLatin1().constData())->geometry());
            return rects;
        };
        const QList<QRect> before = places();
        QTRY_COMPARE(desk_->assigned()->rows(), 1);
        QCOMPARE(places(), before);
    }
};

QTEST_MAIN(TestCaptureLayout)
#include "test_capture_layout.moc"
