#pragma once

#include "setup/setup_form.h"

#include <QtCore/QPointer>

#include <string_view>

class QWidget;

namespace tremor {

class FrmLoading;
class FrmSetup;
struct PanelComponents;
class PanelWidgets;

// The window "Setup" over the main window, which is disabled until it is closed, and what applying
// the settings does to the rest of the program.
class PanelSetup : private SetupSteps {
  public:
    PanelSetup(PanelWidgets& widgets, PanelComponents& components);
    ~PanelSetup() override;

    void Setup_Click();

  private:
    void connectForm();

    // SetupSteps
    void showProgress(int percent, std::string_view text) override;
    void setPinPath(std::string_view path) override;
    void hideProgress() override;
    void unloadForm() override;
    void WriteSettings() override;
    void gotoWRK() override;

    PanelWidgets& widgets_;
    PanelComponents& components_;
    SetupForm form_;
    QPointer<FrmSetup> window_;
    QPointer<FrmLoading> frmLoading_;
};

} // namespace tremor
