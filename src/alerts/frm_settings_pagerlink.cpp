#include "alerts/frm_settings_pagerlink.h"

#include "alerts/outcome_label.h"
#include "core/conversions.h"
#include "core/foot_row.h"
#include "core/named_widget.h"
#include "core/qt_text.h"
#include "core/tick_delegate.h"

#include <QtCore/QPointer>
#include <QtCore/QTimer>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QFormLayout>
#include <QtWidgets/QGroupBox>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QHeaderView>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QRadioButton>
#include <QtWidgets/QTableWidget>
#include <QtWidgets/QVBoxLayout>

#include <cstddef>
#include <initializer_list>
#include <utility>

namespace tremor {

namespace {

constexpr std::string_view module = "Form - frmSettingsPagerlink";

constexpr int nameColumn = 1;
constexpr int tickColumn = 2;

// By how much the window grows for the grid, and the height from which it may shrink again.
constexpr std::int32_t gridTwips = 2100;
constexpr std::int32_t enlargedTwips = 6090;

QPushButton* makeButton(const char* objectName, const QString& text) {
    auto* button = named<QPushButton>(objectName, text);
    button->setAutoDefault(false);
    return button;
}

QTableWidget* makeGrid() {
    auto* grid = named<QTableWidget>("gridUsers", 0, 3);
    grid->setAccessibleName(frmSettingsPagerlink::tr("Users"));
    grid->setHorizontalHeaderLabels(
        {QString(), frmSettingsPagerlink::tr("Users"), frmSettingsPagerlink::tr("Selected")});
    grid->horizontalHeaderItem(nameColumn)->setTextAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    grid->horizontalHeaderItem(tickColumn)->setTextAlignment(Qt::AlignCenter);
    grid->horizontalHeader()->setSectionResizeMode(nameColumn, QHeaderView::Stretch);
    grid->horizontalHeader()->setHighlightSections(false);
    grid->setColumnHidden(0, true);
    grid->verticalHeader()->hide();
    grid->verticalHeader()->setDefaultSectionSize(grid->fontMetrics().height() + 8);
    grid->setEditTriggers(QAbstractItemView::NoEditTriggers);
    grid->setSelectionMode(QAbstractItemView::SingleSelection);
    grid->setTabKeyNavigation(false);
    grid->setItemDelegateForColumn(tickColumn, new TickDelegate(grid));
    grid->hide();
    return grid;
}

} // namespace

frmSettingsPagerlink::frmSettingsPagerlink(const PagerlinkWindowContext& context,
                                           std::unique_ptr<DatagramSocket> winsock, QWidget* owner)
    : QWidget(owner, Qt::Dialog),
      context_(context),
      server_(std::make_shared<PagerlinkSettings>(std::move(winsock), context.prompts,
                                                  context.clock, context.session)) {
    setObjectName(QStringLiteral("frmSettingsPagerlink"));
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowTitle(tr("Settings Pagerlink"));

    CmdOk = makeButton("CmdOk", tr("&OK"));
    CmdCancel = makeButton("CmdCancel", tr("&Cancel"));
    auto* all = new QVBoxLayout(this);
    all->setContentsMargins(16, 16, 16, 12);
    all->setSpacing(12);
    all->addWidget(makeServerFrame());
    all->addWidget(makeMessageFrame(), 1);
    all->addLayout(footRow({CmdOk, CmdCancel}));
    connectControls();
    showSettings();
    resize(400, sizeHint().height());
}

frmSettingsPagerlink::~frmSettingsPagerlink() {
    server_->abandon();
}

QGroupBox* frmSettingsPagerlink::makeServerFrame() {
    auto* frame = named<QGroupBox>("Frame1", tr("Settings Pagerlink Server"));
    txtPglServer = named<QLineEdit>("txtPglServer");
    txtPglPort = named<QLineEdit>("txtPglPort");
    cmdCheckIfWork = makeButton("cmdCheckIfWork", tr("Check &this settings"));
    labelResult = named<QLabel>("labelResult");
    labelResult->setTextFormat(Qt::PlainText);
    labelResult->setMargin(4);
    QFont bold = labelResult->font();
    bold.setBold(true);
    labelResult->setFont(bold);

    auto* layout = new QFormLayout(frame);
    layout->addRow(tr("&Server"), txtPglServer);
    layout->addRow(tr("Remote &Port"), txtPglPort);
    auto* test = new QHBoxLayout;
    test->setSpacing(12);
    test->addWidget(cmdCheckIfWork);
    test->addWidget(labelResult);
    test->addStretch(1);
    layout->addRow(QString(), test);
    return frame;
}

QGroupBox* frmSettingsPagerlink::makeMessageFrame() {
    auto* frame = named<QGroupBox>("Frame2", tr("Setting the Message will be sent."));
    optBroadcast = named<QRadioButton>("optBroadcast", tr("Send to &all users of Pagerlink."));
    optSelectedUser = named<QRadioButton>("optSelectedUser", tr("Send to a se&lection of users."));
    cmbMagnitude = named<QComboBox>("cmbMagnitude");
    gridUsers = makeGrid();

    auto* magnitude = new QHBoxLayout;
    auto* caption = new QLabel(tr("Send if &Magnitude is over"));
    caption->setBuddy(cmbMagnitude);
    magnitude->addWidget(caption);
    magnitude->addWidget(cmbMagnitude);
    magnitude->addStretch(1);
    auto* layout = new QVBoxLayout(frame);
    layout->addWidget(optBroadcast);
    layout->addWidget(optSelectedUser);
    layout->addLayout(magnitude);
    layout->addWidget(gridUsers, 1);
    layout->addStretch(0);
    return frame;
}

void frmSettingsPagerlink::connectControls() {
    connect(cmdCheckIfWork, &QPushButton::clicked, this,
            &frmSettingsPagerlink::cmdCheckIfWork_Click);
    connect(optBroadcast, &QRadioButton::clicked, this, &frmSettingsPagerlink::optBroadcast_Click);
    connect(optSelectedUser, &QRadioButton::clicked, this, &frmSettingsPagerlink::fillUsersGrid);
    connect(gridUsers, &QTableWidget::cellClicked, this, &frmSettingsPagerlink::gridUsers_Click);
    connect(CmdOk, &QPushButton::clicked, this, &frmSettingsPagerlink::CmdOk_Click);
    connect(CmdCancel, &QPushButton::clicked, this, &QWidget::close);
}

void frmSettingsPagerlink::showSettings() {
    const AppSettings& settings = context_.settings;
    txtPglServer->setText(fromBytes(settings.PGLserver));
    txtPglPort->setText(fromBytes(settings.PGLport));
    (settings.PGLAllOrSelected != 0 ? optSelectedUser : optBroadcast)->setChecked(true);
    for (int magnitude = 0; magnitude <= 8; ++magnitude)
        cmbMagnitude->addItem(QString::number(magnitude));
    const QString stored = QString::number(settings.PGLmagToSend);
    if (cmbMagnitude->findText(stored) < 0)
        cmbMagnitude->addItem(stored); // a value of an edited file is kept
    cmbMagnitude->setCurrentText(stored);
}

void frmSettingsPagerlink::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    if (!started_)
        QTimer::singleShot(0, this, &frmSettingsPagerlink::startSocket);
    started_ = true;
}

void frmSettingsPagerlink::startSocket() {
    ProcedureTrace trace(context_.errors, module, "Form_Load");
    const AppSettings& settings = context_.settings;
    // On a first start there is no port yet.
    if (!settings.PGLport.empty()) {
        const QPointer<frmSettingsPagerlink> alive(this);
        trace.step([&] {
            server_->setServer(settings.PGLserver,
                               pagerlinkPort(settings.PGLport, context_.locale));
        });
        if (alive.isNull())
            return;
    }
    if (optSelectedUser->isChecked())
        fillUsersGrid();
}

void frmSettingsPagerlink::cmdCheckIfWork_Click() {
    ProcedureTrace trace(context_.errors, module, "cmdCheckIfWork_Click");
    const QPointer<frmSettingsPagerlink> alive(this);
    const std::shared_ptr<PagerlinkSettings> server = server_;
    const std::string host = toBytes(txtPglServer->text());
    const std::string port = toBytes(txtPglPort->text());
    PagerlinkSettings::Check check = PagerlinkSettings::Check::Failed;
    const bool portGiven =
        trace.step([&] { server->setServer(host, pagerlinkPort(port, context_.locale)); });
    if (alive.isNull())
        return;
    if (portGiven) {
        setWaiting(true);
        check = server->checkIfWork([this](std::int32_t turn) {
            showTestProgress(*labelResult, tr("Wait...") + QString::number(turn));
        });
        if (alive.isNull())
            return;
        setWaiting(false);
    }
    const bool works = check == PagerlinkSettings::Check::Works;
    showOutcome(*labelResult, works ? tr("OK") : tr("NO"), works);
}

void frmSettingsPagerlink::setWaiting(bool waiting) {
    const std::initializer_list<QWidget*> starters{cmdCheckIfWork, optBroadcast, optSelectedUser};
    if (waiting)
        focusBefore_ = focusWidget();
    const bool focusStayed = focusWidget() == focusMeanwhile_;
    for (QWidget* control : starters)
        control->setEnabled(!waiting);
    if (waiting) {
        focusMeanwhile_ = focusWidget(); // a control that is disabled gives it away
        setCursor(Qt::BusyCursor);
    } else {
        unsetCursor();
        if (focusStayed && !focusBefore_.isNull())
            focusBefore_->setFocus();
    }
}

void frmSettingsPagerlink::fillUsersGrid() {
    const QPointer<frmSettingsPagerlink> alive(this);
    const std::shared_ptr<PagerlinkSettings> server = server_;
    setWaiting(true);
    const bool replied = server->fillUsers(context_.settings.PGLselectedUsers);
    if (alive.isNull())
        return;
    setWaiting(false);
    if (replied)
        showUsers();
}

void frmSettingsPagerlink::showUsers() {
    if (gridUsers->isHidden()) {
        const int enlarged = height() + twipsToPixels(gridTwips, logicalDpiY());
        gridUsers->show(); // may enlarge the window by itself
        resize(width(), enlarged);
    }
    const std::vector<PagerlinkUser>& users = server_->users();
    gridUsers->setRowCount(static_cast<int>(users.size()));
    for (int row = 0; row < gridUsers->rowCount(); ++row) {
        gridUsers->setItem(
            row, nameColumn,
            new QTableWidgetItem(fromBytes(users[static_cast<std::size_t>(row)].name)));
        gridUsers->setItem(row, tickColumn, new QTableWidgetItem);
        showTick(row);
    }
}

void frmSettingsPagerlink::showTick(int row) {
    const bool ticked = server_->users()[static_cast<std::size_t>(row)].ticked;
    QTableWidgetItem* cell = gridUsers->item(row, tickColumn);
    cell->setText(TickDelegate::mark(ticked));
    cell->setData(Qt::AccessibleTextRole, ticked ? tr("selected") : tr("not selected"));
}

void frmSettingsPagerlink::gridUsers_Click(int row, int column) {
    if (column != tickColumn)
        return;
    server_->toggle(static_cast<std::size_t>(row));
    showTick(row);
}

void frmSettingsPagerlink::optBroadcast_Click() {
    if (gridUsers->isHidden())
        return;
    gridUsers->hide();
    if (pixelsToTwips(height(), logicalDpiY()) < enlargedTwips)
        return;
    gridUsers->parentWidget()->layout()->activate();
    layout()->activate(); // the least height without the grid
    resize(width(), height() - twipsToPixels(gridTwips, logicalDpiY()));
}

void frmSettingsPagerlink::CmdOk_Click() {
    AppSettings& settings = context_.settings;
    settings.PGLserver = toBytes(txtPglServer->text());
    settings.PGLport = toBytes(txtPglPort->text());
    settings.PGLAllOrSelected = optBroadcast->isChecked() ? 0 : 1;
    settings.PGLmagToSend = textToLong(toBytes(cmbMagnitude->currentText()), context_.locale);
    settings.PGLselectedUsers = server_->selection();
    close();
}

} // namespace tremor
