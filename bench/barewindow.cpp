// The minimum for a Qt program: one window that fills the screen and shows one text. It first runs
// as many tools as PANEL_BENCH_BARE_TOOLS says.

#include <QApplication>
#include <QPainter>
#include <QProcess>
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
    for (int tool = qEnvironmentVariableIntValue("PANEL_BENCH_BARE_TOOLS"); tool > 0; --tool) {
        QProcess::execute("sleep", {});
    }
    window.show();
    return QApplication::exec();
}
