#include "views/events_grid_view.h"

#include "core/qt_text.h"

#include <QtCore/QEvent>
#include <QtGui/QFontMetricsF>
#include <QtGui/QHelpEvent>
#include <QtGui/QKeyEvent>
#include <QtGui/QTextDocument>
#include <QtGui/QWheelEvent>
#include <QtWidgets/QApplication>
#include <QtWidgets/QHeaderView>
#include <QtWidgets/QScrollBar>
#include <QtWidgets/QStyle>
#include <QtWidgets/QStyledItemDelegate>
#include <QtWidgets/QToolTip>

#include <cmath>
#include <utility>

namespace tremor {
namespace {

constexpr int utcColumn = 1;
constexpr int sourceColumn = 6; // takes what the others leave
constexpr int smallestFontPixels = 6;
constexpr int rowPadding = 4; // pixels above and below the text together

// The row with the selection colour shows it instead of the palette's highlight.
class GridDelegate : public QStyledItemDelegate {
  public:
    GridDelegate(const EventsGridModel& model, QObject* parent)
        : QStyledItemDelegate(parent), model_(model) {}

  protected:
    void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override {
        QStyledItemDelegate::initStyleOption(option, index);
        if (index.row() == model_.colouredRow())
            option->state &= ~QStyle::State_Selected;
    }

  private:
    const EventsGridModel& model_;
};

} // namespace

GridEvents::GridEvents(QWidget* parent) : QTableView(parent), model_(new EventsGridModel(this)) {
    setObjectName(QStringLiteral("GridEvents"));
    setAccessibleName(tr("Events"));
    setModel(model_);
    setItemDelegate(new GridDelegate(*model_, this));
    setSelectionBehavior(SelectRows);
    setSelectionMode(SingleSelection);
    setEditTriggers(NoEditTriggers);
    setWordWrap(false);
    setTextElideMode(Qt::ElideRight);
    setTabKeyNavigation(false); // Tab leaves the table
    setVerticalScrollMode(ScrollPerItem);
    setHorizontalScrollMode(ScrollPerPixel);
    for (QScrollBar* bar : {verticalScrollBar(), horizontalScrollBar()})
        bar->installEventFilter(this);

    verticalHeader()->hide();
    verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    QHeaderView* heads = horizontalHeader();
    heads->setSectionResizeMode(QHeaderView::Fixed);
    heads->setSectionResizeMode(sourceColumn, QHeaderView::Stretch);
    heads->setMinimumSectionSize(1);
    heads->setSectionsClickable(true);
    heads->setHighlightSections(false);
    heads->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    setColumnHidden(0, true);
    fitFont();

    connect(heads, &QHeaderView::sectionClicked, this,
            [this](int column) { Q_EMIT gridClicked(0, column); });
    connect(this, &QTableView::clicked, this, [this](const QModelIndex& index) {
        Q_EMIT gridClicked(index.row() + 1, index.column());
    });
    connect(selectionModel(), &QItemSelectionModel::currentChanged, this,
            &GridEvents::currentCellMoved);
}

void GridEvents::clearRows() {
    model_->setRows({});
}

void GridEvents::setRows(ResultSet rows) {
    model_->setRows(std::move(rows));
}

std::int64_t GridEvents::rowCount() const {
    return std::int64_t{model_->rowCount()} + 1;
}

void GridEvents::setHeader(int column, std::string_view text) {
    model_->setHeader(column, text);
}

std::string GridEvents::header(int column) const {
    return model_->header(column);
}

void GridEvents::setColumnWidth(int column, std::int32_t twips) {
    setColumnHidden(column, twips <= 0);
    if (twips > 0)
        QTableView::setColumnWidth(column, twipsToPixels(twips, logicalDpiX()));
    if (column == utcColumn)
        fitFont();
}

std::string GridEvents::cell(std::int64_t row, int column) const {
    return std::string(model_->cell(modelRow(row), column));
}

void GridEvents::setRowSelected(std::int64_t row, bool selected) {
    if (selected)
        model_->setColouredRow(modelRow(row));
    else if (model_->colouredRow() == modelRow(row))
        model_->setColouredRow(-1);
}

void GridEvents::setRowsGrey(const std::vector<std::int64_t>& rows) {
    std::vector<int> modelRows;
    modelRows.reserve(rows.size());
    for (const std::int64_t row : rows)
        modelRows.push_back(modelRow(row));
    model_->addGreyRows(modelRows);
}

bool GridEvents::rowVisible(std::int64_t row) const {
    const int index = modelRow(row);
    if (index < 0)
        return false;
    const int top = rowViewportPosition(index);
    return top >= 0 && top + rowHeight(index) <= viewport()->height();
}

std::int64_t GridEvents::topRow() const {
    return std::int64_t{verticalScrollBar()->value()} + 1;
}

void GridEvents::setTopRow(std::int64_t row) {
    executeDelayedItemsLayout(); // the range of the bar follows the rows only then
    if (modelRow(row) >= 0)
        verticalScrollBar()->setValue(modelRow(row));
}

int GridEvents::modelRow(std::int64_t row) const {
    return row >= 1 && row < rowCount() ? static_cast<int>(row - 1) : -1;
}

void GridEvents::keyPressEvent(QKeyEvent* event) {
    const bool enter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (!enter || !currentIndex().isValid()) {
        QTableView::keyPressEvent(event);
        return;
    }
    Q_EMIT gridClicked(currentIndex().row() + 1, currentIndex().column());
    event->accept();
}

// Typing searches nothing: a search through a million rows would stop the window.
void GridEvents::keyboardSearch(const QString& text) {
    Q_UNUSED(text);
}

// The main window scrolls the table, wherever the wheel is turned.
void GridEvents::wheelEvent(QWheelEvent* event) {
    event->ignore();
}

bool GridEvents::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Wheel) { // on a scroll bar
        event->ignore();
        return true;
    }
    return QTableView::eventFilter(watched, event);
}

bool GridEvents::viewportEvent(QEvent* event) {
    if (event->type() == QEvent::ToolTip)
        return showToolTip(*static_cast<QHelpEvent*>(event));
    return QTableView::viewportEvent(event);
}

bool GridEvents::showToolTip(const QHelpEvent& event) {
    const QModelIndex index = indexAt(event.pos());
    const bool cut = index.isValid() && sizeHintForIndex(index).width() > visualRect(index).width();
    if (!cut) {
        QToolTip::hideText();
        return true;
    }
    // As HTML, because tool tips take for HTML whatever looks like it.
    QToolTip::showText(event.globalPos(),
                       Qt::convertFromPlainText(index.data().toString(), Qt::WhiteSpaceNormal),
                       viewport(), visualRect(index));
    return true;
}

void GridEvents::changeEvent(QEvent* event) {
    QTableView::changeEvent(event);
    if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange)
        fitFont();
}

// The largest font, not above the application's, in which the 23 characters of an origin time
// stand whole in their column. Row heights follow it.
void GridEvents::fitFont() {
    QFont candidate = QApplication::font(this);
    int pixels = QFontInfo(candidate).pixelSize();
    const int margins = 2 * (style()->pixelMetric(QStyle::PM_FocusFrameHMargin, nullptr, this) + 1);
    const int room = columnWidth(utcColumn) - margins - 1; // 1: the grid line
    const QString widest = QStringLiteral("0000-00-00 00:00:00.000");
    do {
        candidate.setPixelSize(pixels);
    } while (std::ceil(QFontMetricsF(candidate).horizontalAdvance(widest)) > room &&
             --pixels >= smallestFontPixels);
    if (candidate != font())
        setFont(candidate);
    verticalHeader()->setMinimumSectionSize(1);
    verticalHeader()->setDefaultSectionSize(QFontMetrics(candidate).height() + rowPadding);
}

} // namespace tremor
