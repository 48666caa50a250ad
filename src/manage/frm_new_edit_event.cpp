#include "manage/frm_new_edit_event.h"

#include "core/foot_row.h"
#include "core/qt_text.h"
#include "manage/in_place_grid.h"

#include <QtWidgets/QHeaderView>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QTableWidget>
#include <QtWidgets/QVBoxLayout>

#include <utility>

namespace tremor {
namespace {

constexpr int nameColumn = 0;
constexpr int valueColumn = 1;

} // namespace

// The table of names and values.
class FieldGrid : public InPlaceGrid<QTableWidget> {
  public:
    explicit FieldGrid(QWidget* parent) : InPlaceGrid(0, 2, parent) {
        setHorizontalHeaderLabels({QStringLiteral("Field"), QStringLiteral("Value")});
        horizontalHeader()->setSectionResizeMode(nameColumn, QHeaderView::ResizeToContents);
        horizontalHeader()->setSectionResizeMode(valueColumn, QHeaderView::Stretch);
        horizontalHeader()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
        horizontalHeader()->setHighlightSections(false);
        verticalHeader()->hide();
    }

    // Called with the row whose text was kept, changed or not.
    std::function<void(int row)> kept;

    void addField(const EventField& field) {
        const int row = rowCount();
        insertRow(row);
        auto* name = new QTableWidgetItem(fromBytes(field.name));
        name->setFlags(Qt::ItemIsEnabled);
        name->setBackground(palette().brush(QPalette::AlternateBase));
        setItem(row, nameColumn, name);
        setItem(row, valueColumn, new QTableWidgetItem(fromBytes(field.value)));
    }

  protected:
    void returned() override {
        kept(currentRow());
        if (currentRow() + 1 < rowCount())
            setCurrentCell(currentRow() + 1, valueColumn);
    }
};

FrmNewEditEvent::FrmNewEditEvent(std::shared_ptr<EventEditor> editor, QWidget* owner)
    : QDialog(owner), editor_(std::move(editor)) {
    setObjectName(QStringLiteral("frmNewEditEvent"));
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowTitle(fromBytes(editor_->caption()));

    fxgrid = new FieldGrid(this);
    fxgrid->setObjectName(QStringLiteral("fxgrid"));
    fxgrid->setAccessibleName(tr("Fields of the event"));
    cmdSalva = new QPushButton(tr("&Save"), this);
    cmdSalva->setObjectName(QStringLiteral("cmdSalva"));
    cmd_cancel = new QPushButton(tr("&Cancel"), this);
    cmd_cancel->setObjectName(QStringLiteral("cmd_cancel"));
    for (QPushButton* button : {cmdSalva, cmd_cancel})
        button->setAutoDefault(false); // Return belongs to the grid
    auto* all = new QVBoxLayout(this);
    all->setContentsMargins(12, 12, 12, 12);
    all->setSpacing(12);
    all->addWidget(fxgrid, 1);
    all->addLayout(footRow({cmdSalva, cmd_cancel}));
    resize(400, 340);

    fillGrid();
    connect(cmdSalva, &QPushButton::clicked, this, &FrmNewEditEvent::cmdSalva_Click);
    connect(cmd_cancel, &QPushButton::clicked, this, &FrmNewEditEvent::reject);
}

void FrmNewEditEvent::fillGrid() {
    editor_->Form_Load();
    for (const EventField& field : editor_->fields())
        fxgrid->addField(field);
    fxgrid->kept = [this](int row) {
        if (const QTableWidgetItem* item = fxgrid->item(row, valueColumn))
            editor_->StopEditing(static_cast<std::size_t>(row), toBytes(item->text()));
    };
    connect(fxgrid, &QTableWidget::cellChanged, this, [this](int row) { fxgrid->kept(row); });
    fxgrid->setCurrentCell(0, valueColumn);
    fxgrid->setFocus();
}

void FrmNewEditEvent::cmdSalva_Click() {
    leaveAfter(&EventEditor::cmdSalva_Click);
}

void FrmNewEditEvent::reject() {
    leaveAfter(&EventEditor::uscita);
}

void FrmNewEditEvent::leaveAfter(bool (EventEditor::*question)()) {
    if (asking_)
        return;
    fxgrid->keepOpenEdit();
    const std::shared_ptr<EventEditor> editor = editor_;
    const QPointer<FrmNewEditEvent> alive(this);
    asking_ = true;
    const bool leave = (editor.get()->*question)();
    if (alive.isNull())
        return;
    asking_ = false;
    if (leave)
        QDialog::reject();
}

EventEditingWindow::EventEditingWindow(Database& catalogue, Prompts& prompts, ErrorReport& errors,
                                       QWidget* owner)
    : catalogue_(catalogue), prompts_(prompts), errors_(errors), owner_(owner) {}

void EventEditingWindow::addEvent(std::function<void()> whenClosed) {
    open(std::nullopt, std::move(whenClosed));
}

void EventEditingWindow::editEvent(std::string_view utc, std::function<void()> whenClosed) {
    open(std::string(utc), std::move(whenClosed));
}

void EventEditingWindow::open(std::optional<std::string> utc, std::function<void()> whenClosed) {
    if (window_.isNull()) {
        window_ = new FrmNewEditEvent(
            std::make_shared<EventEditor>(catalogue_, prompts_, errors_, std::move(utc)), owner_);
        QObject::connect(window_, &QDialog::finished, window_, std::move(whenClosed));
    }
    window_->show();
    window_->raise();
    window_->activateWindow();
}

} // namespace tremor
