// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "capture/frmScanNew.h"

#include "app/preferences.h"
#include "app/process_values.h"
#include "capture/scanner/scanner.h"
#include "capture/wait_cursor.h"
#include "common/day_number.h"
#include "common/drop_menu.h"
#include "common/error_trap.h"
#include "common/paths.h"
#include "common/pop_up_menu.h"
#include "controls/active_link.h"
#include "controls/date_picker.h"
#include "controls/form_window.h"
#include "controls/grid.h"
#include "controls/icons.h"
#include "controls/tag_combo.h"
#include "platform/shell.h"
#include "ui_frmScanNew.h"

#include <QKeyEvent>
#include <QTimer>

using namespace Qt::StringLiterals;

namespace folidex {

namespace {

/// Longer than any text that a station could have stored.
constexpr int kLongestText = 1 << 30;
/// The remove picture at the least; it grows with the font.
constexpr int kRemovePicture = 16;
constexpr int kRemoveMargin = 16;
constexpr int kButtonPadding = 16;
constexpr int kTimerInterval = 100;

} // namespace

frmScanNew::frmScanNew(QWidget* parent) : QDialog(parent) {
    Ui::frmScanNew layout;
    layout.setupUi(this);
    take_controls(layout);
    dress_controls();
    connect_controls();
    outermost([this] { Form_Load(); });
}

frmScanNew::~frmScanNew() = default;

void frmScanNew::take_controls(const Ui::frmScanNew& layout) {
    txtDescription = layout.txtDescription;
    dt = layout.dt;
    cmbTags = layout.cmbTags;
    cmdAdd = layout.cmdAdd;
    fg1 = layout.fg1;
    cmdScan = layout.cmdScan;
    lblScan = layout.lblScan;
    lblPagesState = layout.lblPagesState;
    cmdView = layout.cmdView;
    cmdSave = layout.cmdSave;
    cmdSave2 = layout.cmdSave2;
    cmdDrop = layout.cmdDrop;
    cmdCancel = layout.cmdCancel;
    cmdHelp = layout.cmdHelp;

    // Never shown: the picture that rows are given, and a button without a task.
    Picture1 = new QLabel(this);
    Picture1->setObjectName(u"Picture1"_s);
    Picture1->hide();
    OsenXPButton1 = new QPushButton(this);
    OsenXPButton1->setObjectName(u"OsenXPButton1"_s);
    OsenXPButton1->setAutoDefault(false);
    OsenXPButton1->hide();

    lblTagHint = new QLabel(u"No tags yet: type or choose one above and press Enter."_s);
    lblTagHint->setObjectName(u"lblTagHint"_s);
    Timer1 = new QTimer(this);
    Timer1->setObjectName(u"Timer1"_s);
    Timer1->setInterval(kTimerInterval);
    AL1 = new ActiveLink(this);
    AL1->setObjectName(u"AL1"_s);
    Dmnu = new DropMenu(this);
    Dmnu->setObjectName(u"Dmnu"_s);
}

void frmScanNew::dress_controls() {
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);
    txtDescription->setMaxLength(kLongestText);
    txtDescription->setMinimumWidth(fontMetrics().averageCharWidth() * 56);

    const int mark = std::max(kRemovePicture, fontMetrics().ascent());
    Picture1->setPixmap(icon(u"remove"_s).pixmap(QSize(mark, mark), devicePixelRatioF()));
    fg1->set_layout(3, 0);
    fg1->setColumnHidden(2, true);
    fg1->setColumnWidth(0, mark + kRemoveMargin);
    fg1->horizontalHeader()->setSectionResizeMode(0, QHeaderView::Fixed);
    fg1->horizontalHeader()->setSectionResizeMode(1, QHeaderView::Stretch);
    fg1->setMinimumHeight(fontMetrics().lineSpacing() * 8);
    lblTagHint->setAlignment(Qt::AlignCenter);
    lblTagHint->setWordWrap(true);
    lblTagHint->setForegroundRole(QPalette::PlaceholderText);
    lblTagHint->setAttribute(Qt::WA_TransparentForMouseEvents);
    auto* hint_place = new QVBoxLayout(fg1->viewport());
    hint_place->addWidget(lblTagHint);

    cmdScan->setIcon(icon(u"document"_s));
    cmdView->setIcon(icon(u"view"_s));
    cmdDrop->setIcon(icon(u"drop"_s));
    // The longer of its two captions, so that nothing moves when a document arrives.
    lblScan->setText(u"Re-Scan"_s);
    lblScan->setMinimumWidth(lblScan->sizeHint().width());
    lblPagesState->setMinimumHeight(fontMetrics().lineSpacing() * 3);
    cmdSave->setShortcut(QKeySequence::Save);
    cmdHelp->setShortcut(QKeySequence::HelpContents);

    const std::array<QPushButton*, 4> row{cmdSave, cmdSave2, cmdCancel, cmdHelp};
    int width = 0;
    for (const QPushButton* button : row)
        width = std::max(width, button->sizeHint().width());
    for (QPushButton* button : row)
        button->setMinimumWidth(width + kButtonPadding);
}

void frmScanNew::connect_controls() {
    on(txtDescription, &QLineEdit::textChanged, this, [this] { txtDescription_Change(); });
    on(dt, &DatePicker::change, this, [this] { dt_Change(); });
    on(cmbTags, &TagCombo::key_down, this, [this](int key_code) { cmbTags_KeyDown(key_code); });
    on(cmdAdd, &QPushButton::clicked, this, [this] { cmdAdd_Click(); });
    on(fg1, &Grid::click, this, [this] { fg1_Click(); });
    on(cmdScan, &QPushButton::clicked, this, [this] { cmdScan_Click(); });
    on(cmdView, &QPushButton::clicked, this, [this] { cmdView_Click(); });
    on(cmdSave, &QPushButton::clicked, this, [this] { cmdSave_Click(); });
    on(cmdSave2, &QPushButton::clicked, this, [this] { cmdSave2_Click(); });
    on(cmdDrop, &QToolButton::clicked, this, [this] { cmdDrop_Click(); });
    on(cmdCancel, &QPushButton::clicked, this, [this] { cmdCancel_Click(); });
    on(cmdHelp, &QPushButton::clicked, this, [this] { cmdHelp_Click(); });
    on(OsenXPButton1, &QPushButton::clicked, this, [this] { OsenXPButton1_Click(); });
    on(Timer1, &QTimer::timeout, this, [this] { Timer1_Timer(); });
    on(Dmnu, &DropMenu::ItemClick, this, [this](int index) { Dmnu_ItemClick(index); });
}

void frmScanNew::Form_Load() {
    trapped("frmScanNew", "Form_Load", [this] {
        adjustSize();
        FormWindow window(this);
        GetScreenPosition(window, false);
        tmp_file = join_path(AppDataFolder, u"current_scan.pdf"_s);
        pop_me();
        clr_me();
        Preferences().move_to_root();
        retain_tags = numeric_value(Preferences().child_text(u"retaintags"_s)) == 1;
        // The document is loaded when the form is on screen: a modal form's caller waits.
        if (sel_link > 0) {
            setWindowTitle(u"Edit Scan"_s);
            Timer1->start();
        }
        const WaitCursor wait;
        Twain1 = make_scanner();
        Twain1->on_sources_changed([this] { outermost([this] { show_scanners(); }); });
        show_scanners();
    });
}

void frmScanNew::Form_QueryUnload() {
    trapped("frmScanNew", "Form_QueryUnload", [this] {
        SetScreenPosition(FormWindow(this));
        if (new_scan)
            del_tmpfile();
    });
}

void frmScanNew::done(int result) {
    if (!unloaded_) {
        unloaded_ = true;
        Timer1->stop();
        outermost([this] { Form_QueryUnload(); });
    }
    QDialog::done(result);
}

// No button is a default one, because Enter adds a tag; on a button that has the focus it
// still presses it.
void frmScanNew::keyPressEvent(QKeyEvent* event) {
    outermost([&] {
        const bool enter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
        auto* button = enter ? qobject_cast<QAbstractButton*>(focusWidget()) : nullptr;
        if (button)
            button->click();
        else
            QDialog::keyPressEvent(event);
    });
}

void frmScanNew::cmdCancel_Click() {
    trapped("frmScanNew", "cmdCancel_Click", [this] { reject(); });
}

void frmScanNew::cmdHelp_Click() {
    trapped("frmScanNew", "cmdHelp_Click", [this] {
        AL1->set_mode(ActiveLink::kWebAddress);
        AL1->set_target(site_page(u"/help/index.html"_s));
        AL1->start();
    });
}

void frmScanNew::OsenXPButton1_Click() {
    trapped("frmScanNew", "OsenXPButton1_Click", [] {});
}

void frmScanNew::Dmnu_ItemClick(int index) {
    trapped("frmScanNew", "Dmnu_ItemClick", [&] {
        QString key = pop_keys.value(index);
        if (key == u"mnuPDFOld"_s)
            open_file(document_path(doc_location, doc_fname));
        else if (key == u"mnuPDFNew"_s)
            open_file(tmp_file);
        else if (key == u"mnurtagson"_s)
            keep_tags(true);
        else if (key == u"mnurtagsoff"_s)
            keep_tags(false);
        else if (key.left(7) == u"mnuScan"_s)
            scan_file(static_cast<int>(numeric_value(key.remove(u"mnuScan"_s))), tmp_file);
    });
}

void frmScanNew::keep_tags(bool keep) {
    Preferences().move_to_root();
    Preferences().set_child_text(u"retaintags"_s, keep ? u"1"_s : u"0"_s);
    retain_tags = keep;
    save_localXML();
}

} // namespace folidex
