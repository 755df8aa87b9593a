// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "app/process_values.h"
#include "capture/filing.h"
#include "capture/frmScanNew.h"
#include "capture/wait_cursor.h"
#include "common/day_number.h"
#include "common/error_trap.h"
#include "common/message_box.h"
#include "controls/date_picker.h"
#include "controls/grid.h"
#include "controls/tag_combo.h"
#include "data/database.h"
#include "data/link_numbers.h"
#include "data/sql_dialect.h"

#include <QHash>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTimer>

using namespace Qt::StringLiterals;

namespace folidex {

namespace {

/// The key code of Enter, as the combo and the grid report it.
constexpr int kEnter = 13;

} // namespace

void frmScanNew::Timer1_Timer() {
    trapped("frmScanNew", "Timer1_Timer", [this] {
        Timer1->stop();
        fill_me();
    });
}

void frmScanNew::fill_me() {
    trapped("frmScanNew", "fill_me", [this] {
        if (sel_link < 1)
            return;
        Recordset scans = database().open_recordset(u"Select * from scans where link = "_s +
                                                    QString::number(sel_link));
        if (!scans.eof()) {
            if (const std::optional<double> date = stored_date(scans.field(u"Date"_s))) {
                dt->set_value(*date);
                loaded_date_ = LoadedDate{*date, dt->value()};
            }
            txtDescription->setText(scans.text(u"Description"_s));
            txtDescription->setCursorPosition(0);
            doc_fname = scans.text(u"fName"_s);
            doc_location = scans.text(u"location"_s);
            doc_link = scans.field(u"link"_s).toInt();
        }
        scans.close();
        fill_tag_grid();
        enb_me();
    });
}

// The names come from the combo, so that the grid reads as the list that tags are chosen from.
void frmScanNew::fill_tag_grid() {
    Recordset tagged = database().open_recordset(u"Select * from tagged where scan = "_s +
                                                 QString::number(doc_link));
    fg1->set_rows(0);
    QHash<QString, QString> descriptions;
    for (int k = 0; k < cmbTags->item_count(); ++k) {
        const TagCombo::Item& item = cmbTags->item(k);
        if (!descriptions.contains(item.code))
            descriptions.insert(item.code, item.description);
    }
    for (; !tagged.eof(); tagged.move_next()) {
        const QString tag = tagged.text(u"Tag"_s);
        add_tag_row(descriptions.value(tag), tag);
    }
    tagged.close();
    show_tag_hint();
}

void frmScanNew::pop_me() {
    trapped("frmScanNew", "pop_me", [this] {
        const WaitCursor wait;
        cmbTags->clear_items();
        Recordset tags = database().open_recordset(
            u"Select Description, Link from Tags  order by description"_s);
        if (tags.record_count() > 0) {
            tags.move_last();
            tags.move_first();
            std::vector<TagCombo::Item> items;
            items.reserve(static_cast<size_t>(tags.record_count()));
            for (const std::vector<QVariant>& row : tags.get_rows())
                items.push_back({row[0].toString(), row[1].toString()});
            cmbTags->set_column_format(u"0;2700;<;Description|1;0;>;Code"_s);
            cmbTags->set_items(std::move(items));
        }
        cmbTags->set_entered_text({});
        cmbTags->set_prompt(u"Enter or Select"_s);
        tags.close();
    });
}

void frmScanNew::clr_me() {
    trapped("frmScanNew", "clr_me", [this] {
        txtDescription->clear();
        doc_fname.clear();
        doc_location.clear();
        doc_link = 0;
        new_scan = false;
        del_tmpfile();
        cmbTags->set_entered_text({});
        dt->set_value(day_number(wall_clock().date()));
        loaded_date_.reset();
        if (!retain_tags)
            fg1->set_rows(0);
        show_tag_hint();
        enb_me();
        is_dirty = false;
    });
}

void frmScanNew::enb_me() {
    trapped("frmScanNew", "enb_me", [this] {
        lblScan->setText(u"Scan"_s);
        cmdView->setEnabled(false);
        if (new_scan)
            lblScan->setText(u"Re-Scan"_s);
        if (!doc_fname.isEmpty())
            lblScan->setText(u"Re-Scan"_s);
        if (lblScan->text() != u"Scan"_s)
            cmdView->setEnabled(true);
        show_mode();
        show_pages_state();
    });
}

void frmScanNew::show_mode() {
    setWindowTitle(doc_link >= 1 ? u"Edit Scan"_s : u"New Scan"_s);
}

void frmScanNew::cmdAdd_Click() {
    trapped("frmScanNew", "cmdAdd_Click", [this] {
        if (cmbTags->entered_text().isEmpty()) {
            message_box(u"Please or select a valid tag in the drop down list."_s, kInformationIcon,
                        u"Error"_s);
            cmbTags->setFocus();
            return;
        }
        const int chosen = cmbTags->list_index();
        // However it was typed, a tag of the list goes by the list's spelling.
        const QString tag =
            chosen >= 0 ? cmbTags->item(chosen).description : cmbTags->entered_text();
        const int known = fg1->rows() > 0 ? fg1->find_row(tag, 0, 1) : -1;
        if (known >= 0) {
            fg1->set_row(known);
            fg1->show_row(known);
        } else if (chosen < 0) {
            const QString link = QString::number(getNewLink({}));
            database().execute(u"INSERT into Tags ([Link], [Description]) VALUES ("_s + link +
                               u", '"_s + quoted(tag) + u"')"_s);
            add_tag_row(tag, link);
            pop_me();
        } else {
            add_tag_row(tag, cmbTags->item(chosen).code);
        }
        show_tag_hint();
        cmbTags->set_entered_text({});
        cmbTags->setFocus();
    });
}

void frmScanNew::add_tag_row(const QString& description, const QString& link) {
    const int row = fg1->add_row();
    fg1->set_text(row, 1, description);
    fg1->set_text(row, 2, link);
    fg1->set_picture(row, 0, Picture1->pixmap());
}

void frmScanNew::cmbTags_KeyDown(int key_code) {
    trapped("frmScanNew", "cmbTags_KeyDown", [&] {
        if (key_code == kEnter)
            cmdAdd_Click();
    });
}

void frmScanNew::fg1_Click() {
    trapped("frmScanNew", "fg1_Click", [this] {
        if (fg1->rows() >= 1 && fg1->row() >= 0 && fg1->mouse_row() >= 0 &&
            fg1->mouse_column() == 0)
            fg1->remove_row(fg1->row());
        show_tag_hint();
        cmbTags->setFocus();
    });
}

void frmScanNew::show_tag_hint() {
    lblTagHint->setVisible(fg1->rows() == 0);
}

void frmScanNew::dt_Change() {
    trapped("frmScanNew", "dt_Change", [this] { is_dirty = true; });
}

void frmScanNew::txtDescription_Change() {
    trapped("frmScanNew", "txtDescription_Change", [this] { is_dirty = true; });
}

} // namespace folidex
