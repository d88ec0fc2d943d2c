#include <QApplication>
#include <QFont>
#include <QLabel>
#include <QPainter>
#include <QPushButton>
#include <QScreen>
#include <QVBoxLayout>
#include <QWidget>

#include <algorithm>

namespace {

const QColor background(0xee, 0xf2, 0xf5);
const QColor vesselColor(0xff, 0xff, 0xff);
const QColor liquidColor(0x9f, 0xc5, 0xdc);
const QColor lineColor(0x4a, 0x5c, 0x68);

/// Process picture: two vessels joined by a pipe with a pump.
class ProcessPicture : public QWidget
{
public:
    using QWidget::QWidget;

protected:
    void paintEvent(QPaintEvent *) override
    {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        // drawn in a system of 320x200 units, scaled to the widget
        const qreal scale = std::min(width() / 320.0, height() / 200.0);
        painter.translate((width() - 320 * scale) / 2, (height() - 200 * scale) / 2);
        painter.scale(scale, scale);

        painter.setPen(QPen(lineColor, 6));
        painter.drawPolyline(QPolygonF{{70, 150}, {70, 180}, {250, 180}, {250, 150}});
        drawVessel(painter, QRectF(30, 20, 80, 130), 0.72);
        drawVessel(painter, QRectF(210, 20, 80, 130), 0.38);
        painter.setBrush(vesselColor);
        painter.drawEllipse(QPointF(160, 180), 15, 15);
        painter.setBrush(lineColor);
        painter.drawPolygon(QPolygonF{{154, 172}, {154, 188}, {170, 180}});
    }

private:
    static void drawVessel(QPainter &painter, const QRectF &vessel, qreal level)
    {
        painter.setPen(Qt::NoPen);
        painter.setBrush(vesselColor);
        painter.drawRoundedRect(vessel, 10, 10);
        painter.setBrush(liquidColor);
        painter.drawRoundedRect(vessel.adjusted(0, vessel.height() * (1 - level), 0, 0), 10, 10);
        painter.setBrush(Qt::NoBrush);
        painter.setPen(QPen(lineColor, 3));
        painter.drawRoundedRect(vessel, 10, 10);
    }
};

QFont fontOfHeight(int pixels, bool bold)
{
    QFont font;
    font.setPixelSize(pixels);
    font.setBold(bold);
    return font;
}

} // namespace

int main(int argc, char *argv[])
{
    QApplication app(argc, argv);

    QWidget window;
    window.setWindowFlags(Qt::FramelessWindowHint);
    window.setWindowTitle("HMI runtime (stand-in)");
    QPalette palette(background);
    palette.setColor(QPalette::WindowText, lineColor);
    window.setPalette(palette);

    const QRect screen = app.primaryScreen()->geometry();
    const int unit = std::min(screen.width(), screen.height()) / 20; // px; 24 on the smallest panel

    auto *title = new QLabel("HMI runtime (stand-in)");
    title->setFont(fontOfHeight(unit * 6 / 5, true));
    title->setAlignment(Qt::AlignCenter);
    auto *text = new QLabel("On a panel the operator's process pictures run here.\n"
                            "Close ends the runtime.");
    text->setFont(fontOfHeight(unit * 4 / 5, false));
    text->setAlignment(Qt::AlignCenter);
    text->setWordWrap(true);
    auto *close = new QPushButton("Close");
    close->setObjectName("close");
    close->setFont(fontOfHeight(unit * 3 / 2, true));
    close->setMinimumHeight(unit * 4);
    QObject::connect(close, &QPushButton::clicked, &app, &QCoreApplication::quit);

    auto *layout = new QVBoxLayout(&window);
    layout->setContentsMargins(unit, unit, unit, unit);
    layout->setSpacing(unit);
    layout->addWidget(title);
    layout->addWidget(new ProcessPicture, 1);
    layout->addWidget(text);
    layout->addWidget(close);

    window.setGeometry(screen);
    window.show();
    return app.exec();
}
