#include "manage/frm_manage_poi.h"

#include "core/named_widget.h"
#include "core/qt_text.h"
#include "manage/in_place_grid.h"
#include "manage/poi_model.h"

#include <QtCore/QPersistentModelIndex>
#include <QtGui/QCloseEvent>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QHeaderView>
#include <QtWidgets/QLabel>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QTableView>
#include <QtWidgets/QVBoxLayout>

#include <algorithm>
#include <functional>

namespace tremor {
namespace {

constexpr int nameColumn = poiName;
constexpr int lastColumn = poiColumnCount - 1;
constexpr int longestMessage = 160; // SQLite's may quote all of a long search

} // namespace

// The table of points.
class PoiGrid : public InPlaceGrid<QTableView> {
  public:
    explicit PoiGrid(QWidget* parent) : InPlaceGrid(parent) {}

    // Called when Return has ended editing.
    std::function<void()> goOn;

  protected:
    void returned() override { goOn(); }

    // The row ids are no place for the cursor; the name beside takes it.
    void mousePressEvent(QMouseEvent* event) override {
        const QModelIndex cell = indexAt(event->position().toPoint());
        if (cell.isValid() && cell.column() == static_cast<int>(poiRowid))
            setCurrentIndex(cell.siblingAtColumn(nameColumn));
        else
            InPlaceGrid::mousePressEvent(event);
    }
};

FrmManagePoI::FrmManagePoI(PoiManager& manager, QWidget* owner)
    : QDialog(owner), manager_(manager), model_(new PoiModel(manager, this)) {
    setObjectName(QStringLiteral("frmManagePoI"));
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowTitle(tr("Points of Interest"));
    setWindowFlag(Qt::WindowMaximizeButtonHint);

    auto* all = new QVBoxLayout(this);
    all->setContentsMargins(12, 12, 12, 12);
    all->setSpacing(8);
    all->addWidget(makeSearch());
    all->addWidget(makeGrid(), 1);
    all->addWidget(makeButtons());
    resize(720, 520);

    connectControls();
    searchPOI();
    fxGrid->setFocus();
}

FrmManagePoI::~FrmManagePoI() {
    fxGrid->dropOpenEdit(); // the focus that its end takes away would keep the text
    manager_.clear();
}

QWidget* FrmManagePoI::makeSearch() {
    auto* area = new QWidget(this);
    auto* layout = new QHBoxLayout(area);
    layout->setContentsMargins(0, 0, 0, 0);
    txt_search = named<QLineEdit>("txt_search");
    txt_search->setClearButtonEnabled(true);
    txt_search->setPlaceholderText(tr("Part of a name"));
    txt_search->setToolTip(
        tr("% stands for any text, _ for any character; an apostrophe must be typed twice"));
    auto* label = new QLabel(tr("&Search:"));
    label->setBuddy(txt_search);
    layout->addWidget(label);
    layout->addWidget(txt_search, 1);
    return area;
}

QWidget* FrmManagePoI::makeGrid() {
    fxGrid = new PoiGrid(this);
    fxGrid->setObjectName(QStringLiteral("fxGrid"));
    fxGrid->setAccessibleName(tr("Points of interest"));
    fxGrid->setModel(model_);
    fxGrid->setAlternatingRowColors(true);
    fxGrid->setWordWrap(false);
    fxGrid->setVerticalScrollMode(QAbstractItemView::ScrollPerItem);
    fxGrid->horizontalHeader()->setHighlightSections(false);
    fxGrid->horizontalHeader()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    fxGrid->verticalHeader()->hide();
    fxGrid->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    fxGrid->verticalHeader()->setDefaultSectionSize(fxGrid->fontMetrics().height() + 8);
    dimensionamentoGrid();
    return fxGrid;
}

void FrmManagePoI::dimensionamentoGrid() {
    const auto wide = [this](PoiColumn column, const char* longest) {
        fxGrid->setColumnWidth(
            column, fxGrid->fontMetrics().horizontalAdvance(QLatin1StringView(longest)) + 16);
    };
    fxGrid->horizontalHeader()->setSectionResizeMode(nameColumn, QHeaderView::Stretch);
    wide(poiRowid, "00000000");
    wide(poiLatitude, "00.0000000000000"); // the longest that GeoNames sends
    wide(poiLongitude, "00.00000000000000");
    wide(poiZone, "Zone 00");
}

QWidget* FrmManagePoI::makeButtons() {
    auto* area = new QWidget(this);
    auto* lines = new QVBoxLayout(area);
    lines->setContentsMargins(0, 0, 0, 0);
    lines->setSpacing(8);
    lblRows = named<QLabel>("lblRows");
    lblRows->setTextFormat(Qt::PlainText);
    lblRows->setWordWrap(true);
    lblRows->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred); // also for long words
    lines->addWidget(lblRows);
    auto* buttons = new QHBoxLayout;
    const auto add = [&](const char* objectName, const QString& caption) {
        auto* button = named<QPushButton>(objectName, caption);
        button->setAutoDefault(false); // Return belongs to the grid
        buttons->addWidget(button);
        return button;
    };
    cmd_addPOI = add("cmd_addPOI", tr("&Add"));
    cmd_editPOI = add("cmd_editPOI", tr("&Edit"));
    cmd_delPOI = add("cmd_delPOI", tr("&Delete"));
    buttons->addStretch(1);
    cmd_ok = add("cmd_ok", tr("&OK"));
    cmd_cancel = add("cmd_cancel", tr("&Cancel"));
    // A click must not take the focus from the open editor, which would keep its text.
    for (QPushButton* button : {cmd_delPOI, cmd_cancel})
        button->setFocusPolicy(Qt::TabFocus);
    lines->addLayout(buttons);
    return area;
}

void FrmManagePoI::connectControls() {
    searchTimer_.setSingleShot(true);
    searchTimer_.setInterval(searchDelayMs);
    connect(&searchTimer_, &QTimer::timeout, this, &FrmManagePoI::searchPOI);
    connect(txt_search, &QLineEdit::textChanged, this, [this] { searchTimer_.start(); });
    connect(txt_search, &QLineEdit::returnPressed, this, &FrmManagePoI::searchPOI);
    connect(model_, &PoiModel::refused, this, &FrmManagePoI::cellRefused);
    fxGrid->goOn = [this] { goOn(); };
    connect(cmd_addPOI, &QPushButton::clicked, this, &FrmManagePoI::cmd_addPOI_Click);
    connect(cmd_editPOI, &QPushButton::clicked, this,
            [this] { StartEditing(fxGrid->currentIndex()); });
    connect(cmd_delPOI, &QPushButton::clicked, this, &FrmManagePoI::cmd_delPOI_Click);
    connect(cmd_ok, &QPushButton::clicked, this, [this] {
        if (keepOpenEdit())
            close();
    });
    connect(cmd_cancel, &QPushButton::clicked, this, [this] {
        fxGrid->dropOpenEdit();
        close();
    });
}

void FrmManagePoI::searchPOI() {
    searchTimer_.stop();
    keepOpenEdit();
    lblRows->setText(tr("Reading…"));
    model_->readAnew([this] { manager_.searchPOI(toBytes(txt_search->text())); });
    fxGrid->setCurrentIndex(model_->index(0, nameColumn));
    showTotal();
}

void FrmManagePoI::showTotal() {
    const bool hasRows = model_->rowCount() > 0;
    cmd_editPOI->setEnabled(hasRows);
    cmd_delPOI->setEnabled(hasRows);
    const auto shown = static_cast<std::size_t>(model_->rowCount());
    if (!manager_.failure().empty())
        lblRows->setText(fromBytes(manager_.failure()).simplified().left(longestMessage));
    else if (shown < manager_.total())
        lblRows->setText(tr("%L1 of %L2 points on show; search for the others")
                             .arg(shown)
                             .arg(manager_.total()));
    else
        lblRows->setText(tr("%Ln point(s)", nullptr, model_->rowCount()));
}

void FrmManagePoI::StartEditing(const QModelIndex& cell) {
    fxGrid->setFocus();
    fxGrid->setCurrentIndex(cell);
    if (cell.isValid())
        fxGrid->edit(cell);
}

void FrmManagePoI::goOn() {
    if (refused_)
        return;
    const QModelIndex cell = fxGrid->currentIndex();
    const QModelIndex next = cell.column() < lastColumn ? cell.siblingAtColumn(cell.column() + 1)
                                                        : model_->index(cell.row() + 1, nameColumn);
    if (next.isValid())
        StartEditing(next);
}

bool FrmManagePoI::keepOpenEdit() {
    refused_ = false;
    fxGrid->keepOpenEdit();
    return !refused_;
}

// The box waits until Qt has done with the editor; the window may go while it is open.
void FrmManagePoI::cellRefused(const QModelIndex& cell) {
    refused_ = true;
    QTimer::singleShot(0, this,
                       [this, place = QPersistentModelIndex(cell), failure = manager_.failure()] {
                           refused_ = false;
                           const QPointer<FrmManagePoI> alive(this);
                           manager_.tell(failure);
                           if (alive && place.isValid())
                               StartEditing(place);
                       });
}

void FrmManagePoI::cmd_addPOI_Click() {
    if (!keepOpenEdit())
        return;
    if (!manager_.cmd_addPOI_Click()) {
        manager_.tell(manager_.failure());
        return;
    }
    model_->rowAdded();
    showTotal();
    StartEditing(model_->index(model_->rowCount() - 1, nameColumn));
}

void FrmManagePoI::cmd_delPOI_Click() {
    fxGrid->dropOpenEdit();
    const QModelIndex cell = fxGrid->currentIndex();
    if (!cell.isValid())
        return;
    const int row = cell.row();
    const int top = fxGrid->indexAt({0, 0}).row();
    bool deleted = false;
    model_->readAnew([&] { deleted = manager_.cmd_delPOI_Click(static_cast<std::size_t>(row)); });
    fxGrid->scrollTo(model_->index(top, nameColumn), QAbstractItemView::PositionAtTop);
    fxGrid->setCurrentIndex(model_->index(std::min(row, model_->rowCount() - 1), nameColumn));
    showTotal();
    if (!deleted)
        manager_.tell(manager_.failure());
}

// The program itself closes the window whatever is being typed; the operator is told first.
void FrmManagePoI::closeEvent(QCloseEvent* event) {
    if (!keepOpenEdit() && event->spontaneous()) {
        event->ignore();
        return;
    }
    event->accept(); // QDialog's own handler would take every close for Escape
}

} // namespace tremor
