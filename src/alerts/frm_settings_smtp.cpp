#include "alerts/frm_settings_smtp.h"

#include "core/foot_row.h"
#include "core/named_widget.h"
#include "core/qt_text.h"

#include <QtGui/QKeyEvent>
#include <QtWidgets/QCheckBox>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QFormLayout>
#include <QtWidgets/QGroupBox>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QVBoxLayout>

namespace tremor {

namespace {

constexpr int highestMagnitude = 8;

template <class Widget>
Widget* control(const QWidget& window, const char* name) {
    return window.findChild<Widget*>(QLatin1String(name));
}

QLineEdit* addTextBox(QFormLayout* rows, const QString& label, const char* name) {
    auto* box = named<QLineEdit>(name);
    rows->addRow(label, box);
    return box;
}

QPushButton* button(const QString& text, const char* name) {
    auto* made = named<QPushButton>(name, text);
    made->setAutoDefault(true); // Enter presses it while it has the focus
    return made;
}

} // namespace

frmSettingsSMTP::frmSettingsSMTP(AppSettings& settings, const NumberLocale& locale,
                                 ErrorReport& errors, QWidget* owner)
    : QWidget(owner, Qt::Dialog), settings_(settings), locale_(locale), errors_(errors) {
    setObjectName(QStringLiteral("frmSettingsSMTP"));
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowTitle(tr("Settings SMTP"));
    layOut();
    fill(settingsToForm(settings_));
}

void frmSettingsSMTP::layOut() {
    auto* CmdOk = button(tr("&OK"), "CmdOk");
    auto* CmdCancel = button(tr("&Cancel"), "CmdCancel");
    connect(CmdOk, &QPushButton::clicked, this, &frmSettingsSMTP::CmdOk_Click);
    connect(CmdCancel, &QPushButton::clicked, this, &QWidget::close);

    auto* all = new QVBoxLayout(this);
    all->setContentsMargins(16, 16, 16, 12);
    all->setSpacing(12);
    all->addWidget(serverFrame());
    all->addWidget(headerFrame());
    all->addWidget(magnitudeFrame());
    all->addStretch(1);
    all->addLayout(footRow({CmdOk, CmdCancel}));
    resize(460, sizeHint().height());
}

QWidget* frmSettingsSMTP::serverFrame() {
    auto* Frame1 = named<QGroupBox>("Frame1", tr("SMTP"));
    auto* rows = new QFormLayout(Frame1);
    addTextBox(rows, tr("&Server"), "txtServer");
    addTextBox(rows, tr("&Username"), "txtUsername");
    addTextBox(rows, tr("&Password"), "txtPassword")->setEchoMode(QLineEdit::Password);
    auto* port = addTextBox(rows, tr("Por&t"), "txtPort");
    port->setMaximumWidth(port->fontMetrics().averageCharWidth() * 16);
    auto* chkSSL = named<QCheckBox>("chkSSL", tr("&Req. SSL"));
    chkSSL->setToolTip(tr("The connection is always encrypted, whatever stands here."));
    rows->addRow(QString(), chkSSL);
    return Frame1;
}

QWidget* frmSettingsSMTP::headerFrame() {
    auto* Frame2 = named<QGroupBox>("Frame2", tr("Header  Email"));
    auto* rows = new QFormLayout(Frame2);
    addTextBox(rows, tr("From &Name"), "txtFromName");
    addTextBox(rows, tr("From &Email"), "txtFromEmail");
    addTextBox(rows, tr("To"), "txtTo")->setToolTip(tr("A list of addresses, separated by commas"));
    return Frame2;
}

QWidget* frmSettingsSMTP::magnitudeFrame() {
    auto* Frame3 = named<QGroupBox>("Frame3", tr("E-Mail "));
    auto* rows = new QFormLayout(Frame3);
    auto* cmbMagnitude = named<QComboBox>("cmbMagnitude");
    for (int magnitude = 0; magnitude <= highestMagnitude; ++magnitude)
        cmbMagnitude->addItem(QString::number(magnitude), magnitude);
    cmbMagnitude->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    rows->addRow(tr("Send E-mail if Eartquake is over "), cmbMagnitude);
    return Frame3;
}

void frmSettingsSMTP::fill(const SmtpForm& form) {
    const auto setText = [this](const char* name, const std::string& text) {
        control<QLineEdit>(*this, name)->setText(fromBytes(text));
    };
    setText("txtServer", form.server);
    setText("txtUsername", form.username);
    setText("txtPassword", form.password);
    setText("txtPort", form.port);
    control<QCheckBox>(*this, "chkSSL")->setChecked(form.reqSsl);
    setText("txtFromName", form.fromName);
    setText("txtFromEmail", form.fromEmail);
    setText("txtTo", form.to);
    // A threshold written by hand into settings.ini keeps its place in the list.
    auto* cmbMagnitude = control<QComboBox>(*this, "cmbMagnitude");
    if (cmbMagnitude->findData(form.magnitude) < 0)
        cmbMagnitude->addItem(QString::number(form.magnitude), form.magnitude);
    cmbMagnitude->setCurrentIndex(cmbMagnitude->findData(form.magnitude));
}

SmtpForm frmSettingsSMTP::form() const {
    const auto text = [this](const char* name) {
        return toBytes(control<QLineEdit>(*this, name)->text());
    };
    SmtpForm form;
    form.server = text("txtServer");
    form.username = text("txtUsername");
    form.password = text("txtPassword");
    form.port = text("txtPort");
    form.reqSsl = control<QCheckBox>(*this, "chkSSL")->isChecked();
    form.fromName = text("txtFromName");
    form.fromEmail = text("txtFromEmail");
    form.to = text("txtTo");
    form.magnitude = control<QComboBox>(*this, "cmbMagnitude")->currentData().toInt();
    return form;
}

void frmSettingsSMTP::CmdOk_Click() {
    formToSettings(form(), settings_, locale_, errors_);
    close();
}

void frmSettingsSMTP::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape)
        close();
    else
        QWidget::keyPressEvent(event);
}

} // namespace tremor
