// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "capture/filing.h"

#include "app/preferences.h"
#include "app/process_values.h"
#include "capture/frmScanNew.h"
#include "capture/wait_cursor.h"
#include "common/day_number.h"
#include "common/drop_menu.h"
#include "common/error_trap.h"
#include "common/message_box.h"
#include "common/paths.h"
#include "common/pop_up_menu.h"
#include "controls/date_picker.h"
#include "controls/grid.h"
#include "controls/tag_combo.h"
#include "data/database.h"
#include "data/link_numbers.h"
#include "data/sql_dialect.h"
#include "platform/safe_file.h"

#include <QLineEdit>
#include <QToolButton>
#include <cmath>

using namespace Qt::StringLiterals;

namespace folidex {

std::function<QDateTime()> wall_clock = [] { return QDateTime::currentDateTime(); };

namespace {

QString tag_number(const QString& tag) {
    return day_number_text(numeric_value(tag));
}

QString tagged_rows_of(int link) {
    return u"Select * from tagged where scan = "_s + QString::number(link);
}

// Another station may create the month's folder in between.
void have_folder(const QString& folder) {
    if (folder_exists(folder))
        return;
    try {
        create_folder_at(folder);
    } catch (const Error&) {
        if (!folder_exists(folder))
            throw;
    }
}

} // namespace

QString filing_location(const QDate& document_date) {
    return document_date.toString(u"MMyy"_s);
}

QString filing_name(const QDateTime& moment, int link) {
    return moment.toString(u"MMddyyHHmmss"_s) + u'_' + QString::number(link) + u".pdf"_s;
}

std::optional<double> stored_date(const QVariant& field) {
    if (field.isNull())
        return std::nullopt;
    bool is_number = false;
    const double number = field.toDouble(&is_number);
    if (is_number) // "nan" and "inf" are numbers to the toolkit, and none that can be filed again
        return std::isfinite(number) ? std::optional(number) : std::nullopt;
    const QDateTime date = QDateTime::fromString(field.toString().trimmed(), Qt::ISODate);
    if (date.isValid())
        return day_number(date.date(), date.time());
    return std::nullopt;
}

QString insert_document_statement(const FiledDocument& document) {
    return u"INSERT INTO scans ([link], [description], [date], [fname], [location]) VALUES ("_s +
           QString::number(document.link) + u", '"_s + quoted(document.description) + u"', "_s +
           day_number_text(document.date) + u", '"_s + quoted(document.file_name) + u"', '"_s +
           quoted(document.location) + u"')"_s;
}

QString update_document_statement(int link, const QString& description, double date) {
    return u"UPDATE scans SET Description = '"_s + quoted(description) + u"', scans.date = "_s +
           day_number_text(date) + u" WHERE link = "_s + QString::number(link);
}

QString insert_tagged_statement(int link, const QString& tag) {
    return u"INSERT INTO tagged (scan, tag) VALUES ("_s + QString::number(link) + u", "_s +
           tag_number(tag) + u")"_s;
}

void remove_unassigned_tags(int link, const QStringList& assigned) {
    Recordset tagged = database().open_recordset(tagged_rows_of(link));
    while (!tagged.eof()) {
        if (!assigned.contains(tagged.text(u"Tag"_s)))
            tagged.delete_current();
        tagged.move_next();
    }
    tagged.close();
}

void add_missing_tags(int link, const QStringList& assigned) {
    Recordset tagged = database().open_recordset(tagged_rows_of(link));
    for (const QString& tag : assigned) {
        bool needs_insert = true;
        if (tagged.record_count() > 0) {
            tagged.find_first(u"tag = "_s + tag_number(tag));
            needs_insert = tagged.no_match();
        }
        if (needs_insert)
            database().execute(insert_tagged_statement(link, tag));
    }
    tagged.close();
}

bool frmScanNew::save_me() {
    return trapped("frmScanNew", "save_me", [this] {
        if (!validate_save())
            return false;
        const WaitCursor wait;
        if (doc_link >= 1)
            file_edited_document();
        else
            file_new_document();
        return true;
    });
}

// The rows come first and the copy last: when the copy fails the rows are found without their
// file, and the pages stay in the temporary scan.
void frmScanNew::file_new_document() {
    FiledDocument document;
    document.link = getNewLink({});
    document.description = txtDescription->text();
    document.date = document_date();
    document.file_name = filing_name(wall_clock(), document.link);
    document.location = filing_location(dt->date());
    const QString folder = join_path(DataFolder, u"scanned_files"_s, document.location);
    have_folder(folder);
    database().execute(insert_document_statement(document));
    for (const QString& tag : assigned_tags())
        database().execute(insert_tagged_statement(document.link, tag));
    copy_file(tmp_file, join_path(folder, document.file_name));
}

// The file comes first and the rows afterwards: its predecessor was deleted when the form was
// checked, and a description must not promise pages that could not be put in place.
void frmScanNew::file_edited_document() {
    if (new_scan)
        copy_file(tmp_file, document_path(doc_location, doc_fname));
    database().execute(
        update_document_statement(doc_link, txtDescription->text(), document_date()));
    remove_unassigned_tags(doc_link, assigned_tags());
    add_missing_tags(doc_link, assigned_tags());
}

bool frmScanNew::validate_save() {
    return trapped("frmScanNew", "validate_save", [this] {
        if (txtDescription->text().isEmpty())
            return refuse(u"Please enter a valid description."_s, txtDescription);
        if (fg1->rows() < 1)
            return refuse(u"You need to assign at least 1 tag."_s, cmbTags);
        if (doc_link < 1 && !new_scan)
            return refuse(u"You have no scanned document."_s, nullptr);
        if (doc_link < 1 || !new_scan)
            return true;
        // Last of all checks, so that nothing refuses after the old pages are gone.
        if (del_efile())
            return true;
        return refuse(u"Cannot replace the old scanned document with your new one. Please "
                      "ensure that the old scanned document is not open."_s,
                      nullptr);
    });
}

bool frmScanNew::refuse(const QString& prompt, QWidget* focus) {
    message_box(prompt, kInformationIcon, u"Error"_s);
    if (focus)
        focus->setFocus();
    return false;
}

bool frmScanNew::del_efile() {
    return trapped("frmScanNew", "del_efile", [this] {
        try {
            delete_file(document_path(doc_location, doc_fname));
            return true;
        } catch (const Error&) {
            // The caller tells the user what to do about it.
            return false;
        }
    });
}

void frmScanNew::del_tmpfile() {
    trapped("frmScanNew", "del_tmpfile", [this] {
        try {
            if (!lookup(tmp_file).isEmpty())
                delete_file(tmp_file);
        } catch (const Error&) {
            // A viewer may hold it open; the next scan replaces it.
        }
        new_scan = false;
    });
}

void frmScanNew::cmdSave_Click() {
    trapped("frmScanNew", "cmdSave_Click", [this] {
        if (!save_me())
            return;
        clr_me();
        accept();
    });
}

void frmScanNew::cmdSave2_Click() {
    trapped("frmScanNew", "cmdSave2_Click", [this] {
        if (!save_me())
            return;
        clr_me();
        txtDescription->setFocus();
    });
}

void frmScanNew::cmdDrop_Click() {
    trapped("frmScanNew", "cmdDrop_Click", [this] {
        pop_count = 4;
        p_popMenu(*Dmnu);
        // Doubled as on the button; the menu shows an ampersand as it stands.
        add_menu_title(*Dmnu, u"After you click 'Save && New...'"_s);
        add_menu_separator(*Dmnu);
        add_grey_item(*Dmnu, u"Keep the previous tags"_s, u"mnurtagson"_s);
        Dmnu->ItemChecked(Dmnu->ItemCount(), retain_tags);
        add_grey_item(*Dmnu, u"Clear all tags"_s, u"mnurtagsoff"_s);
        Dmnu->ItemChecked(Dmnu->ItemCount(), !retain_tags);
        Dmnu->show_under(cmdDrop);
    });
}

double frmScanNew::document_date() const {
    const double shown = dt->value();
    return loaded_date_ && loaded_date_->shown == shown ? loaded_date_->stored : shown;
}

QStringList frmScanNew::assigned_tags() const {
    QStringList tags;
    for (int row = 0; row < fg1->rows(); ++row)
        tags.append(fg1->text(row, 2));
    return tags;
}

} // namespace folidex
