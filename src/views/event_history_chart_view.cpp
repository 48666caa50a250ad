#include "views/event_history_chart_view.h"

#include "core/qt_text.h"

#include <QtGui/QFontDatabase>
#include <QtGui/QFontMetricsF>
#include <QtGui/QHelpEvent>
#include <QtGui/QPainter>
#include <QtWidgets/QToolTip>

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <span>
#include <utility>
#include <vector>

namespace tremor {
namespace {

constexpr QColor barColour(100, 100, 200);
constexpr QColor gridColour(255, 0, 0);
constexpr int dotDistance = 3; // pixels from one dot of a grid line to the next
constexpr std::chrono::milliseconds restingTime{150};

QColor colourOf(ChartColour colour) {
    switch (colour) {
    case ChartColour::Red:
        return {255, 0, 0};
    case ChartColour::Blue:
        return {0, 0, 255};
    case ChartColour::Black:
        break;
    }
    return {0, 0, 0};
}

// The desktop's fixed-pitch font, squeezed into the cell.
QFont fontOf(ChartFont cell, QFont::Weight weight, qreal ratio) {
    constexpr int smallest = 4;
    const qreal height = cell.height * ratio;
    const qreal width = cell.width * ratio;
    const auto pitch = [](const QFont& font) {
        return QFontMetricsF(font).horizontalAdvance(QLatin1Char('0'));
    };
    QFont font = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    font.setWeight(weight);
    int pixels = qRound(height);
    do {
        font.setPixelSize(pixels);
    } while (QFontMetricsF(font).height() > height && --pixels >= smallest);
    font.setStretch(std::max(1, static_cast<int>(100 * width / pitch(font))));
    font.setLetterSpacing(QFont::AbsoluteSpacing, width - pitch(font));
    return font;
}

// Paints in device pixels.
class ChartPainter {
  public:
    ChartPainter(QPixmap& surface, qreal ratio)
        : painter_(&surface), ratio_(ratio), thickness_(std::max(1, qRound(ratio))) {}

    void line(const ChartLine& line) {
        const bool vertical = line.x1 == line.x2;
        painter_.fillRect(device(line.x1), device(line.y1),
                          vertical ? thickness_ : device(line.x2) - device(line.x1),
                          vertical ? device(line.y2) - device(line.y1) : thickness_, Qt::black);
    }

    void dottedLine(const ChartLine& line) {
        for (int x = device(line.x1); x < device(line.x2); x += dotDistance * thickness_)
            painter_.fillRect(x, device(line.y1), thickness_, thickness_, gridColour);
    }

    // Bars of the same place cover one another; of a hundred thousand some hundreds are painted.
    void bars(const std::vector<ChartBar>& bars, double baseLine) {
        struct Column {
            int top;
            int bottom;
        };
        const int width = std::max(1, qRound(chartBarWidth * ratio_));
        const int base = device(baseLine);
        const int surfaceWidth = painter_.device()->width();
        std::vector<Column> columns(static_cast<std::size_t>(surfaceWidth), {base, base});
        for (const ChartBar& bar : bars) {
            const int left = device(bar.x) - width / 2;
            if (left < 0 || left >= surfaceWidth)
                continue;
            Column& column = columns[static_cast<std::size_t>(left)];
            column.top = std::min(column.top, device(bar.end));
            column.bottom = std::max(column.bottom, device(bar.end));
        }
        for (int left = 0; left < surfaceWidth; ++left) {
            const Column& column = columns[static_cast<std::size_t>(left)];
            painter_.fillRect(left, column.top, width, column.bottom - column.top, barColour);
        }
    }

    // The base line lies `ascent` device pixels below each text's y.
    void texts(std::span<const ChartText> texts, const QFont& font, qreal ascent) {
        painter_.setFont(font);
        for (const ChartText& text : texts) {
            painter_.setPen(colourOf(text.colour));
            painter_.drawText(QPointF(device(text.x), device(text.y) + ascent),
                              fromBytes(text.text));
        }
    }

  private:
    int device(double pixels) const { return qRound(pixels * ratio_); }

    QPainter painter_;
    qreal ratio_;
    int thickness_; // of a line
};

} // namespace

QPixmap paintChart(const ChartPicture& picture, ChartSize size, qreal ratio) {
    QPixmap surface(qRound(size.width * ratio), qRound(size.height * ratio));
    if (surface.isNull())
        return surface;
    surface.fill(Qt::white);
    {
        ChartPainter painter(surface, ratio);
        for (const ChartLine& line : picture.grid)
            painter.dottedLine(line);
        for (const ChartLine& line : picture.axes)
            painter.line(line);
        painter.bars(picture.bars, picture.baseLine);
        painter.texts(picture.labels, fontOf(smallChartFont, QFont::Black, ratio), 0);
        const QFont large = fontOf(largeChartFont, QFont::Bold, ratio);
        painter.texts(picture.legend, large, QFontMetricsF(large).ascent());
    }
    surface.setDevicePixelRatio(ratio);
    return surface;
}

EventHistoryChartView::EventHistoryChartView(QWidget* parent) : QFrame(parent) {
    setObjectName(QStringLiteral("PicEvHist"));
    setAccessibleName(QStringLiteral("Magnitudes over time"));
    setFrameStyle(QFrame::StyledPanel | QFrame::Plain);
    // What happens over the chart is no matter of the frame around it.
    setAttribute(Qt::WA_NoMousePropagation);
    setCursor(Qt::ArrowCursor);
    rest_.setSingleShot(true);
    rest_.setInterval(restingTime);
    connect(&rest_, &QTimer::timeout, this, &EventHistoryChartView::resized);
}

void EventHistoryChartView::setContents(ChartContents contents) {
    contents_ = std::move(contents);
    setAccessibleDescription(
        QStringLiteral("%1 events from %2 to %3")
            .arg(contents_.events.size())
            .arg(fromBytes(contents_.startDate), fromBytes(contents_.endDate)));
    drawBuffer();
    update();
}

QSize EventHistoryChartView::sizeHint() const {
    return {520, 165};
}

ChartSize EventHistoryChartView::innerSize() const {
    const QSize size = contentsRect().size();
    return {size.width(), size.height()};
}

void EventHistoryChartView::drawBuffer() {
    const ChartSize size = innerSize();
    buffer_ = paintChart(drawChart(contents_, size), size, devicePixelRatioF());
}

void EventHistoryChartView::paintEvent(QPaintEvent* event) {
    // The window may have moved to a screen of another density.
    if (buffer_.devicePixelRatio() != devicePixelRatioF())
        drawBuffer();
    QPainter(this).drawPixmap(contentsRect().topLeft(), buffer_);
    QFrame::paintEvent(event);
}

void EventHistoryChartView::resizeEvent(QResizeEvent* event) {
    QFrame::resizeEvent(event);
    drawBuffer();
    rest_.start();
}

bool EventHistoryChartView::event(QEvent* event) {
    if (event->type() == QEvent::ToolTip)
        return showToolTip(*static_cast<QHelpEvent*>(event));
    return QFrame::event(event);
}

// Events that share a column are told apart by the height of the pointer.
bool EventHistoryChartView::showToolTip(const QHelpEvent& event) {
    const QPoint place = event.pos() - contentsRect().topLeft();
    const std::optional<std::size_t> nearest =
        nearestEvent(contents_, innerSize(), place.x() + 0.5, place.y() + 0.5);
    if (nearest)
        QToolTip::showText(event.globalPos(), fromBytes(eventText(contents_.events[*nearest])),
                           this);
    else
        QToolTip::hideText();
    return true;
}

} // namespace tremor
