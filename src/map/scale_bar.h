#pragma once

#include <QtWidgets/QFrame>

namespace tremor {

// The scale of a map: a bar of 40 pixels of the map and the length that it stands for in front of
// it, "12km ". Nothing before the first label.
class ScaleBar : public QFrame {
    Q_OBJECT

  public:
    using QFrame::QFrame;

    void setLabel(const QString& label);
    const QString& label() const { return label_; }

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    QString label_;
};

} // namespace tremor
