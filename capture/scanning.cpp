// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "app/process_values.h"
#include "capture/frmScanNew.h"
#include "capture/scanner/scanner.h"
#include "common/drop_menu.h"
#include "common/error_trap.h"
#include "common/message_box.h"
#include "common/pop_up_menu.h"
#include "controls/active_link.h"

#include <QLabel>
#include <QPushButton>

using namespace Qt::StringLiterals;

namespace folidex {

void frmScanNew::cmdScan_Click() {
    trapped("frmScanNew", "cmdScan_Click", [this] {
        const int sources = Twain1->source_count();
        pop_count = 2 + sources;
        p_popMenu(*Dmnu);
        add_menu_title(*Dmnu, u"Select which scanner"_s);
        add_menu_separator(*Dmnu);
        for (int k = 0; k < sources; ++k)
            add_grey_item(*Dmnu, Twain1->source_name(k), u"mnuScan"_s + QString::number(k));
        Dmnu->show_under(cmdScan);
    });
}

void frmScanNew::scan_file(int source_index, QString& file_path) {
    trapped("frmScanNew", "scan_file", [&] {
        try {
            acquire_into(source_index, file_path);
        } catch (...) {
            // A jam or a scanner that was switched off is the user's everyday trouble: its own
            // words, and the form stays as it was.
            message_box(current_error().description);
        }
    });
}

void frmScanNew::acquire_into(int source_index, QString& file_path) {
    Twain1->set_use_feeder(true);
    Twain1->set_auto_feed(true);
    Twain1->set_show_progress(true);
    if (Twain1->supports_duplex())
        Twain1->set_duplex(true);
    Twain1->set_current_source(source_index);
    if (!Twain1->open_source())
        return;
    Twain1->set_scan_until_empty(true);
    if (file_path.right(4) != u".pdf"_s)
        file_path += u".pdf"_s;
    Twain1->discard_pages();
    Twain1->acquire(this);
    const int pages = Twain1->page_count();
    for (int page = 1; page <= pages; ++page) {
        Twain1->select_page(page);
        Twain1->append_page(page);
    }
    if (pages >= 1) {
        Twain1->write_pdf(file_path);
        is_dirty = true;
        new_scan = true;
        scanned_pages_ = pages;
    }
    enb_me();
}

void frmScanNew::show_scanners() {
    cmdScan->setEnabled(Twain1->source_count() >= 1);
    show_pages_state();
}

void frmScanNew::show_pages_state() {
    const bool on_file = !doc_fname.isEmpty();
    const QString pages = scanned_pages_ == 1
                              ? u"1 page scanned"_s
                              : QString::number(scanned_pages_) + u" pages scanned"_s;
    QString state;
    if (new_scan && on_file)
        state = pages + u". Saving replaces the pages on file."_s;
    else if (new_scan)
        state = pages + u". Save files them."_s;
    else if (on_file)
        state = u"The pages on file are kept unless you scan again."_s;
    else if (cmdScan->isEnabled())
        state = u"No pages yet: choose Scan."_s;
    else if (Twain1->searching())
        state = u"Looking for scanners..."_s;
    else
        state = u"No scanner found. Connect one, switch it on, then open this window again."_s;
    lblPagesState->setText(state);
    cmdScan->setAccessibleDescription(state);
}

void frmScanNew::cmdView_Click() {
    trapped("frmScanNew", "cmdView_Click", [this] {
        const bool on_file = !doc_fname.isEmpty();
        if (!on_file && new_scan)
            open_file(tmp_file);
        else if (on_file && !new_scan)
            open_file(document_path(doc_location, doc_fname));
        else if (on_file && new_scan)
            mnu_pdf();
    });
}

void frmScanNew::mnu_pdf() {
    trapped("frmScanNew", "mnu_pdf", [this] {
        pop_count = 4;
        p_popMenu(*Dmnu);
        add_menu_title(*Dmnu, u"Which document do you want to open ?"_s);
        add_menu_separator(*Dmnu);
        add_grey_item(*Dmnu, u"My new scan"_s, u"mnuPDFNew"_s);
        add_grey_item(*Dmnu, u"The scan on file."_s, u"mnuPDFOld"_s);
        Dmnu->show_under(cmdView);
    });
}

void frmScanNew::open_file(const QString& path) {
    AL1->set_target(path);
    AL1->set_mode(ActiveLink::kFile);
    AL1->start();
}

} // namespace folidex
