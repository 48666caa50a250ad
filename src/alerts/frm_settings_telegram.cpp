#include "alerts/frm_settings_telegram.h"

#include "alerts/outcome_label.h"
#include "alerts/telegram_bot.h"
#include "core/foot_row.h"
#include "core/named_widget.h"
#include "core/qt_text.h"

#include <QtCore/QPointer>
#include <QtGui/QPainter>
#include <QtWidgets/QGridLayout>
#include <QtWidgets/QGroupBox>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QStyle>
#include <QtWidgets/QVBoxLayout>

namespace tremor {
namespace {

QLabel* plainLabel(const char* objectName, const QString& text = {}) {
    auto* label = named<QLabel>(objectName, text);
    label->setTextFormat(Qt::PlainText);
    return label;
}

// A label of any length in one line: what does not fit ends in dots, and the tool tip has it all.
class ElidedLabel : public QLabel {
  public:
    ElidedLabel() {
        setTextFormat(Qt::PlainText);
        setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
        setMinimumHeight(fontMetrics().height());
    }

  protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        const QRect place = contentsRect();
        style()->drawItemText(
            &painter, place, static_cast<int>(alignment()), palette(), isEnabled(),
            fontMetrics().elidedText(text(), Qt::ElideRight, place.width()), foregroundRole());
    }
};

} // namespace

FrmSettingsTelegram::FrmSettingsTelegram(AppSettings& settings, TelegramBot& bot,
                                         const NumberLocale& locale, const std::string& helpUrl,
                                         QWidget* owner)
    : QDialog(owner), settings_(settings), bot_(bot), locale_(locale) {
    setObjectName(QStringLiteral("frmSettingsTelegram"));
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowTitle(tr("Settings Telegram"));
    auto* all = new QVBoxLayout(this);
    all->setContentsMargins(12, 12, 12, 12);
    all->setSpacing(12);
    all->addWidget(makeBot(helpUrl), 1);
    all->addLayout(makeButtons());
    txtToken->setText(fromBytes(settings_.TelegramToken));
    txtPollBot->setText(QString::number(settings_.TelegramPollEvery));
    resize(560, sizeHint().height());
    txtToken->setFocus();
}

QGroupBox* FrmSettingsTelegram::makeBot(const std::string& helpUrl) {
    auto* frame = named<QGroupBox>("Frame1", tr("Setup a BOT"), this);
    auto* layout = new QVBoxLayout(frame);
    layout->setSpacing(8);
    auto* help = plainLabel("Label1", tr("For setting notifications on Telegram you need to create "
                                         "a Bot and know its Token.\nIf you don't know how to "
                                         "create a Bot, please read the documentation on "));
    help->setWordWrap(true);
    auto* address = named<QLineEdit>("txtUrlTelegram", fromBytes(helpUrl));
    address->setReadOnly(true);
    address->setAccessibleName(tr("Documentation on Bots"));
    auto* caption = plainLabel("Label2", tr("Insert below the &Token generated from BotFather"));
    txtToken = named<QLineEdit>("txtToken");
    txtToken->setEchoMode(QLineEdit::Password);
    caption->setBuddy(txtToken);
    layout->addWidget(help);
    layout->addWidget(address);
    layout->addSpacing(4);
    layout->addWidget(caption);
    layout->addWidget(txtToken);
    layout->addLayout(makeTest());
    layout->addStretch(1);
    layout->addLayout(makePoll());
    return frame;
}

QLayout* FrmSettingsTelegram::makeTest() {
    auto* layout = new QGridLayout;
    layout->setHorizontalSpacing(12);
    layout->setColumnStretch(1, 1);
    cmdTest = named<QPushButton>("cmdTest", tr("Test To&ken"));
    cmdTest->setAutoDefault(false);
    connect(cmdTest, &QPushButton::clicked, this, &FrmSettingsTelegram::cmdTest_Click);
    lblTestToken = plainLabel("lblTestToken");
    QFont bold = lblTestToken->font();
    bold.setBold(true);
    lblTestToken->setFont(bold);
    lblInfoName = plainLabel("lblInfoName");
    lblInfoName->setMinimumHeight(2 * fontMetrics().lineSpacing()); // the window keeps its size
    lblNameBot = new ElidedLabel;
    lblNameBot->setObjectName(QStringLiteral("lblNameBot"));
    lblNameBot->setFont(bold);
    layout->addWidget(cmdTest, 0, 0);
    lblTestToken->setMargin(4);
    layout->addWidget(lblTestToken, 0, 1, Qt::AlignLeft | Qt::AlignVCenter);
    layout->addWidget(lblInfoName, 1, 0, 1, 2);
    layout->addWidget(lblNameBot, 2, 0, 1, 2);
    return layout;
}

QLayout* FrmSettingsTelegram::makePoll() {
    auto* layout = new QHBoxLayout;
    auto* caption = new QLabel(tr("&Poll every"));
    txtPollBot = named<QLineEdit>("txtPollBot");
    txtPollBot->setMaximumWidth(8 * fontMetrics().horizontalAdvance(QLatin1Char('0')));
    txtPollBot->setAccessibleName(tr("Poll every, in minutes"));
    caption->setBuddy(txtPollBot);
    layout->addWidget(caption);
    layout->addWidget(txtPollBot);
    layout->addWidget(new QLabel(tr("minutes.")));
    layout->addStretch(1);
    return layout;
}

QLayout* FrmSettingsTelegram::makeButtons() {
    auto* ok = named<QPushButton>("CmdOk", tr("&OK"));
    ok->setDefault(true);
    connect(ok, &QPushButton::clicked, this, &FrmSettingsTelegram::CmdOk_Click);
    auto* cancel = named<QPushButton>("CmdCancel", tr("&Cancel"));
    cancel->setAutoDefault(false);
    connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
    return footRow({ok, cancel});
}

// The test lets window messages run, so that the window may be gone behind it.
void FrmSettingsTelegram::cmdTest_Click() {
    const QPointer<FrmSettingsTelegram> alive(this);
    const bool hadFocus = cmdTest->hasFocus(); // a disabled button loses it
    cmdTest->setEnabled(false);
    lblInfoName->clear();
    lblNameBot->clear();
    showTestProgress(*lblTestToken, tr("Testing…"));
    std::string botName;
    const bool works = bot_.testToken(toBytes(txtToken->text()), botName) == 0;
    if (alive.isNull())
        return;
    showResult(works, botName);
    cmdTest->setEnabled(true);
    if (hadFocus)
        cmdTest->setFocus();
}

void FrmSettingsTelegram::showResult(bool works, const std::string& botName) {
    showOutcome(*lblTestToken, works ? tr("Ok") : tr("Failed"), works);
    lblInfoName->setText(works ? tr("Name of BOT\nshare it for add new followers.") : QString());
    const QString name = works ? fromBytes(botName) : QString();
    lblNameBot->setText(name);
    lblNameBot->setToolTip(name.toHtmlEscaped());
}

void FrmSettingsTelegram::CmdOk_Click() {
    storeTelegramSettings(settings_, toBytes(txtToken->text()), toBytes(txtPollBot->text()),
                          locale_);
    accept();
}

} // namespace tremor
