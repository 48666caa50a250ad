#include "manage/frm_download.h"

#include "core/qt_text.h"
#include "core/tick_delegate.h"

#include <QtCore/QTimer>
#include <QtGui/QCloseEvent>
#include <QtGui/QShortcut>
#include <QtWidgets/QGridLayout>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QHeaderView>
#include <QtWidgets/QLabel>
#include <QtWidgets/QListWidget>
#include <QtWidgets/QProgressBar>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QTableWidget>
#include <QtWidgets/QVBoxLayout>

#include <algorithm>
#include <cstddef>

namespace tremor {

namespace {

QPushButton* makeButton(const char* objectName, const QString& caption) {
    auto* button = new QPushButton(caption);
    button->setObjectName(QLatin1StringView(objectName));
    button->setAutoDefault(false); // Return in the grid must not press one
    return button;
}

} // namespace

frmDownload::frmDownload(GeoNamesImport& import, QWidget* owner) : QDialog(owner), import_(import) {
    setObjectName(QStringLiteral("frmDownload"));
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowTitle(tr("Download POI from GeoNames"));
    setWindowFlag(Qt::WindowMaximizeButtonHint);

    auto* upper = new QHBoxLayout;
    upper->setSpacing(12);
    upper->addWidget(makeGrid(), 1);
    upper->addWidget(makeCommands());
    auto* all = new QVBoxLayout(this);
    all->setContentsMargins(12, 12, 12, 12);
    all->setSpacing(8);
    all->addLayout(upper, 3);
    all->addWidget(makeResults(), 2);
    all->addWidget(makeEndButtons());
    resize(680, 560);

    import_.opened(*this);
    fxgrid->setFocus();
    // Waits for the network, so the window shows first.
    QTimer::singleShot(0, this, [this] { import_.Form_Load(); });
}

frmDownload::~frmDownload() {
    leave();
}

QWidget* frmDownload::makeGrid() {
    fxgrid = new QTableWidget(0, Columns, this);
    fxgrid->setObjectName(QStringLiteral("fxgrid"));
    fxgrid->setAccessibleName(tr("Countries"));
    fxgrid->setHorizontalHeaderLabels({tr("Id"), tr("Name"), tr("Imported"), tr("Select")});
    fxgrid->setEditTriggers(QAbstractItemView::NoEditTriggers);
    fxgrid->setSelectionMode(QAbstractItemView::SingleSelection);
    fxgrid->setAlternatingRowColors(true);
    fxgrid->setWordWrap(false);
    fxgrid->setTabKeyNavigation(false);
    fxgrid->verticalHeader()->hide();
    fxgrid->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    fxgrid->verticalHeader()->setDefaultSectionSize(fxgrid->fontMetrics().height() + 8);
    QHeaderView* header = fxgrid->horizontalHeader();
    header->setHighlightSections(false);
    header->setSectionResizeMode(Name, QHeaderView::Stretch);
    fxgrid->setColumnWidth(Id, 60);
    fxgrid->horizontalHeaderItem(Id)->setTextAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    fxgrid->horizontalHeaderItem(Name)->setTextAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    for (const Column column : {Imported, Select}) {
        fxgrid->setColumnWidth(column, 90);
        fxgrid->setItemDelegateForColumn(column, new TickDelegate(fxgrid));
    }
    connect(fxgrid, &QTableWidget::cellClicked, this, &frmDownload::toggle);
    auto* space = new QShortcut(QKeySequence(Qt::Key_Space), fxgrid);
    space->setContext(Qt::WidgetShortcut);
    connect(space, &QShortcut::activated, this, [this] {
        if (fxgrid->currentRow() >= 0)
            toggle(fxgrid->currentRow(), fxgrid->currentColumn() == Imported ? Imported : Select);
    });
    return fxgrid;
}

QWidget* frmDownload::makeCommands() {
    auto* area = new QWidget(this);
    auto* layout = new QVBoxLayout(area);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(8);
    cmdCheck = makeButton("cmdCheck", tr("Check &POI"));
    cmdDownload = makeButton("cmdDownload", tr("&Download Selected"));
    cmdRemove = makeButton("cmdRemove", tr("&Remove Selected"));
    cmdEmptyPOI = makeButton("cmdEmptyPOI", tr("&Empty all POI"));
    layout->addWidget(cmdCheck);
    layout->addWidget(cmdDownload);
    layout->addSpacing(12);
    layout->addWidget(cmdRemove);
    layout->addWidget(cmdEmptyPOI);
    layout->addStretch(1);
    area->setMinimumWidth(area->sizeHint().width() + 16);
    connect(cmdCheck, &QPushButton::clicked, this, [this] { import_.cmdCheck(); });
    connect(cmdDownload, &QPushButton::clicked, this, [this] { import_.cmdDownload(); });
    connect(cmdRemove, &QPushButton::clicked, this, [this] { import_.cmdRemove(); });
    connect(cmdEmptyPOI, &QPushButton::clicked, this, [this] { import_.cmdEmptyPOI(); });
    return area;
}

QWidget* frmDownload::makeResults() {
    auto* area = new QWidget(this);
    auto* layout = new QGridLayout(area);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(8);
    lstLog = new QListWidget;
    lstLog->setObjectName(QStringLiteral("lstLog"));
    lstLog->setAccessibleName(tr("Messages"));
    lstLog->setWordWrap(true);
    ProgressBar1 = new QProgressBar;
    ProgressBar1->setObjectName(QStringLiteral("ProgressBar1"));
    ProgressBar1->setAccessibleName(tr("Progress"));
    ProgressBar1->setRange(0, 100);
    ProgressBar1->setValue(0);
    ProgressBar1->setTextVisible(false);
    Label1 = new QLabel;
    Label1->setObjectName(QStringLiteral("Label1"));
    Label1->setTextFormat(Qt::PlainText);
    Label1->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    // Room for millions of lines, so that nothing moves while they are counted.
    Label1->setMinimumWidth(fontMetrics().horizontalAdvance(QStringLiteral("00000000 / 00000000")));
    layout->addWidget(lstLog, 0, 0, 1, 2);
    layout->addWidget(ProgressBar1, 1, 0);
    layout->addWidget(Label1, 1, 1);
    layout->setColumnStretch(0, 1);
    return area;
}

QWidget* frmDownload::makeEndButtons() {
    auto* area = new QWidget(this);
    auto* layout = new QHBoxLayout(area);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addStretch(1);
    cmd_ok = makeButton("cmd_ok", tr("&OK"));
    cmd_cancel = makeButton("cmd_cancel", tr("&Cancel"));
    for (QPushButton* button : {cmd_ok, cmd_cancel}) {
        layout->addWidget(button);
        connect(button, &QPushButton::clicked, this, &QWidget::close);
    }
    return area;
}

void frmDownload::toggle(int row, int column) {
    const auto place = static_cast<std::size_t>(row);
    if (column == Imported) {
        import_.toggleImported(place);
        showMark(row, column, import_.rows()[place].imported);
    } else if (column == Select) {
        import_.toggleSelected(place);
        showMark(row, column, import_.rows()[place].selected);
    }
}

void frmDownload::showMark(int row, int column, bool ticked) {
    QTableWidgetItem* cell = fxgrid->item(row, column);
    cell->setText(TickDelegate::mark(ticked));
    cell->setData(Qt::AccessibleTextRole, ticked ? tr("ticked") : tr("not ticked"));
}

void frmDownload::addToLog(std::string_view message) {
    lstLog->addItem(fromBytes(message));
    lstLog->scrollToBottom();
}

void frmDownload::setProgressMaximum(int maximum) {
    ProgressBar1->setRange(0, maximum);
}

void frmDownload::setProgress(int value) {
    ProgressBar1->setValue(value);
}

void frmDownload::setLineText(std::string_view text) {
    Label1->setText(fromBytes(text));
}

void frmDownload::showRows() {
    const std::vector<GeoNamesRow>& rows = import_.rows();
    const int current = fxgrid->currentRow();
    fxgrid->setRowCount(0);
    fxgrid->setRowCount(static_cast<int>(rows.size()));
    for (int row = 0; row < fxgrid->rowCount(); ++row) {
        const GeoNamesRow& shown = rows[static_cast<std::size_t>(row)];
        fxgrid->setItem(row, Id, new QTableWidgetItem(fromBytes(shown.file.Id)));
        fxgrid->setItem(row, Name, new QTableWidgetItem(fromBytes(shown.file.Name)));
        fxgrid->setItem(row, Imported, new QTableWidgetItem);
        fxgrid->setItem(row, Select, new QTableWidgetItem);
        showMark(row, Imported, shown.imported);
        showMark(row, Select, shown.selected);
    }
    if (fxgrid->rowCount() > 0)
        fxgrid->setCurrentCell(std::clamp(current, 0, fxgrid->rowCount() - 1), Select);
}

void frmDownload::showRunning(bool running) {
    for (QPushButton* button : {cmdCheck, cmdDownload, cmdRemove, cmdEmptyPOI})
        button->setEnabled(!running);
}

void frmDownload::reject() {
    import_.escape();
    close();
}

void frmDownload::closeEvent(QCloseEvent* event) {
    leave();
    event->accept(); // QDialog's own handler would take every close for Escape
}

// The import must not speak to a window that has gone, nor wait for it.
void frmDownload::leave() {
    if (!attached_)
        return;
    attached_ = false;
    import_.closed();
}

} // namespace tremor
