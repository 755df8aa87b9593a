// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "browser/frmMain.h"

#include "app/preferences.h"
#include "app/process_values.h"
#include "browser/empty_note.h"
#include "browser/results_model.h"
#include "browser/status_line.h"
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
#include "platform/safe_file.h"

#include <QCheckBox>
#include <QCloseEvent>
#include <QGridLayout>
#include <QGroupBox>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QScreen>
#include <QToolBar>
#include <QToolButton>

namespace folidex {

namespace {

constexpr QSize kComfortable(1000, 640);
constexpr QSize kSmallest(860, 520);
constexpr int kMargin = 8;
constexpr int kGap = 8;
constexpr int kFrameTop = 42;
constexpr int kFrameGap = 6;
constexpr int kFilterWidth = 280;
constexpr int kFilterInset = 12;
constexpr int kResultsInset = 6;
constexpr int kMarkWidth = 32;
constexpr int kQuiet = 145;
// Twips from the bottom of both grids to the bottom of the window.
constexpr double kBelowGrids = 800;

struct ToolbarButton {
    const char* name;
    const char* icon;
    const char* tool_tip;
};

// The order is the toolbar's; a button without an icon separates.
constexpr ToolbarButton kButtons[] = {
    {"New", "new", "New Scan"},
    {"Edit", "edit", "Edit Scan"},
    {"Delete", "delete", "Delete Scan"},
    {"Button4", nullptr, ""},
    {"Locate File", "locate", ""},
    {"Open File", "open", "Open in it's associated windows application"},
    {"Button11", nullptr, ""},
    {"Maintenance", "maintenance", ""},
    {"Button10", nullptr, ""},
    {"Help", "help", ""},
    {"Exit", "exit", ""},
};

// Dark desktops often leave links in the blue that is made for white.
QColor readable_link(const QPalette& palette) {
    constexpr int kLeastContrast = 80;
    const QColor link = palette.color(QPalette::Link);
    const QColor ground = palette.color(QPalette::Window);
    const bool readable = std::abs(qGray(link.rgb()) - qGray(ground.rgb())) >= kLeastContrast;
    return readable ? link : palette.color(QPalette::WindowText);
}

void set_height(QWidget* widget, double twips) {
    widget->resize(widget->width(), to_pixels(qMax(twips, 0.0)));
}

void set_width(QWidget* widget, double twips) {
    widget->resize(to_pixels(qMax(twips, 0.0)), widget->height());
}

void flatten(Grid* grid) {
    grid->setFrameShape(QFrame::NoFrame);
}

template <class Widget> Widget* named(Widget* widget, const char* name, const QString& spoken) {
    widget->setObjectName(QLatin1String(name));
    widget->setAccessibleName(spoken);
    return widget;
}

} // namespace

frmMain::frmMain(MainRoads roads, QWidget* parent)
    : QWidget(parent), roads_(std::move(roads)),
      results_(new ResultsModel(short_date_format(), this)) {
    setObjectName(QStringLiteral("frmMain"));
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowTitle(ProductTitle);
    setWindowIcon(application_icon());
    make_toolbar();
    make_filter();
    make_results();
    status_ = new StatusLine(this);
    Dmnu = new DropMenu(this);
    Dmnu->setObjectName(QStringLiteral("Dmnu"));
    AL1 = new ActiveLink(this);
    AL1->setObjectName(QStringLiteral("AL1"));
    connect_controls();
    place_controls();
    resize(kComfortable.boundedTo(screen()->availableSize()).expandedTo(minimumSize()));
    cmbTags->setFocus();
}

frmMain::~frmMain() = default;

void frmMain::make_toolbar() {
    TB1 = named(new QToolBar(this), "TB1", QStringLiteral("Commands"));
    TB1->setIconSize(QSize(20, 20));
    TB1->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    for (const ToolbarButton& button : kButtons) {
        const QString name = QLatin1String(button.name);
        QAction* action = button.icon == nullptr
                              ? TB1->addSeparator()
                              : TB1->addAction(icon(QLatin1String(button.icon)), name);
        action->setObjectName(name);
        if (button.icon == nullptr)
            continue;
        QWidget* shown = named(TB1->widgetForAction(action), button.name, name);
        shown->setFocusPolicy(Qt::TabFocus);
        // A button without a tip of its own would repeat its text.
        shown->setToolTip(QLatin1String(button.tool_tip));
        on(action, &QAction::hovered, this, [this] { OsenXPToolBar1_Highlight(); });
    }
}

void frmMain::make_filter() {
    frL = named(new QGroupBox(QStringLiteral("Filter"), this), "frL", QStringLiteral("Filter"));
    entry_ = new QWidget(frL);
    cmbTags = named(new TagCombo(entry_), "cmbTags", QStringLiteral("Tags"));
    cmdAdd = named(new QPushButton(icon(QStringLiteral("add")), QStringLiteral("Add"), entry_),
                   "cmdAdd", QStringLiteral("Add"));
    chkDates = named(new QCheckBox(QStringLiteral("All Dates"), entry_), "chkDates",
                     QStringLiteral("All Dates"));
    dtFrom = named(new DatePicker(entry_), "dtFrom", QStringLiteral("From"));
    dtTo = named(new DatePicker(entry_), "dtTo", QStringLiteral("To"));
    auto* from = new QLabel(QStringLiteral("From"), entry_);
    auto* to = new QLabel(QStringLiteral("To"), entry_);
    from->setBuddy(dtFrom);
    to->setBuddy(dtTo);

    auto* tag_line = new QHBoxLayout;
    tag_line->setSpacing(kGap);
    tag_line->addWidget(cmbTags, 1);
    tag_line->addWidget(cmdAdd);
    auto* lines = new QGridLayout(entry_);
    lines->setContentsMargins(0, 0, 0, 0);
    lines->setSpacing(kGap);
    lines->addLayout(tag_line, 0, 0, 1, 2);
    lines->addWidget(chkDates, 1, 0, 1, 2);
    lines->addWidget(from, 2, 0);
    lines->addWidget(dtFrom, 2, 1);
    lines->addWidget(to, 3, 0);
    lines->addWidget(dtTo, 3, 1);
    lines->setColumnStretch(1, 1);

    fgL = named(new Grid(frL), "fgL", QStringLiteral("Chosen tags"));
    flatten(fgL);
    no_tags_ = new EmptyNote(fgL);
    Label1 =
        named(new QPushButton(QStringLiteral("Add All"), frL), "Label1", QStringLiteral("Add All"));
    Label1->setFlat(true);
    Label1->setCursor(Qt::PointingHandCursor);
    Picture1 = named(new QLabel(frL), "Picture1", QString());
    Picture1->hide();
}

void frmMain::make_results() {
    frR =
        named(new QGroupBox(QStringLiteral("Documents"), this), "frR", QStringLiteral("Documents"));
    fgR = named(new Grid(frR), "fgR", QStringLiteral("Documents"));
    flatten(fgR);
    fgR->set_layout(ResultsModel::kColumns, 1);
    fgR->setModel(results_);
    for (int column : {ResultsModel::kFileName, ResultsModel::kLocation, ResultsModel::kLink})
        fgR->setColumnHidden(column, true);
    fgR->horizontalHeader()->setStretchLastSection(true);
    no_documents_ = new EmptyNote(fgR);
    hint_ = named(new QLabel(frR), "lblHint", QString());
}

void frmMain::connect_controls() {
    on(TB1, &QToolBar::actionTriggered, this,
       [this](QAction* action) { TB1_ButtonClick(action->objectName()); });
    on(cmdAdd, &QPushButton::clicked, this, [this] { cmdAdd_Click(); });
    on(cmbTags, &TagCombo::key_down, this, [this](int key_code) { cmbTags_KeyDown(key_code); });
    on(chkDates, &QCheckBox::toggled, this, [this] { chkDates_Click(); });
    on(dtFrom, &DatePicker::change, this, [this] { dtFrom_Change(); });
    on(dtTo, &DatePicker::change, this, [this] { dtTo_Change(); });
    on(fgL, &Grid::click, this, [this] { fgL_Click(); });
    on(Label1, &QPushButton::clicked, this, [this] { Label1_Click(); });
    on(fgR, &Grid::after_row_col_change, this, [this] { fgR_AfterRowColChange(); });
    on(fgR, &Grid::dbl_click, this, [this] { fgR_DblClick(); });
    on(fgR, &Grid::key_down, this, [this](int key_code) {
        if (key_code == kEnterKey)
            fgR_DblClick();
    });
    on(Dmnu, &DropMenu::ItemClick, this, [this](int index) { Dmnu_ItemClick(index); });
}

void frmMain::Form_Load() {
    trapped("frmMain", "Form_Load", [&] {
        fgL->set_layout(3, 0);
        fgL->setColumnHidden(2, true);
        fgL->setColumnWidth(0, kMarkWidth);
        fgL->horizontalHeader()->setStretchLastSection(true);
        results_->set_rows({});
        dress_controls();
        save_localXML();
        const QString scanned_files = join_path(DataFolder, QStringLiteral("scanned_files"));
        if (!folder_exists(scanned_files))
            create_folder_at(scanned_files);
        const QString this_month =
            join_path(scanned_files, QDate::currentDate().toString(QStringLiteral("MMyy")));
        if (!folder_exists(this_month))
            create_folder_at(this_month);
        pop_me();
        load_filter();
        fill_me();
    });
}

void frmMain::place_controls() {
    entry_->adjustSize();
    const QSize entry = entry_->sizeHint();
    const int top = frL->contentsRect().top() + kGap / 2;
    frL->setGeometry(kMargin, kFrameTop, qMax(kFilterWidth, entry.width() + 2 * kFilterInset),
                     frL->height());
    entry_->setGeometry(kFilterInset, top, frL->width() - 2 * kFilterInset, entry.height());
    fgL->move(kFilterInset, top + entry.height() + kGap);
    frR->move(frL->geometry().right() + 1 + kFrameGap, kFrameTop);
    fgR->move(kResultsInset, top);
    const QDate widest(2088, 12, 28);
    fgR->setColumnWidth(0,
                        fgR->fontMetrics().horizontalAdvance(widest.toString(short_date_format())) +
                            4 * fgR->fontMetrics().averageCharWidth());
    const int rows = 4 * fgL->verticalHeader()->defaultSectionSize();
    setMinimumSize(qMin(qMax(kSmallest.width(), TB1->sizeHint().width() + 2 * kMargin),
                        screen()->availableSize().width()),
                   qMax(kSmallest.height(), kFrameTop + fgL->y() + rows + to_pixels(kBelowGrids)));
}

void frmMain::dress_controls() {
    QPalette link = Label1->palette();
    link.setColor(QPalette::ButtonText, readable_link(palette()));
    Label1->setPalette(link);
    // Half the text's strength on any ground; desktops leave the placeholder's colour out of dark
    // palettes.
    QColor quiet = palette().color(QPalette::WindowText);
    quiet.setAlpha(kQuiet);
    for (QWidget* note : {static_cast<QWidget*>(hint_), static_cast<QWidget*>(no_tags_),
                          static_cast<QWidget*>(no_documents_)}) {
        QPalette colors = note->palette();
        colors.setColor(QPalette::WindowText, quiet);
        note->setPalette(colors);
    }
    Picture1->setPixmap(icon(QStringLiteral("remove")).pixmap(QSize(16, 16), devicePixelRatioF()));
    for (int row = 0; row < fgL->rows(); ++row)
        fgL->set_picture(row, 0, Picture1->pixmap());
    if (fgL->rows() > 0)
        color_tags();
}

void frmMain::Form_Resize() {
    trapped("frmMain", "Form_Resize", [&] {
        if (isMinimized())
            return;
        const double inner_height = to_twips(height());
        const double inner_width = to_twips(width());
        set_height(frL, inner_height - 1050);
        set_height(frR, to_twips(frL->height()));
        frR->move(frR->x(), frL->y());
        set_width(frR, inner_width - to_twips(frL->width()) - 330);
        set_width(fgL, to_twips(frL->width()) - 370);
        set_height(fgL, inner_height - to_twips(fgL->y() + frL->y()) - kBelowGrids);
        set_height(fgR, inner_height - to_twips(fgR->y() + frR->y()) - kBelowGrids);
        set_width(fgR, to_twips(frR->width()) - 200);
    });
}

void frmMain::place_bars() {
    TB1->setGeometry(kMargin - 2, 4, width() - 2 * (kMargin - 2), kFrameTop - 6);
    const int strip = frL->height() - fgL->geometry().bottom() - 2;
    // Its text stands under the list's edge, as a link does, with room for the focus around it.
    constexpr int kFocusRoom = 6;
    Label1->setGeometry(kFilterInset - kFocusRoom, fgL->geometry().bottom() + 1,
                        Label1->fontMetrics().horizontalAdvance(Label1->text()) + 2 * kFocusRoom,
                        strip);
    hint_->setGeometry(kResultsInset + 4, fgR->geometry().bottom() + 1, fgR->width() - 8, strip);
    const int bottom = frL->geometry().bottom() + 2;
    status_->setGeometry(kMargin, bottom, width() - 2 * kMargin, height() - bottom);
}

void frmMain::Form_QueryUnload() {
    trapped("frmMain", "Form_QueryUnload", [&] {
        test_clipboard(Preferences().xml());
        save_localXML();
    });
}

void frmMain::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    if (loaded_)
        return;
    loaded_ = true;
    outermost([&] { Form_Load(); });
}

void frmMain::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    outermost([&] {
        Form_Resize();
        place_bars();
    });
}

void frmMain::closeEvent(QCloseEvent* event) {
    QWidget::closeEvent(event);
    outermost([&] { Form_QueryUnload(); });
}

void frmMain::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (!loaded_)
        return;
    outermost([&] {
        if (event->type() == QEvent::PaletteChange)
            dress_controls();
        if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange) {
            place_controls();
            Form_Resize();
            place_bars();
        }
    });
}

} // namespace folidex
