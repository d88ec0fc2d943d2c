// The minimum for a Qt program: one window that fills the screen and shows one text.

#include <QApplication>
#include <QPainter>
#include <QScreen>
#include <QWidget>

namespace {
class BareWindow : public QWidget
{
protected:
    void paintEvent(QPaintEvent *) override
    {
        QPainter painter(this);
        painter.fillRect(rect(), Qt::black);
        painter.setPen(Qt::white);
        painter.drawText(rect(), Qt::AlignCenter, "5");
    }
};
} // namespace

int main(int argc, char *argv[])
{
    const QApplication application(argc, argv);
    BareWindow window;
    window.setWindowFlags(Qt::FramelessWindowHint);
    window.resize(QGuiApplication::primaryScreen()->virtualGeometry().size());
    window.show();
    return QApplication::exec();
}
