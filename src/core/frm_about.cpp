#include "core/frm_about.h"

#include "core/version.h"

#include <QtGui/QKeyEvent>
#include <QtGui/QPainter>
#include <QtGui/QPainterPath>
#include <QtGui/QTextCursor>
#include <QtWidgets/QCheckBox>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QTextEdit>
#include <QtWidgets/QVBoxLayout>

#include <cmath>

namespace tremor {
namespace {

// The emblem: a seismogram with its P and S waves over wave fronts that leave a source. Drawn, not
// stored, so that it is crisp at every resolution of the screen.
class Emblem : public QWidget {
  public:
    explicit Emblem(QWidget* parent) : QWidget(parent) { setFixedSize(112, 112); }

  protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.scale(width() / 100.0, height() / 100.0); // all below in hundredths of the side
        paintGround(painter);
        paintWaveFronts(painter);
        paintTrace(painter);
    }

  private:
    static void paintGround(QPainter& painter) {
        QLinearGradient ground(0, 0, 0, 100);
        ground.setColorAt(0, QColor(0x24, 0x6B, 0x8E));
        ground.setColorAt(1, QColor(0x0E, 0x2A, 0x47));
        QPainterPath outline;
        outline.addRoundedRect(QRectF(1, 1, 98, 98), 18, 18);
        painter.fillPath(outline, ground);
        painter.setClipPath(outline);
    }

    static void paintWaveFronts(QPainter& painter) {
        const QPointF source(31, 76);
        for (int front = 1; front <= 5; ++front) {
            painter.setPen(QPen(QColor(255, 255, 255, 80 - 12 * front), 2));
            painter.drawEllipse(source, 13.0 * front, 13.0 * front);
        }
        painter.setPen(Qt::NoPen);
        painter.setBrush(QColor(0xFF, 0xB3, 0x3B));
        painter.drawEllipse(source, 5, 5);
        painter.setBrush(Qt::NoBrush);
    }

    static void paintTrace(QPainter& painter) {
        constexpr int steps = 400; // across a width of 100
        QPainterPath trace(QPointF(0, traceHeight(0)));
        for (int i = 1; i <= steps; ++i) {
            const double x = 100.0 * i / steps;
            trace.lineTo(x, traceHeight(x));
        }
        painter.setPen(QPen(Qt::white, 2.2, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        painter.drawPath(trace);
    }

    // A small quick P wave, then a large slower S wave that dies away.
    static double traceHeight(double x) {
        return 42 - wave(x, 22, 5, 0.05, 1.5) - wave(x, 45, 34, 0.055, 0.85);
    }

    static double wave(double x, double onset, double amplitude, double decay, double frequency) {
        if (x <= onset)
            return 0;
        const double t = x - onset;
        return amplitude * std::exp(-decay * t) * (1 - std::exp(-0.35 * t)) *
               std::sin(frequency * t);
    }
};

QTextEdit* contactBlock(QWidget* parent) {
    auto* text = new QTextEdit(parent);
    text->setObjectName(QStringLiteral("Text1"));
    text->setAccessibleName(FrmAbout::tr("About the program"));
    text->setReadOnly(true);
    text->setTabChangesFocus(true);
    QTextCharFormat bold;
    bold.setFontWeight(QFont::Bold);
    QTextCursor cursor(text->document());
    cursor.insertText(QStringLiteral("TremorLedger"), bold);
    cursor.insertText(FrmAbout::tr("\nVersion %1.%2.%3\n\n"
                                   "Watches earthquake catalogues and the local locator, keeps "
                                   "their events, maps them and reports new ones.\n\n"
                                   "Questions and faults: to the TremorLedger project, at the "
                                   "place where you got this program.")
                          .arg(versionMajor)
                          .arg(versionMinor)
                          .arg(versionRevision),
                      QTextCharFormat());
    return text;
}

} // namespace

FrmAbout::FrmAbout(AppSettings& settings, QWidget* owner)
    : QWidget(owner, Qt::Dialog), settings_(settings) {
    setObjectName(QStringLiteral("FrmAbout"));
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowTitle(QLatin1String(programTitle));
    layOut();
}

void FrmAbout::layOut() {
    auto* image = new Emblem(this);
    image->setObjectName(QStringLiteral("Image1"));
    auto* text = contactBlock(this);
    auto* nologo = new QCheckBox(tr("Don't show at startup"), this);
    nologo->setObjectName(QStringLiteral("nologo"));
    nologo->setChecked(settings_.StartupLogo != 0);
    connect(nologo, &QCheckBox::toggled, this,
            [this](bool ticked) { settings_.StartupLogo = ticked ? 1 : 0; });
    auto* cmdClose = new QPushButton(tr("Close"), this);
    cmdClose->setObjectName(QStringLiteral("cmdClose"));
    cmdClose->setAutoDefault(true); // Enter presses it while it has the focus
    connect(cmdClose, &QPushButton::clicked, this, &QWidget::close);
    cmdClose->setFocus();

    auto* body = new QHBoxLayout;
    body->setSpacing(16);
    body->addWidget(image, 0, Qt::AlignTop);
    body->addWidget(text, 1);
    auto* foot = new QHBoxLayout;
    foot->addWidget(nologo);
    foot->addStretch(1);
    foot->addWidget(cmdClose);
    auto* all = new QVBoxLayout(this);
    all->setContentsMargins(16, 16, 16, 12);
    all->setSpacing(12);
    all->addLayout(body, 1);
    all->addLayout(foot);
    resize(480, 220);
}

void FrmAbout::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape)
        close();
    else
        QWidget::keyPressEvent(event);
}

} // namespace tremor
