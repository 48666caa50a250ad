#include "setup/frm_setup.h"

#include "core/qt_text.h"

#include <QtWidgets/QCheckBox>
#include <QtWidgets/QDialogButtonBox>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QRadioButton>
#include <QtWidgets/QTabWidget>
#include <QtWidgets/QVBoxLayout>

namespace tremor {
namespace {

void setText(QLineEdit* box, std::string_view text) {
    box->setText(fromBytes(text));
    box->setCursorPosition(0); // a long path shows its beginning
}

std::string text(const QLineEdit* box) {
    return toBytes(box->text());
}

// Puts what the operator has chosen into a box; a cancelled choice changes nothing.
void putChosen(QLineEdit* box, const std::optional<std::string>& chosen) {
    if (chosen)
        setText(box, *chosen);
}

} // namespace

FrmSetup::FrmSetup(SetupForm& form, QWidget* owner) : QDialog(owner), form_(form) {
    setObjectName(QStringLiteral("FrmSetup"));
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowTitle(tr("Setup"));
    auto* pages = new QTabWidget(this);
    pages->setObjectName(QStringLiteral("pages"));
    pages->addTab(makeSourcesPage(controls_), tr("Polling sources"));
    pages->addTab(makeMapPage(controls_), tr("Map details"));
    pages->addTab(makeAlertPage(controls_), tr("Alert"));
    pages->addTab(makeMiscellaneousPage(controls_), tr("Miscellaneous"));
    auto* buttons = new QDialogButtonBox(this);
    CmdOk = buttons->addButton(QDialogButtonBox::Ok);
    CmdOk->setObjectName(QStringLiteral("CmdOk"));
    auto* CmdCancel = buttons->addButton(QDialogButtonBox::Cancel);
    CmdCancel->setObjectName(QStringLiteral("CmdCancel"));
    CmdCancel->setText(tr("Cancel"));
    for (QPushButton* button : {CmdOk, CmdCancel})
        button->setIcon({}); // as in the program's other windows
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(pages);
    layout->addWidget(buttons);
    for (QPushButton* button : findChildren<QPushButton*>())
        button->setAutoDefault(button == CmdOk);
    CmdOk->setDefault(true);

    fill(form_.Form_Load());
    connectSources();
    connectHours();
    connectMap();
    connectAlerts();
    connectOthers();
    connect(CmdOk, &QPushButton::clicked, this, [this] { form_.CmdOk_Click(values()); });
    connect(CmdCancel, &QPushButton::clicked, this, &QDialog::reject);
}

void FrmSetup::fill(const SetupValues& v) {
    SetupControls& c = controls_;
    c.ChkUseLocalSource->setChecked(v.useLocalSource);
    (v.seisComp ? c.opt_seiscomp : c.opt_liveloc)->setChecked(true);
    c.ChkUsePrimaryRemoteSource->setChecked(v.usePrimarySource);
    (v.ingv ? c.opt_Ingv : c.opt_Iside)->setChecked(true);
    c.TxtPrimarySourceUsername->setDisabled(v.ingv);
    c.TxtPrimarySourcePassword->setDisabled(v.ingv);
    c.ChkUseAlternateRemoteSource->setChecked(v.useAlternateSource);
    c.alternateArea->setEnabled(v.useAlternateSource);
    (v.usgs ? c.opt_USGS : c.opt_EMSC)->setChecked(true);
    (v.priorityEvents == 1   ? c.optPr
     : v.priorityEvents == 2 ? c.optAl
                             : c.optAll)
        ->setChecked(true);
    c.chk_auto_PIN->setChecked(v.automaticPins);
    c.chk_user_PIN->setChecked(!v.automaticPins);
    enablePins(v.automaticPins);
    c.chkEnableNotificationTelegram->setChecked(v.telegram);
    c.chkEnableNotificationPagerlink->setChecked(v.pagerlink);
    c.chkEnableNotificationEmail->setChecked(v.email);

    setText(c.TxtLocalSourcePath, v.localSourcePath);
    setText(c.TxtLocalPollEvery, v.localPollEvery);
    setText(c.TxtPrimaryDataSource, v.primaryDataSource);
    setText(c.TxtPrimarySourceUsername, v.primaryUsername);
    setText(c.TxtPrimarySourcePassword, v.primaryPassword);
    setText(c.TxtPrimaryPollEvery, v.primaryPollEvery);
    setText(c.TxtPrimaryLastNHours, v.primaryLastNHours);
    setText(c.TxtAlternateDataSource, v.alternateDataSource);
    setText(c.TxtAlternateSourceUsername, v.alternateUsername);
    setText(c.TxtAlternateSourcePassword, v.alternatePassword);
    setText(c.TxtAlternatePollEvery, v.alternatePollEvery);
    setText(c.TxtAlternateLastNHours, v.alternateLastNHours);
    setText(c.TxtRefreshMapHours, v.rangeHours);
    setText(c.TxtPathPins, v.pathPins);
    setText(c.TxtAnimatedGif, v.animatedGif);
    setText(c.txt_sizeSizePins, v.pinScale);
    setText(c.TxtDefaultZoomLevel, v.defaultZoom);
    setText(c.TxtLastEventMapZoomLevel, v.lastEventZoom);
    setText(c.txtPathDbOfStationKit, v.pathDbStationKit);
    for (std::size_t level = 0; level < c.TxtMagLev.size(); ++level) {
        setText(c.TxtMagLev[level], v.magLevel[level]);
        setText(c.TxtMagLevSound[level], v.magLevelSound[level]);
    }
}

SetupValues FrmSetup::values() const {
    const SetupControls& c = controls_;
    SetupValues v{.useLocalSource = c.ChkUseLocalSource->isChecked(),
                  .seisComp = c.opt_seiscomp->isChecked(),
                  .localSourcePath = text(c.TxtLocalSourcePath),
                  .localPollEvery = text(c.TxtLocalPollEvery),
                  .usePrimarySource = c.ChkUsePrimaryRemoteSource->isChecked(),
                  .ingv = c.opt_Ingv->isChecked(),
                  .primaryDataSource = text(c.TxtPrimaryDataSource),
                  .primaryUsername = text(c.TxtPrimarySourceUsername),
                  .primaryPassword = text(c.TxtPrimarySourcePassword),
                  .primaryPollEvery = text(c.TxtPrimaryPollEvery),
                  .primaryLastNHours = text(c.TxtPrimaryLastNHours),
                  .useAlternateSource = c.ChkUseAlternateRemoteSource->isChecked(),
                  .usgs = c.opt_USGS->isChecked(),
                  .alternateDataSource = text(c.TxtAlternateDataSource),
                  .alternateUsername = text(c.TxtAlternateSourceUsername),
                  .alternatePassword = text(c.TxtAlternateSourcePassword),
                  .alternatePollEvery = text(c.TxtAlternatePollEvery),
                  .alternateLastNHours = text(c.TxtAlternateLastNHours),
                  .rangeHours = text(c.TxtRefreshMapHours),
                  .automaticPins = c.chk_auto_PIN->isChecked(),
                  .pathPins = text(c.TxtPathPins),
                  .animatedGif = text(c.TxtAnimatedGif),
                  .pinScale = text(c.txt_sizeSizePins),
                  .defaultZoom = text(c.TxtDefaultZoomLevel),
                  .lastEventZoom = text(c.TxtLastEventMapZoomLevel),
                  .pathDbStationKit = text(c.txtPathDbOfStationKit),
                  .telegram = c.chkEnableNotificationTelegram->isChecked(),
                  .pagerlink = c.chkEnableNotificationPagerlink->isChecked(),
                  .email = c.chkEnableNotificationEmail->isChecked()};
    for (std::size_t level = 0; level < v.magLevel.size(); ++level) {
        v.magLevel[level] = text(c.TxtMagLev[level]);
        v.magLevelSound[level] = text(c.TxtMagLevSound[level]);
    }
    return v;
}

void FrmSetup::connectSources() {
    SetupControls& c = controls_;
    connect(c.opt_Ingv, &QRadioButton::clicked, this, [this] {
        setText(controls_.TxtPrimaryDataSource, form_.opt_Ingv_Click());
        controls_.TxtPrimarySourceUsername->setEnabled(false);
        controls_.TxtPrimarySourcePassword->setEnabled(false);
    });
    connect(c.opt_Iside, &QRadioButton::clicked, this, [this] {
        setText(controls_.TxtPrimaryDataSource, form_.opt_Iside_Click());
        controls_.TxtPrimarySourceUsername->setEnabled(true);
        controls_.TxtPrimarySourcePassword->setEnabled(true);
    });
    connect(c.opt_EMSC, &QRadioButton::clicked, this,
            [this] { setText(controls_.TxtAlternateDataSource, form_.opt_EMSC_Click()); });
    connect(c.opt_USGS, &QRadioButton::clicked, this,
            [this] { setText(controls_.TxtAlternateDataSource, form_.opt_USGS_Click()); });
    connect(c.ChkUseAlternateRemoteSource, &QCheckBox::clicked, c.alternateArea,
            &QWidget::setEnabled);
    connect(c.optPr, &QRadioButton::clicked, this, [this] { form_.setPriorityEvents(1); });
    connect(c.optAl, &QRadioButton::clicked, this, [this] { form_.setPriorityEvents(2); });
    connect(c.optAll, &QRadioButton::clicked, this, [this] { form_.setPriorityEvents(3); });
    connect(c.cmdPathSeismoscompServer, &QPushButton::clicked, this, [this] {
        putChosen(controls_.TxtLocalSourcePath,
                  form_.browseLocalSource(controls_.opt_seiscomp->isChecked()));
    });
}

void FrmSetup::connectHours() {
    for (QLineEdit* box : {controls_.TxtPrimaryLastNHours, controls_.TxtAlternateLastNHours})
        connect(box, &QLineEdit::textChanged, this, [this, box](const QString& typed) {
            if (const auto corrected = form_.correctedHours(toBytes(typed)))
                setText(box, *corrected);
        });
}

void FrmSetup::connectMap() {
    SetupControls& c = controls_;
    const auto chooses = [this](QCheckBox* box, QCheckBox* other, bool automatic) {
        connect(box, &QCheckBox::clicked, this, [this, other, automatic](bool set) {
            if (!set)
                return;
            other->setChecked(false);
            enablePins(automatic);
            form_.setAutomaticPins(automatic);
        });
    };
    chooses(c.chk_auto_PIN, c.chk_user_PIN, true);
    chooses(c.chk_user_PIN, c.chk_auto_PIN, false);
    connect(c.txt_sizeSizePins, &QLineEdit::textChanged, this,
            [this](const QString& typed) { form_.txt_sizeSizePins_Change(toBytes(typed)); });
    connect(c.cmd_pinPath, &QPushButton::clicked, this,
            [this] { putChosen(controls_.TxtPathPins, form_.browsePins()); });
    connect(c.cmdBrowseGif, &QPushButton::clicked, this,
            [this] { putChosen(controls_.TxtAnimatedGif, form_.browseGif()); });
    connect(c.cmdBrowseDBStationKit, &QPushButton::clicked, this,
            [this] { putChosen(controls_.txtPathDbOfStationKit, form_.browseStationKit()); });
}

void FrmSetup::enablePins(bool automatic) {
    controls_.TxtPathPins->setEnabled(!automatic);
    controls_.TxtAnimatedGif->setEnabled(true);
    controls_.txt_sizeSizePins->setEnabled(automatic);
}

void FrmSetup::connectAlerts() {
    for (std::size_t level = 0; level < controls_.CmdTest.size(); ++level) {
        QLineEdit* path = controls_.TxtMagLevSound[level];
        connect(controls_.cmdBrowseSound[level], &QPushButton::clicked, this,
                [this, path] { putChosen(path, form_.browseSound()); });
        connect(controls_.CmdTest[level], &QPushButton::clicked, this,
                [this, path] { Q_EMIT playSound(path->text()); });
    }
}

void FrmSetup::connectOthers() {
    SetupControls& c = controls_;
    connect(c.cmdNotTelegram, &QPushButton::clicked, this, &FrmSetup::telegramSettings);
    connect(c.cmdNotPagr, &QPushButton::clicked, this, &FrmSetup::pagerlinkSettings);
    connect(c.cmdNotEmail, &QPushButton::clicked, this, &FrmSetup::emailSettings);
    connect(c.cmd_UpdateGeo, &QPushButton::clicked, this, &FrmSetup::geoNames);
    connect(c.cmd_UpdateComuni, &QPushButton::clicked, this, &FrmSetup::pointsOfInterest);
}

} // namespace tremor
