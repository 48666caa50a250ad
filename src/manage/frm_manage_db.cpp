#include "manage/frm_manage_db.h"

#include "core/named_widget.h"
#include "core/qt_text.h"
#include "manage/result_model.h"

#include <QtGui/QAction>
#include <QtGui/QCloseEvent>
#include <QtGui/QFontDatabase>
#include <QtWidgets/QCheckBox>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QDateEdit>
#include <QtWidgets/QGridLayout>
#include <QtWidgets/QGroupBox>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QHeaderView>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QMenu>
#include <QtWidgets/QPlainTextEdit>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QTableView>
#include <QtWidgets/QVBoxLayout>

#include <chrono>
#include <string>
#include <utility>

namespace tremor {
namespace {

QDateEdit* datePicker(const char* objectName) {
    auto* picker = named<QDateEdit>(objectName, QDate::currentDate());
    picker->setCalendarPopup(true);
    picker->setDisplayFormat(QStringLiteral("yyyy-MM-dd"));
    picker->setEnabled(false);
    return picker;
}

QLineEdit* numberBox(const char* objectName, const QString& hint) {
    auto* box = named<QLineEdit>(objectName);
    box->setPlaceholderText(hint);
    box->setEnabled(false);
    return box;
}

// Controls that a check box enables.
void enableBy(QCheckBox* box, std::initializer_list<QWidget*> controls) {
    for (QWidget* control : controls) {
        control->setEnabled(box->isChecked());
        QObject::connect(box, &QCheckBox::toggled, control, &QWidget::setEnabled);
    }
}

void addTexts(QComboBox& combo, const std::vector<std::string>& texts) {
    for (const std::string& text : texts)
        combo.addItem(fromBytes(text));
}

DateTime toDateTime(QDate date) {
    const std::chrono::sys_days day(std::chrono::days(date.toJulianDay() - 2440588));
    return DateTime(day.time_since_epoch());
}

} // namespace

FrmManageDB::FrmManageDB(DatabaseManager& manager, Clock& clock, QWidget* owner)
    : QDialog(owner), manager_(manager), clock_(clock) {
    setObjectName(QStringLiteral("frmManageDB"));
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowTitle(tr("Manage DataBase"));
    setWindowFlag(Qt::WindowMaximizeButtonHint);
    model_ = new ResultModel(this);

    auto* builder = new QHBoxLayout;
    builder->addWidget(makeConditions(), 3);
    builder->addWidget(makeSorting(), 2);
    auto* all = new QVBoxLayout(this);
    all->setContentsMargins(12, 12, 12, 12);
    all->setSpacing(8);
    all->addLayout(builder);
    all->addWidget(makeStatement());
    all->addWidget(makeResults(), 1);
    all->addWidget(makeEventButtons());
    connectControls();
    resize(860, 600);

    manager_.opened();
    fillLists();
    cmdBuildQuery->setFocus();
}

FrmManageDB::~FrmManageDB() {
    manager_.setWhileRunning({});
    manager_.closed();
}

QWidget* FrmManageDB::makeConditions() {
    auto* box = new QGroupBox(tr("Conditions"), this);
    auto* layout = new QGridLayout(box);
    layout->setColumnStretch(1, 1);
    layout->setColumnStretch(3, 1);
    const QString captions[] = {tr("RANGE OF &DATE"), tr("RANGE OF &MAGNITUDE"),
                                tr("RANGE OF D&EPTH"), tr("FILTER &SOURCE")};
    StartDateC = datePicker("StartDateC");
    endDateC = datePicker("endDateC");
    txtSMg = numberBox("txtSMg", tr("lowest"));
    txtEMg = numberBox("txtEMg", tr("highest"));
    txtSDepth = numberBox("txtSDepth", tr("km"));
    txtEDpeth = numberBox("txtEDpeth", tr("km"));
    cmbSource = named<QComboBox>("cmbSource");
    QWidget* const ranges[3][2] = {
        {StartDateC, endDateC}, {txtSMg, txtEMg}, {txtSDepth, txtEDpeth}};
    for (int row = 0; row < 4; ++row) {
        const std::string name = "chk_conditions_" + std::to_string(row);
        chk_conditions_[row] = named<QCheckBox>(name.c_str(), captions[row]);
        layout->addWidget(chk_conditions_[row], row, 0);
        if (row == 3)
            break;
        layout->addWidget(ranges[row][0], row, 1);
        layout->addWidget(new QLabel(tr("to")), row, 2);
        layout->addWidget(ranges[row][1], row, 3);
        enableBy(chk_conditions_[row], {ranges[row][0], ranges[row][1]});
    }
    layout->addWidget(cmbSource, 3, 1, 1, 3);
    enableBy(chk_conditions_[3], {cmbSource});
    return box;
}

QWidget* FrmManageDB::makeSorting() {
    auto* box = new QGroupBox(tr("Sorting"), this);
    auto* layout = new QGridLayout(box);
    layout->setColumnStretch(1, 1);
    chk_orderby = named<QCheckBox>("chk_orderby", tr("&ORDER BY"));
    cmb_FieldsO = named<QComboBox>("cmb_FieldsO");
    cmb_ordinamento = named<QComboBox>("cmb_ordinamento");
    cmb_ordinamento->addItems({QString(), tr("Ascendant"), tr("Descendant")});
    chk_groupby = named<QCheckBox>("chk_groupby", tr("&GROUP BY"));
    cmb_FieldsG = named<QComboBox>("cmb_FieldsG");
    chk_count = named<QCheckBox>("chk_count", tr("&COUNT"));
    cmdBuildQuery = named<QPushButton>("cmdBuildQuery", tr("&Build new Query"));
    layout->addWidget(chk_orderby, 0, 0);
    layout->addWidget(cmb_FieldsO, 0, 1);
    layout->addWidget(cmb_ordinamento, 0, 2);
    layout->addWidget(chk_groupby, 1, 0);
    layout->addWidget(cmb_FieldsG, 1, 1);
    layout->addWidget(chk_count, 1, 2);
    layout->setRowStretch(2, 1);
    layout->addWidget(cmdBuildQuery, 3, 0, 1, 3, Qt::AlignRight);
    enableBy(chk_orderby, {cmb_FieldsO, cmb_ordinamento});
    enableBy(chk_groupby, {cmb_FieldsG, chk_count});
    return box;
}

QWidget* FrmManageDB::makeStatement() {
    auto* area = new QWidget(this);
    auto* layout = new QHBoxLayout(area);
    layout->setContentsMargins(0, 0, 0, 0);
    txtQuery = named<QPlainTextEdit>("txtQuery");
    txtQuery->setAccessibleName(tr("Statement"));
    txtQuery->setPlaceholderText(tr("select * from Events"));
    txtQuery->setTabChangesFocus(true);
    txtQuery->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    txtQuery->setFixedHeight(3 * txtQuery->fontMetrics().lineSpacing() + 14);
    cmdQuery = named<QPushButton>("cmdQuery");
    cmdQuery->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_Return));
    layout->addWidget(txtQuery, 1);
    layout->addWidget(cmdQuery, 0, Qt::AlignBottom);
    showRunning(false);
    cmdQuery->setMinimumWidth(cmdQuery->sizeHint().width());
    return area;
}

QWidget* FrmManageDB::makeResults() {
    grid = named<QTableView>("grid");
    grid->setModel(model_);
    grid->setAccessibleName(tr("Result"));
    grid->setSelectionBehavior(QAbstractItemView::SelectRows);
    grid->setSelectionMode(QAbstractItemView::SingleSelection);
    grid->setContextMenuPolicy(Qt::CustomContextMenu);
    grid->setAlternatingRowColors(true);
    grid->setWordWrap(false);
    grid->setTabKeyNavigation(false);
    grid->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    grid->verticalHeader()->setDefaultSectionSize(grid->fontMetrics().height() + 6);
    return grid;
}

QWidget* FrmManageDB::makeEventButtons() {
    auto* area = new QWidget(this);
    auto* layout = new QHBoxLayout(area);
    layout->setContentsMargins(0, 0, 0, 0);
    popup_ = new QMenu(this);
    lblRows = named<QLabel>("lblRows");
    layout->addWidget(lblRows, 1);
    const auto add = [&](const char* button, const char* item, const QString& caption) {
        auto* made = named<QPushButton>(button, caption);
        layout->addWidget(made);
        QAction* action = popup_->addAction(caption);
        action->setObjectName(QLatin1StringView(item));
        connect(action, &QAction::triggered, made, &QPushButton::click);
        return made;
    };
    cmdAddEvent = add("cmdAddEvent", "mnu_AddEvents", tr("&Add Event"));
    cmdEditEvent = add("cmdEditEvent", "mnu_Edit", tr("Ed&it Event"));
    cmdDeleteEvent = add("cmdDeleteEvent", "mnu_Delete", tr("De&lete Event"));
    return area;
}

void FrmManageDB::connectControls() {
    for (QPushButton* button : findChildren<QPushButton*>())
        button->setAutoDefault(false); // Return in a box must not press one
    connect(cmdBuildQuery, &QPushButton::clicked, this, &FrmManageDB::cmdBuildQuery_Click);
    connect(cmdQuery, &QPushButton::clicked, this, &FrmManageDB::cmdQuery_Click);
    const auto again = [this] { fillGrid(); };
    connect(cmdAddEvent, &QPushButton::clicked, this, [=, this] { manager_.cmdAddEvent(again); });
    connect(cmdEditEvent, &QPushButton::clicked, this, [=, this] { manager_.cmdEditEvent(again); });
    connect(cmdDeleteEvent, &QPushButton::clicked, this,
            [=, this] { manager_.cmdDeleteEvent(again); });
    connect(grid, &QTableView::customContextMenuRequested, this, &FrmManageDB::showPopup);
    connect(grid->selectionModel(), &QItemSelectionModel::currentRowChanged, this,
            [this](const QModelIndex& current) { selectRow(current.row()); });
    manager_.setWhileRunning([this] { clock_.pump(); });
}

void FrmManageDB::fillLists() {
    cmbSource->addItem(QString());
    addTexts(*cmbSource, manager_.sources());
    for (QComboBox* fields : {cmb_FieldsO, cmb_FieldsG}) {
        fields->addItem(QString());
        addTexts(*fields, manager_.fieldNames());
    }
}

EventQueryForm FrmManageDB::form() const {
    return {.dateOn = chk_conditions_[0]->isChecked(),
            .startDate = toDateTime(StartDateC->date()),
            .endDate = toDateTime(endDateC->date()),
            .magnitudeOn = chk_conditions_[1]->isChecked(),
            .magnitudeFrom = toBytes(txtSMg->text()),
            .magnitudeTo = toBytes(txtEMg->text()),
            .depthOn = chk_conditions_[2]->isChecked(),
            .depthFrom = toBytes(txtSDepth->text()),
            .depthTo = toBytes(txtEDpeth->text()),
            .sourceOn = chk_conditions_[3]->isChecked(),
            .source = toBytes(cmbSource->currentText()),
            .orderBy = chk_orderby->isChecked(),
            .orderField = toBytes(cmb_FieldsO->currentText()),
            .orderDirection = toBytes(cmb_ordinamento->currentText()),
            .groupBy = chk_groupby->isChecked(),
            .groupField = toBytes(cmb_FieldsG->currentText())};
}

void FrmManageDB::cmdBuildQuery_Click() {
    if (const auto statement = manager_.cmdBuildQuery(form()))
        txtQuery->setPlainText(fromBytes(*statement));
}

void FrmManageDB::cmdQuery_Click() {
    if (manager_.running())
        manager_.stop();
    else
        fillGrid();
}

void FrmManageDB::fillGrid() {
    if (manager_.running())
        return;
    showRunning(true);
    auto rows = manager_.cmdQuery(toBytes(txtQuery->toPlainText()));
    showRunning(false);
    if (rows) {
        model_->setRows(std::move(*rows));
        manager_.selectEvent({});
        lblRows->setText(tr("%Ln row(s)", nullptr, model_->rowCount()));
        grid->horizontalHeader()->setResizeContentsPrecision(200);
        grid->resizeColumnsToContents();
    } else {
        lblRows->setText(tr("No result"));
    }
    if (closeAfterQuery_)
        close();
}

// While a statement runs only it can be stopped: everything else would wait behind it.
void FrmManageDB::showRunning(bool running) {
    cmdQuery->setText(running ? tr("S&top") : tr("Send &Query to DB"));
    for (QGroupBox* box : findChildren<QGroupBox*>())
        box->setEnabled(!running);
    txtQuery->setReadOnly(running);
    for (QPushButton* button : {cmdAddEvent, cmdEditEvent, cmdDeleteEvent})
        if (button != nullptr)
            button->setEnabled(!running);
    if (running && lblRows != nullptr)
        lblRows->setText(tr("Reading…"));
}

void FrmManageDB::selectRow(int row) {
    manager_.selectEvent(model_->cell(row, 0));
}

void FrmManageDB::showPopup(const QPoint& place) {
    if (model_->rowCount() == 0 || manager_.running())
        return;
    const QModelIndex cell = grid->indexAt(place);
    if (cell.isValid())
        grid->setCurrentIndex(cell);
    popup_->popup(grid->viewport()->mapToGlobal(place));
}

void FrmManageDB::reject() {
    if (manager_.running())
        manager_.stop();
    else
        QDialog::reject();
}

// A window must not go while its query runs in it: the query is stopped first.
void FrmManageDB::closeEvent(QCloseEvent* event) {
    if (manager_.running()) {
        closeAfterQuery_ = true;
        manager_.stop();
        event->ignore();
        return;
    }
    QDialog::closeEvent(event);
}

} // namespace tremor
