#include "core/panel_setup.h"

#include "core/panel_components.h"
#include "core/panel_widgets.h"
#include "core/qt_text.h"
#include "core/raised_window.h"
#include "setup/frm_loading.h"
#include "setup/frm_setup.h"

#include <QtWidgets/QGroupBox>

namespace tremor {

PanelSetup::PanelSetup(PanelWidgets& widgets, PanelComponents& components)
    : widgets_(widgets),
      components_(components),
      form_(components.settings, components.environment.session, components.environment.hosts,
            components.environment.locale, components.environment.errors,
            components.environment.prompts, *this) {}

PanelSetup::~PanelSetup() = default;

// A disabled window disables its children as well, so that it is disabled before they are made.
void PanelSetup::Setup_Click() {
    const ProcedureTrace trace(components_.environment.errors, "Form - panel", "Setup_Click");
    QWidget* panel = widgets_.FrmWorkspace->window();
    panel->setEnabled(false);
    if (showOrRaise(window_, [&] { return new FrmSetup(form_, panel); }))
        connectForm();
}

void PanelSetup::connectForm() {
    QWidget* panel = widgets_.FrmWorkspace->window();
    QObject::connect(window_, &QDialog::finished, panel, [panel] { panel->setEnabled(true); });
    QObject::connect(window_, &FrmSetup::playSound, window_, [this](const QString& path) {
        components_.environment.sound.play(toBytes(path));
    });
    const auto opens = [this](void (FrmSetup::*wish)(), auto show) {
        QObject::connect(window_, wish, window_, show);
    };
    PanelAlerts& alerts = components_.alerts;
    opens(&FrmSetup::telegramSettings, [this, &alerts] { alerts.showTelegramSettings(window_); });
    opens(&FrmSetup::pagerlinkSettings, [this, &alerts] { alerts.showPagerlinkSettings(window_); });
    opens(&FrmSetup::emailSettings, [this, &alerts] { alerts.showEmailSettings(window_); });
    opens(&FrmSetup::pointsOfInterest,
          [this] { components_.manage.showPointsOfInterest(window_); });
    opens(&FrmSetup::geoNames, [this] { components_.manage.showGeoNames(window_); });
}

void PanelSetup::showProgress(int percent, std::string_view text) {
    if (!frmLoading_)
        frmLoading_ = new FrmLoading(window_);
    frmLoading_->updateProgress(percent, text);
}

void PanelSetup::setPinPath(std::string_view path) {
    components_.map.mainBrowser().setAttribute("markers", "urlpin", path);
}

void PanelSetup::hideProgress() {
    delete frmLoading_;
}

void PanelSetup::unloadForm() {
    if (window_)
        window_->close();
}

void PanelSetup::WriteSettings() {
    components_.settingsUtilities.WriteSettings();
}

void PanelSetup::gotoWRK() {
    components_.workspaces.workspaces().gotoWRK();
}

} // namespace tremor
