#pragma once

#include <QtWidgets/QWidget>

#include <string_view>

class QLabel;
class QProgressBar;

namespace tremor {

// The small window "Loading": a text and a bar for work that takes a moment. It stands over its
// owner and cannot be closed by the operator.
//
// Object names: frmLoading, lblLoading, prgLoading.
class FrmLoading : public QWidget {
    Q_OBJECT

  public:
    explicit FrmLoading(QWidget* owner);

    // Shows the window, with this text (UTF-8) and 0 to 100 percent, painted before it returns.
    void updateProgress(int percent, std::string_view text);

  protected:
    void closeEvent(QCloseEvent* event) override;

  private:
    QLabel* text_;
    QProgressBar* bar_;
};

} // namespace tremor
