#pragma once

#include "views/event_history_chart.h"

#include <QtCore/QTimer>
#include <QtGui/QPixmap>
#include <QtWidgets/QFrame>

class QHelpEvent;

namespace tremor {

// The picture on a surface with `ratio` device pixels to a pixel; lines and bars fill whole device
// pixels, so that they stay crisp at every ratio.
QPixmap paintChart(const ChartPicture& picture, ChartSize size, qreal ratio);

// The history chart in the main window. It is drawn into a back buffer when its contents or its
// size change; a paint copies that buffer.
class EventHistoryChartView : public QFrame, public ChartView {
    Q_OBJECT

  public:
    explicit EventHistoryChartView(QWidget* parent = nullptr);

    void setContents(ChartContents contents) override;

    // Copies the buffer to the screen at once.
    void repaintChart() { repaint(); }

    QSize sizeHint() const override;

  Q_SIGNALS:
    // The size has changed and come to rest; the contents should be read anew. Until then the old
    // ones are shown in the new size.
    void resized();

  protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    bool event(QEvent* event) override;

  private:
    ChartSize innerSize() const;
    void drawBuffer();
    bool showToolTip(const QHelpEvent& event);

    ChartContents contents_;
    QPixmap buffer_;
    QTimer rest_;
};

} // namespace tremor
