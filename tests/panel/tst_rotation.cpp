#include "layermodel.h"
#include "panelguard.h"
#include "panelprogram.h"

#include <QGuiApplication>
#include <QScreen>
#include <QTest>

namespace {
constexpr int border = 19; // px of background around the countdown
}

class TestRotation : public QObject
{
    Q_OBJECT
private slots:
    void windowFollowsTheScreen();
};

/// A technician may rotate the screen from outside while the program runs.
void TestRotation::windowFollowsTheScreen()
{
    requirePanel();
    const QSize landscape = QGuiApplication::primaryScreen()->size();
    const QString output = QGuiApplication::primaryScreen()->name();
    PanelProgram program;
    for (const char *rotation : {"normal", "left", "normal", "inverted", "right"}) {
        toolOutput({"xrandr", "--output", output, "--rotate", rotation});
        const bool portrait = rotation == QString("left") || rotation == QString("right");
        const QSize size = portrait ? landscape.transposed() : landscape;
        QTRY_COMPARE(QGuiApplication::primaryScreen()->size(), size);
        LayerModel model(size, Qt::black);
        const QRect screen(QPoint(0, 0), size);
        model.addShadow(screen);
        model.addBarShadow(screen);
        model.addLinearGradient(screen);
        model.addHighlight(screen);
        const QRect button = screen.adjusted(border, border, -border, -border);
        QTRY_COMPARE_WITH_TIMEOUT(model.difference(screenImage(), button), QString(), 15000);
    }
    QVERIFY(program.isRunning());
}

QTEST_MAIN(TestRotation)
#include "tst_rotation.moc"
