#include "workspaces/frm_search_widgets.h"

#include "core/foot_row.h"
#include "core/named_widget.h"

#include <QtWidgets/QCheckBox>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QDateEdit>
#include <QtWidgets/QGridLayout>
#include <QtWidgets/QGroupBox>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QHeaderView>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QRadioButton>
#include <QtWidgets/QTableWidget>
#include <QtWidgets/QVBoxLayout>

namespace tremor {

namespace {

constexpr int spacing = 12;   // pixels, between the frames
constexpr int boxLetters = 9; // "-179.99999" fits

QPushButton* makeButton(const char* name, const QString& caption, QWidget* parent) {
    auto* button = named(new QPushButton(caption, parent), name);
    button->setAutoDefault(true); // Enter presses it while it has the focus
    return button;
}

QGroupBox* makeFrame(const char* name, const QString& caption, QWidget* parent) {
    return named(new QGroupBox(caption, parent), name);
}

} // namespace

SearchWidgets::SearchWidgets(QWidget& window) : window_(window) {
    auto* columns = new QHBoxLayout;
    columns->setSpacing(spacing);
    columns->addWidget(makeSavedSearches(), 1);
    auto* filters = new QVBoxLayout;
    filters->setSpacing(spacing);
    filters->addWidget(makeDates());
    filters->addWidget(makeMagnitudes());
    filters->addWidget(makeArea());
    filters->addStretch(1);
    columns->addLayout(filters);

    cmd_query = makeButton("cmd_query", QStringLiteral("&Search"), &window_);
    CmdCancel = makeButton("CmdCancel", QStringLiteral("&Cancel"), &window_);

    auto* all = new QVBoxLayout(&window_);
    all->setContentsMargins(spacing, spacing, spacing, spacing);
    all->setSpacing(spacing);
    all->addLayout(columns, 1);
    all->addLayout(footRow({cmd_query, CmdCancel}));
}

QWidget* SearchWidgets::makeSavedSearches() {
    auto* frame = makeFrame("Frame3", QStringLiteral("Search Saved"), &window_);
    fxGridSearch = named(new QTableWidget(0, 2, frame), "fxGridSearch");
    fxGridSearch->setAccessibleName(QStringLiteral("Saved searches"));
    fxGridSearch->setHorizontalHeaderLabels({QStringLiteral("No."), QStringLiteral("Name")});
    fxGridSearch->setEditTriggers(QAbstractItemView::NoEditTriggers);
    fxGridSearch->setSelectionBehavior(QAbstractItemView::SelectRows);
    fxGridSearch->setSelectionMode(QAbstractItemView::SingleSelection);
    fxGridSearch->setAlternatingRowColors(true);
    fxGridSearch->setShowGrid(false);
    fxGridSearch->setWordWrap(false);
    fxGridSearch->setTabKeyNavigation(false);
    fxGridSearch->verticalHeader()->hide();
    fxGridSearch->verticalHeader()->setDefaultSectionSize(fxGridSearch->fontMetrics().height() +
                                                          spacing / 2);
    QHeaderView* heads = fxGridSearch->horizontalHeader();
    heads->setHighlightSections(false);
    heads->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    heads->setSectionResizeMode(0, QHeaderView::ResizeToContents);
    heads->setSectionResizeMode(1, QHeaderView::Stretch);

    // In the grid's viewport, so that it scrolls with its cell.
    txtModifica = named(new QLineEdit(fxGridSearch->viewport()), "txtModifica");
    txtModifica->setAccessibleName(QStringLiteral("Name of the search"));
    txtModifica->setFrame(false);
    txtModifica->hide();

    cmdAddSearch = makeButton("cmdAddSearch", QStringLiteral("&Add"), frame);
    cmdSetName = makeButton("cmdSetName", QStringLiteral("Set &Name"), frame);
    cmdRemoveSearch = makeButton("cmdRemoveSearch", QStringLiteral("Dele&te"), frame);
    auto* buttons = new QHBoxLayout;
    for (QPushButton* button : {cmdAddSearch, cmdSetName, cmdRemoveSearch})
        buttons->addWidget(button);
    auto* body = new QVBoxLayout(frame);
    body->addWidget(fxGridSearch, 1);
    body->addLayout(buttons);
    return frame;
}

QWidget* SearchWidgets::makeDates() {
    auto* frame = makeFrame("FrameDates", QStringLiteral("Range Date Events"), &window_);
    chk_RangeDateEvents = named(new QCheckBox(QStringLiteral("&Enable this parameter"), frame),
                                "chk_RangeDateEvents");
    DTStart = makePicker("DTStart");
    DTEnd = makePicker("DTEnd");
    auto* row = new QHBoxLayout;
    row->addWidget(makeLabel(QStringLiteral("Sta&rt date:"), DTStart));
    row->addWidget(DTStart);
    row->addSpacing(spacing);
    row->addWidget(makeLabel(QStringLiteral("En&d date:"), DTEnd));
    row->addWidget(DTEnd);
    row->addStretch(1);
    auto* body = new QVBoxLayout(frame);
    body->addWidget(chk_RangeDateEvents);
    body->addLayout(row);
    return frame;
}

QWidget* SearchWidgets::makeMagnitudes() {
    auto* frame = makeFrame("Frame2", QStringLiteral("Magnitude range "), &window_);
    chk_MagnitudeRange =
        named(new QCheckBox(QStringLiteral("Enable t&his parameter"), frame), "chk_MagnitudeRange");
    txt_min_mag = makeBox("txt_min_mag", QStringLiteral("Smallest magnitude"));
    txt_max_mag = makeBox("txt_max_mag", QStringLiteral("Largest magnitude"));
    auto* row = new QHBoxLayout;
    row->addWidget(makeLabel(QStringLiteral("M&in."), txt_min_mag));
    row->addWidget(txt_min_mag);
    row->addSpacing(spacing);
    row->addWidget(makeLabel(QStringLiteral("Ma&x."), txt_max_mag));
    row->addWidget(txt_max_mag);
    row->addStretch(1);
    auto* body = new QVBoxLayout(frame);
    body->addWidget(chk_MagnitudeRange);
    body->addLayout(row);
    return frame;
}

QWidget* SearchWidgets::makeArea() {
    auto* frame = makeFrame("Frame1", QStringLiteral("Define search area "), &window_);
    chk_SearchArea =
        named(new QCheckBox(QStringLiteral("Enable this &parameter"), frame), "chk_SearchArea");
    auto* methods = makeMethods();
    txt_BL_Latitude =
        makeBox("txt_BL_Latitude", QStringLiteral("Latitude of the lower left corner or centre"));
    txt_BL_Longitude =
        makeBox("txt_BL_Longitude", QStringLiteral("Longitude of the lower left corner or centre"));
    txt_TR_Latitude =
        makeBox("txt_TR_Latitude", QStringLiteral("Latitude of the upper right corner"));
    txt_TR_Longitude =
        makeBox("txt_TR_Longitude", QStringLiteral("Longitude of the upper right corner"));
    lblCorner = makeLabel({}, txt_BL_Latitude);
    // The longer of its two texts, so that nothing moves when the method changes.
    lblCorner->setMinimumWidth(
        lblCorner->fontMetrics().horizontalAdvance(QStringLiteral("Centre (or map click):")) +
        spacing / 2);
    auto* corners = new QGridLayout;
    corners->addWidget(makeLabel(QStringLiteral("Latitude °"), nullptr), 0, 1);
    corners->addWidget(makeLabel(QStringLiteral("Longitude °"), nullptr), 0, 2);
    corners->addWidget(lblCorner, 1, 0);
    corners->addWidget(txt_BL_Latitude, 1, 1);
    corners->addWidget(txt_BL_Longitude, 1, 2);
    corners->addWidget(makeLabel(QStringLiteral("&Upper right:"), txt_TR_Latitude), 2, 0);
    corners->addWidget(txt_TR_Latitude, 2, 1);
    corners->addWidget(txt_TR_Longitude, 2, 2);
    corners->setColumnStretch(3, 1);

    auto* body = new QVBoxLayout(frame);
    body->addWidget(chk_SearchArea);
    body->addLayout(methods);
    body->addSpacing(spacing / 2);
    body->addLayout(corners);
    body->addSpacing(spacing / 2);
    body->addLayout(makeDepths());
    body->addSpacing(spacing / 2);
    body->addLayout(makeWorkspace());
    return frame;
}

QBoxLayout* SearchWidgets::makeMethods() {
    OptArea = named(new QRadioButton(QStringLiteral("Define s&quared area"), &window_), "OptArea");
    OptManualGPS =
        makeButton("OptManualGPS", QStringLiteral("Define area directly from the &map"), &window_);
    OptDistance = named(new QRadioButton(QStringLiteral("Distance from &Lat / Lon"), &window_),
                        "OptDistance");
    TxtDistance = makeBox("TxtDistance", QStringLiteral("Distance in kilometres"));
    auto* byArea = new QHBoxLayout;
    byArea->addWidget(OptArea);
    byArea->addStretch(1);
    byArea->addWidget(OptManualGPS);
    auto* byDistance = new QHBoxLayout;
    byDistance->addWidget(OptDistance);
    byDistance->addWidget(TxtDistance);
    byDistance->addWidget(makeLabel(QStringLiteral("&km"), TxtDistance));
    byDistance->addStretch(1);
    auto* rows = new QVBoxLayout;
    rows->addLayout(byArea);
    rows->addLayout(byDistance);
    return rows;
}

QBoxLayout* SearchWidgets::makeDepths() {
    TxtDepthMin = makeBox("TxtDepthMin", QStringLiteral("Smallest depth in kilometres"));
    TxtDepthMax = makeBox("TxtDepthMax", QStringLiteral("Largest depth in kilometres"));
    TxtDepthMax->setText(QStringLiteral("100"));
    auto* row = new QHBoxLayout;
    row->addWidget(makeLabel(QStringLiteral("Depth &from"), TxtDepthMin));
    row->addWidget(TxtDepthMin);
    row->addWidget(makeLabel(QStringLiteral("min"), nullptr));
    row->addSpacing(spacing);
    row->addWidget(TxtDepthMax);
    row->addWidget(makeLabel(QStringLiteral("max"), nullptr));
    row->addWidget(makeLabel(QStringLiteral("(km)"), nullptr));
    row->addStretch(1);
    return row;
}

QBoxLayout* SearchWidgets::makeWorkspace() {
    chk_saveWrkSpace =
        named(new QCheckBox(QStringLiteral("Save as &WorkSpace"), &window_), "chk_saveWrkSpace");
    cmbWorkSpace = named(new QComboBox(&window_), "cmbWorkSpace");
    cmbWorkSpace->setEditable(true);
    cmbWorkSpace->setCompleter(nullptr); // it would turn "etna" into a stored "Etna"
    cmbWorkSpace->setInsertPolicy(QComboBox::NoInsert);
    cmbWorkSpace->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    cmbWorkSpace->setMinimumContentsLength(boxLetters);
    cmbWorkSpace->setEnabled(false);
    lblWrkSpace =
        named(makeLabel(QStringLiteral("&Give a name to Workspace"), cmbWorkSpace), "lblWrkSpace");
    auto* naming = new QHBoxLayout;
    naming->addWidget(lblWrkSpace);
    naming->addWidget(cmbWorkSpace, 1);
    auto* rows = new QVBoxLayout;
    rows->addWidget(chk_saveWrkSpace);
    rows->addLayout(naming);
    return rows;
}

QDateEdit* SearchWidgets::makePicker(const char* name) {
    auto* picker = named(new QDateEdit(&window_), name);
    picker->setDisplayFormat(QStringLiteral("yyyy-MM-dd"));
    picker->setDateRange(QDate(1601, 1, 1), QDate(9999, 12, 31));
    picker->setCalendarPopup(true);
    return picker;
}

QLineEdit* SearchWidgets::makeBox(const char* name, const QString& description) {
    auto* box = named(new QLineEdit(&window_), name);
    box->setAccessibleName(description);
    box->setToolTip(description);
    // Room for the letters, the frame and the cursor.
    box->setFixedWidth(box->fontMetrics().averageCharWidth() * (boxLetters + 4));
    return box;
}

QLabel* SearchWidgets::makeLabel(const QString& text, QWidget* buddy) {
    auto* label = new QLabel(text, &window_);
    label->setBuddy(buddy);
    return label;
}

} // namespace tremor
