#include "workspaces/frm_search.h"

#include "core/common_text.h"
#include "core/conversions.h"
#include "core/dates.h"
#include "core/qt_text.h"

#include <QtCore/QPointer>
#include <QtGui/QCloseEvent>
#include <QtGui/QFocusEvent>
#include <QtGui/QKeyEvent>
#include <QtGui/QShortcut>
#include <QtWidgets/QCheckBox>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QDateEdit>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QRadioButton>
#include <QtWidgets/QTableWidget>

#include <chrono>
#include <optional>
#include <string>
#include <vector>

namespace tremor {

namespace {

constexpr std::string_view module = "Form - frmSearch";
constexpr int idColumn = 0;
constexpr int nameColumn = 1;

constexpr unsigned daysBefore = 7; // the first day offered lies a week before today

std::string textOf(const QLineEdit* box) {
    return toBytes(box->text());
}

std::string textOf(const QDateEdit* picker) {
    return toBytes(picker->date().toString(QStringLiteral("yyyy-MM-dd")));
}

QDate dayOf(DateTime date) {
    const std::chrono::year_month_day day(std::chrono::floor<std::chrono::days>(date));
    return {static_cast<int>(day.year()), static_cast<int>(static_cast<unsigned>(day.month())),
            static_cast<int>(static_cast<unsigned>(day.day()))};
}

} // namespace

frmSearch::frmSearch(const SearchContext& context, SearchFilter& filter,
                     SearchWorkspaces& workspaces, SavedSearches& saved, QWidget* owner)
    : QWidget(owner, Qt::Dialog),
      context_(context),
      filter_(filter),
      workspaces_(workspaces),
      saved_(saved),
      widgets_(*this) {
    setObjectName(QStringLiteral("frmSearch"));
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowTitle(QStringLiteral("Search Parameters"));
    for (QDateEdit* picker : {widgets_.DTStart, widgets_.DTEnd})
        picker->setDate(dayOf(context_.clock.now()));
    areaMethodChanged();
    connectSavedSearches();
    connectFilters();
}

void frmSearch::connectSavedSearches() {
    QTableWidget* grid = widgets_.fxGridSearch;
    connect(grid, &QTableWidget::cellClicked, this, [this] { fxGridSearch_Click(); });
    for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter, Qt::Key_Space}) {
        auto* choose = new QShortcut(key, grid);
        choose->setContext(Qt::WidgetShortcut);
        connect(choose, &QShortcut::activated, this, [this] { fxGridSearch_Click(); });
    }
    connect(widgets_.cmdAddSearch, &QPushButton::clicked, this, &frmSearch::cmdAddSearch_Click);
    connect(widgets_.cmdSetName, &QPushButton::clicked, this, &frmSearch::cmdSetName_Click);
    connect(widgets_.cmdRemoveSearch, &QPushButton::clicked, this,
            &frmSearch::cmdRemoveSearch_Click);
    connect(widgets_.txtModifica, &QLineEdit::returnPressed, this, [this] { StopEditing(true); });
    widgets_.txtModifica->installEventFilter(this);
}

void frmSearch::connectFilters() {
    for (QLineEdit* box : widgets_.checkedBoxes()) {
        connect(box, &QLineEdit::textChanged, this, [this, box] { numberChanged(box); });
        connect(box, &QLineEdit::editingFinished, this, &frmSearch::settleNumbers);
    }
    for (QDateEdit* picker : {widgets_.DTStart, widgets_.DTEnd}) {
        connect(picker, &QDateEdit::dateChanged, this,
                [this] { widgets_.chk_RangeDateEvents->setChecked(true); });
    }
    connect(widgets_.OptDistance, &QRadioButton::toggled, this, &frmSearch::areaMethodChanged);
    connect(widgets_.OptManualGPS, &QPushButton::clicked, this, &frmSearch::OptManualGPS_Click);
    connect(widgets_.chk_saveWrkSpace, &QCheckBox::toggled, this,
            &frmSearch::chk_saveWrkSpace_Click);
    connect(widgets_.cmd_query, &QPushButton::clicked, this, &frmSearch::cmd_query_Click);
    connect(widgets_.CmdCancel, &QPushButton::clicked, this, &QWidget::close);
}

void frmSearch::Form_Load(bool workspaceShown) {
    const ProcedureTrace trace(context_.errors, module, "Form_Load");
    context_.session.PollingSuspended = 1;
    fillGridSearch();
    if (workspaceShown) {
        loadFromWorkspace();
    } else {
        widgets_.OptArea->setChecked(true);
        initializeTxt();
    }
}

void frmSearch::closeEvent(QCloseEvent* event) {
    context_.session.PollingSuspended = 0;
    QWidget::closeEvent(event);
}

void frmSearch::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape)
        close();
    else
        QWidget::keyPressEvent(event);
}

// Numbers and dates

// A number box has changed, by typing or by the program.
void frmSearch::numberChanged(QLineEdit* box) {
    const std::string text = textOf(box);
    const std::string kept = numberWhileTyped(text, resetTextOf(box), context_.locale);
    if (kept != text)
        box->setText(fromBytes(kept)); // comes back here
    else if (isMagnitude(box) && !text.empty())
        widgets_.chk_MagnitudeRange->setChecked(true);
}

// A lone "-" or the like, which typing passes through, is no number to search by.
void frmSearch::settleNumbers() {
    for (QLineEdit* box : widgets_.checkedBoxes())
        box->setText(fromBytes(numberTyped(textOf(box), resetTextOf(box), context_.locale)));
}

// As if typed, also when the box holds that text already.
void frmSearch::setNumber(QLineEdit* box, std::string_view text) {
    box->setText(fromBytes(text));
    numberChanged(box);
}

bool frmSearch::isMagnitude(const QLineEdit* box) const {
    return box == widgets_.txt_min_mag || box == widgets_.txt_max_mag;
}

std::string_view frmSearch::resetTextOf(const QLineEdit* box) const {
    return isMagnitude(box) ? "0" : "";
}

// As if picked, also when the picker shows that day already.
void frmSearch::setDay(QDateEdit* picker, DateTime date) {
    const QDate day = dayOf(date);
    if (day < picker->minimumDate() || day > picker->maximumDate()) // outside its calendar
        throw RuntimeError(ErrorNumber::InvalidPropertyValue);
    picker->setDate(day);
    widgets_.chk_RangeDateEvents->setChecked(true);
}

void frmSearch::initializeTxt() {
    ProcedureTrace trace(context_.errors, module, "initializeTxt");
    const auto today = std::chrono::floor<std::chrono::days>(context_.clock.now());
    setDay(widgets_.DTEnd, today);
    trace.step([&] {
        // The day alone is set back: the month stays that of today.
        if (static_cast<unsigned>(std::chrono::year_month_day(today).day()) <= daysBefore)
            throw RuntimeError(ErrorNumber::InvalidPropertyValue);
        setDay(widgets_.DTStart, today - std::chrono::days(daysBefore));
    });
    trace.step([&] {
        const std::string oldest = filter_.oldestDay();
        if (!oldest.empty())
            setDay(widgets_.DTStart, textToDate(oldest, context_.locale));
    });
    for (QLineEdit* box : widgets_.checkedBoxes()) {
        if (!isMagnitude(box))
            box->clear();
    }
}

void frmSearch::loadFromWorkspace() {
    const std::optional<WorkspaceFilters> filters = workspaces_.loadFromWorkspace();
    if (!filters)
        return;
    setNumber(widgets_.txt_BL_Latitude, filters->BLat);
    setNumber(widgets_.txt_BL_Longitude, filters->BLng);
    setNumber(widgets_.txt_TR_Latitude, filters->TLat);
    setNumber(widgets_.txt_TR_Longitude, filters->TLng);
    setNumber(widgets_.txt_min_mag, filters->MagMin);
    setNumber(widgets_.txt_max_mag, filters->MagMax);
    widgets_.TxtDepthMin->setText(fromBytes(filters->DepthMin));
    widgets_.TxtDepthMax->setText(fromBytes(filters->DepthMax));
    widgets_.chk_MagnitudeRange->setChecked(true);
    widgets_.chk_SearchArea->setChecked(true);
    widgets_.OptArea->setChecked(true);
    widgets_.chk_saveWrkSpace->setChecked(true);
    widgets_.cmbWorkSpace->setEditText(fromBytes(context_.settings.LastWorkSpace));
}

// The area

void frmSearch::areaMethodChanged() {
    const bool byDistance = widgets_.OptDistance->isChecked();
    widgets_.txt_TR_Latitude->setEnabled(!byDistance);
    widgets_.txt_TR_Longitude->setEnabled(!byDistance);
    widgets_.TxtDistance->setEnabled(byDistance);
    widgets_.lblCorner->setText(byDistance ? QStringLiteral("Centre (&or map click):")
                                           : QStringLiteral("L&ower left:"));
}

void frmSearch::OptManualGPS_Click() {
    widgets_.OptArea->setChecked(true);
    const std::optional<MapBounds> area = filter_.areaOfMap();
    if (!area)
        return;
    setNumber(widgets_.txt_BL_Latitude, area->south);
    setNumber(widgets_.txt_BL_Longitude, area->west);
    setNumber(widgets_.txt_TR_Latitude, area->north);
    setNumber(widgets_.txt_TR_Longitude, area->east);
}

bool frmSearch::wantsPlace() const {
    return widgets_.chk_SearchArea->isChecked() && widgets_.OptDistance->isChecked();
}

void frmSearch::setPlace(std::string_view latitude, std::string_view longitude) {
    setNumber(widgets_.txt_BL_Latitude, latitude);
    setNumber(widgets_.txt_BL_Longitude, longitude);
}

void frmSearch::chk_saveWrkSpace_Click(bool checked) {
    QComboBox* names = widgets_.cmbWorkSpace;
    names->setEnabled(checked);
    if (!checked)
        return;
    names->clear();
    for (const std::string& name : workspaces_.popolacmbWrkspace())
        names->addItem(fromBytes(name));
    names->setCurrentIndex(-1);
    names->clearEditText();
}

// The search

SearchParameters frmSearch::parameters() {
    settleNumbers();
    const auto method = widgets_.OptDistance->isChecked() ? AreaMethod::Distance
                        : widgets_.OptArea->isChecked()   ? AreaMethod::Corners
                                                          : AreaMethod::None;
    return {.rangeDate = widgets_.chk_RangeDateEvents->isChecked(),
            .startDate = textOf(widgets_.DTStart),
            .endDate = textOf(widgets_.DTEnd),
            .rangeMag = widgets_.chk_MagnitudeRange->isChecked(),
            .minMag = textOf(widgets_.txt_min_mag),
            .maxMag = textOf(widgets_.txt_max_mag),
            .rangeInMap = widgets_.chk_SearchArea->isChecked(),
            .method = method,
            .BL_Latitude = textOf(widgets_.txt_BL_Latitude),
            .BL_Longitude = textOf(widgets_.txt_BL_Longitude),
            .TR_Latitude = textOf(widgets_.txt_TR_Latitude),
            .TR_Longitude = textOf(widgets_.txt_TR_Longitude),
            .distance = textOf(widgets_.TxtDistance),
            .depthMin = textOf(widgets_.TxtDepthMin),
            .depthMax = textOf(widgets_.TxtDepthMax),
            .saveWrkSpace = widgets_.chk_saveWrkSpace->isChecked(),
            .workspaceName = toBytes(widgets_.cmbWorkSpace->currentText())};
}

// Each press keeps a row of `Search`, also after a failed check. The search waits for the map and
// for answers, so the window may be gone when it returns.
void frmSearch::cmd_query_Click() {
    if (searching_)
        return;
    searching_ = true;
    const QPointer<frmSearch> window(this);
    SavedSearches& saved = saved_;
    SearchSurroundings& panel = context_.surroundings;
    const SearchParameters given = parameters();
    const bool queryAccepted = filter_.generaParQuery(given);
    saved.saveSearch(given);
    panel.refreshPanel();
    if (queryAccepted)
        panel.turnSearchModeOn();
    if (window.isNull())
        return;
    searching_ = false;
    if (queryAccepted)
        close();
    else
        fillGridSearch();
}

// Saved searches

void frmSearch::fillGridSearch() {
    StopEditing(false);
    const std::vector<SavedSearchName> names = saved_.fillGridSearch();
    QTableWidget* grid = widgets_.fxGridSearch;
    grid->setRowCount(0);
    grid->setRowCount(static_cast<int>(names.size()));
    for (int row = 0; row < grid->rowCount(); ++row) {
        const SavedSearchName& each = names[static_cast<std::size_t>(row)];
        grid->setItem(row, idColumn, new QTableWidgetItem(fromBytes(each.id)));
        grid->setItem(row, nameColumn, new QTableWidgetItem(fromBytes(each.name)));
    }
    if (const int row = rowOf(selectedSearchId_); row >= 0)
        grid->selectRow(row);
}

void frmSearch::cmdAddSearch_Click() {
    saved_.saveSearch(parameters());
    fillGridSearch();
    widgets_.fxGridSearch->scrollToBottom();
}

// The number stays, so that a second press removes nothing and none other.
void frmSearch::cmdRemoveSearch_Click() {
    saved_.removeSearch(selectedSearchId_);
    fillGridSearch();
}

void frmSearch::cmdSetName_Click() {
    const int row = rowOf(selectedSearchId_);
    if (row >= 0) {
        StartEditing(row, nameColumn);
        return;
    }
    context_.prompts.showMessageBox(
        {.text = "Please select a search first.", .icon = BoxIcon::Information});
}

void frmSearch::fxGridSearch_Click() {
    StopEditing(false);
    const QTableWidgetItem* id =
        widgets_.fxGridSearch->item(widgets_.fxGridSearch->currentRow(), idColumn);
    if (id == nullptr)
        return;
    selectedSearchId_ = SafeToLong(toBytes(id->text()), context_.locale);
    loadSearch(selectedSearchId_);
}

void frmSearch::loadSearch(std::int32_t id) {
    ProcedureTrace trace(context_.errors, module, "loadSearch");
    const std::optional<SavedSearch> row = saved_.loadSearch(id);
    if (!row)
        return;
    const auto setFlag = [&](QCheckBox* box, const std::string& text) {
        trace.step([&] { box->setChecked(textToLong(text, context_.locale) != 0); });
    };
    const auto setDate = [&](QDateEdit* picker, const std::string& text) {
        trace.step([&] { setDay(picker, savedDate(text, context_.locale)); });
    };
    setFlag(widgets_.chk_RangeDateEvents, row->RangeDate);
    setDate(widgets_.DTStart, row->StartDate);
    setDate(widgets_.DTEnd, row->EndDate);
    setFlag(widgets_.chk_MagnitudeRange, row->RangeMag);
    setNumber(widgets_.txt_min_mag, row->MinMag);
    setNumber(widgets_.txt_max_mag, row->MaxMag);
    setAreaMethod(row->MethodDefinied);
    setFlag(widgets_.chk_SearchArea, row->RangeInMap);
    setNumber(widgets_.txt_BL_Latitude, row->MinLat);
    setNumber(widgets_.txt_TR_Latitude, row->MaxLat);
    setNumber(widgets_.txt_BL_Longitude, row->MinLon);
    setNumber(widgets_.txt_TR_Longitude, row->MaxLon);
}

// A number of AreaMethod. The corners of the row are set after those of the map.
void frmSearch::setAreaMethod(std::string_view method) {
    if (method == "0" || method == "2")
        widgets_.OptArea->setChecked(true);
    else if (method == "1")
        widgets_.OptManualGPS->click();
    else if (method == "3")
        widgets_.OptDistance->setChecked(true);
}

int frmSearch::rowOf(std::int32_t id) const {
    const QTableWidget* grid = widgets_.fxGridSearch;
    for (int row = 0; row < grid->rowCount(); ++row) {
        if (grid->item(row, idColumn)->text() == QString::number(id))
            return row;
    }
    return -1;
}

void frmSearch::StartEditing(int row, int col) {
    QTableWidget* grid = widgets_.fxGridSearch;
    QTableWidgetItem* cell = grid->item(row, col);
    grid->scrollToItem(cell);
    editing_ = true;
    editRow_ = row;
    editCol_ = col;
    widgets_.txtModifica->setGeometry(grid->visualItemRect(cell));
    widgets_.txtModifica->setText(cell->text());
    widgets_.txtModifica->selectAll();
    widgets_.txtModifica->show();
    widgets_.txtModifica->setFocus();
}

void frmSearch::StopEditing(bool commit) {
    if (!editing_)
        return;
    editing_ = false;
    const bool focused = widgets_.txtModifica->hasFocus();
    widgets_.txtModifica->hide();
    if (commit) {
        const QString text = widgets_.txtModifica->text();
        widgets_.fxGridSearch->item(editRow_, editCol_)->setText(text);
        saved_.setName(selectedSearchId_, toBytes(text));
    }
    if (focused)
        widgets_.fxGridSearch->setFocus();
}

// Leaving the editor gives the name up, but not a change to another window.
bool frmSearch::eventFilter(QObject* watched, QEvent* event) {
    if (watched == widgets_.txtModifica && event->type() == QEvent::FocusOut) {
        const Qt::FocusReason reason = static_cast<QFocusEvent*>(event)->reason();
        if (reason != Qt::ActiveWindowFocusReason && reason != Qt::PopupFocusReason)
            StopEditing(false);
    }
    return QWidget::eventFilter(watched, event);
}

} // namespace tremor
