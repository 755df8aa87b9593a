// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "app/process_values.h"
#include "browser/empty_note.h"
#include "browser/frmMain.h"
#include "browser/late_wait_cursor.h"
#include "browser/results_model.h"
#include "browser/results_statement.h"
#include "browser/status_line.h"
#include "common/day_number.h"
#include "common/error_trap.h"
#include "common/message_box.h"
#include "controls/date_picker.h"
#include "controls/grid.h"
#include "controls/tag_combo.h"
#include "data/database.h"
#include "data/link_numbers.h"
#include "data/sql_dialect.h"

#include <QCheckBox>
#include <QCoreApplication>
#include <QLabel>
#include <QPushButton>
#include <QScrollBar>

namespace folidex {

namespace {

// Looking at the clock for each row would cost more than the row.
constexpr int kRowsBetweenLooks = 512;

} // namespace

void frmMain::pop_me() {
    trapped("frmMain", "pop_me", [&] {
        Recordset tags = database().open_recordset(
            QStringLiteral("Select Description, Link from Tags  order by description"));
        std::vector<TagCombo::Item> items;
        if (tags.record_count() > 0) {
            tags.move_last();
            tags.move_first();
            items.reserve(static_cast<std::size_t>(tags.record_count()));
            for (const auto& row : tags.get_rows())
                items.push_back({row[0].toString(), row[1].toString()});
        }
        cmbTags->set_items(std::move(items));
        cmbTags->set_column_format(QStringLiteral("0;2700;<;Description|1;0;>;Code"));
        cmbTags->set_prompt(QStringLiteral("Enter or Select"));
        tags.close();
    });
}

void frmMain::fill_me() {
    trapped("frmMain", "fill_me", [&] {
        const int scrolled = fgR->verticalScrollBar()->value();
        results_->set_rows({});
        // Nothing is saved for an emptied list: the next start brings the last choice back.
        if (fgL->rows() == 0) {
            show_status();
            return;
        }
        query_documents();
        // The list learns its length now, so that it stays where it was.
        fgR->doItemsLayout();
        fgR->verticalScrollBar()->setValue(scrolled);
        save_filter();
        clear_highlight();
        show_status();
    });
}

void frmMain::query_documents() {
    std::optional<DateRange> range;
    if (!chkDates->isChecked())
        range = DateRange{dtFrom->value(), dtTo->value()};
    LateWaitCursor wait;
    const DatabasePulse pulse(database(), [&wait] { wait.passing(); });
    Recordset found = database().open_recordset(results_statement(chosen_links(), range));
    ResultRows rows;
    if (!found.eof()) {
        const int date = found.field_index(QStringLiteral("Date"));
        const int description = found.field_index(QStringLiteral("Description"));
        const int file_name = found.field_index(QStringLiteral("fName"));
        const int location = found.field_index(QStringLiteral("location"));
        const int link = found.field_index(QStringLiteral("link"));
        for (; !found.eof(); found.move_next()) {
            rows.add(found.value_at(date), found.text_at(description), found.text_at(file_name),
                     found.text_at(location), found.text_at(link));
            if (rows.count() % kRowsBetweenLooks == 0)
                wait.passing();
        }
    }
    found.close();
    results_->set_rows(std::move(rows));
}

void frmMain::color_tags() {
    trapped("frmMain", "color_tags", [&] {
        if (fgL->rows() == 0)
            return;
        clear_highlight();
        if (fgR->row() < 1)
            return;
        Recordset carried = database().open_recordset(
            QStringLiteral("Select * from tagged where scan = ") + selected_link());
        for (; !carried.eof(); carried.move_next()) {
            const QString tag = carried.text(QStringLiteral("Tag"));
            for (int row = 0; row < fgL->rows(); ++row)
                if (fgL->text(row, 2) == tag)
                    fgL->set_cell_color(row, 0, tag_color(true));
        }
        carried.close();
    });
}

QColor frmMain::tag_color(bool carried) const {
    // The grid turns both for a dark palette.
    return carried ? QColor(240, 240, 250) : QColor(255, 255, 255);
}

void frmMain::clear_highlight() {
    for (int row = 0; row < fgL->rows(); ++row)
        fgL->set_cell_color(row, 0, tag_color(false));
}

void frmMain::cmdAdd_Click() {
    trapped("frmMain", "cmdAdd_Click", [&] {
        QString text = cmbTags->entered_text();
        if (text.isEmpty()) {
            message_box(QStringLiteral("Please or select a valid tag in the drop down list."),
                        kInformationIcon, QStringLiteral("Error"));
            cmbTags->setFocus();
            return;
        }
        const int index = cmbTags->list_index();
        // A tag typed in other letters is the list's tag, so that it is not listed twice.
        if (index >= 0)
            text = cmbTags->item(index).description;
        const int listed = fgL->rows() > 0 ? fgL->find_row(text, 0, 1) : -1;
        if (listed >= 0) {
            fgL->set_row(listed);
            fgL->show_row(listed);
            cmbTags->set_entered_text({});
            cmbTags->setFocus();
            return;
        }
        if (index < 0) {
            const QString link = QString::number(getNewLink({}));
            database().execute(QStringLiteral("INSERT into Tags ([Link], [Description]) VALUES (") +
                               link + QStringLiteral(", '") + quoted(text) + QStringLiteral("')"));
            add_chosen_tag(text, link);
            pop_me();
        } else {
            add_chosen_tag(text, cmbTags->item(index).code);
        }
        mark_chosen_tags();
        let_pending_events_run();
        cmbTags->set_entered_text({});
        cmbTags->setFocus();
        fill_me();
        clear_highlight();
    });
}

void frmMain::add_chosen_tag(const QString& description, const QString& link) {
    const int row = fgL->add_row();
    fgL->set_text(row, 1, description);
    fgL->set_text(row, 2, link);
}

void frmMain::mark_chosen_tags() {
    for (int row = 0; row < fgL->rows(); ++row)
        fgL->set_picture(row, 0, Picture1->pixmap());
}

QStringList frmMain::chosen_links() const {
    QStringList links;
    for (int row = 0; row < fgL->rows(); ++row)
        links.append(fgL->text(row, 2));
    return links;
}

void frmMain::let_pending_events_run() {
    // Key presses and clicks wait: they must not act on a list that is being changed.
    QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
}

void frmMain::cmbTags_KeyDown(int key_code) {
    trapped("frmMain", "cmbTags_KeyDown", [&] {
        if (key_code == kEnterKey)
            cmdAdd_Click();
    });
}

void frmMain::fgL_Click() {
    trapped("frmMain", "fgL_Click", [&] {
        const int row = fgL->mouse_row();
        if (fgL->mouse_column() != 0 || row < 0 || row >= fgL->rows())
            return;
        fgL->remove_row(row);
        cmbTags->setFocus();
        fill_me();
    });
}

void frmMain::chkDates_Click() {
    trapped("frmMain", "chkDates_Click", [&] { fill_me(); });
}

void frmMain::dtFrom_Change() {
    trapped("frmMain", "dtFrom_Change", [&] { fill_me(); });
}

void frmMain::dtTo_Change() {
    trapped("frmMain", "dtTo_Change", [&] { fill_me(); });
}

void frmMain::fgR_AfterRowColChange() {
    trapped("frmMain", "fgR_AfterRowColChange", [&] { color_tags(); });
}

void frmMain::show_status() {
    const int documents = results_->rowCount();
    status_->show_count(documents);
    status_->show_folder(DataFolder);
    const bool chosen = fgL->rows() > 0;
    no_tags_->say(chosen ? QString() : QStringLiteral("No tag chosen yet"));
    QString note;
    if (documents == 0 && !chosen)
        note = cmbTags->item_count() > 0
                   ? QStringLiteral("Choose a tag to list its documents.")
                   : QStringLiteral("Press New to scan and file the first document.");
    else if (documents == 0)
        note = chkDates->isChecked()
                   ? QStringLiteral("No document carries a chosen tag.")
                   : QStringLiteral("No document with a chosen tag lies between these dates.\n"
                                    "Check All Dates to list it whatever its date.");
    no_documents_->say(note);
    hint_->setText(documents == 0 ? QString() : double_click_hint());
}

} // namespace folidex
