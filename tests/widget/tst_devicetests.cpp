#include "factory/softwaresetup.h"

#include "factory/colorblending.h"
#include "factory/kpixeltestwidget.h"
#include "factorywindow.h"
#include "panelguard.h"

#include <QApplication>
#include <QComboBox>
#include <QElapsedTimer>
#include <QFile>
#include <QPointer>
#include <QPushButton>
#include <QScreen>
#include <QSpinBox>
#include <QTest>

#include <cmath>

namespace {
QList<KPixelTestWidget *> pixelTests()
{
    QList<KPixelTestWidget *> tests;
    for (QWidget *widget : QApplication::topLevelWidgets()) {
        if (auto *test = qobject_cast<KPixelTestWidget *>(widget)) {
            tests += test;
        }
    }
    return tests;
}

/// The colour of a picture; an invalid one if it has several.
QColor onlyColor(const QImage &image)
{
    const QColor color = image.pixelColor(0, 0);
    QImage plain(image.size(), image.format());
    plain.fill(color);
    return image == plain ? color : QColor();
}

/// Colour of the gradient at @p position, from 0 to 1.
QColor blendedColor(double position)
{
    constexpr Qt::GlobalColor stops[] = {Qt::blue, Qt::yellow, Qt::red, Qt::green, Qt::blue};
    const double place = position * 4;
    const int left = std::min(int(place), 3);
    const QColor from = stops[left];
    const QColor to = stops[left + 1];
    const auto mixed = [part = place - left](int first, int second) {
        return int(std::lround(first + part * (second - first)));
    };
    return {mixed(from.red(), to.red()), mixed(from.green(), to.green()),
            mixed(from.blue(), to.blue())};
}

/// The largest difference in a colour channel, 0 to 255.
int difference(const QColor &first, const QColor &second)
{
    return std::max({std::abs(first.red() - second.red()), std::abs(first.green() - second.green()),
                     std::abs(first.blue() - second.blue())});
}
} // namespace

class TestDeviceTests : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void plainBeep();
    void freeTone();
    void presetTones();
    void failingBeep_data();
    void failingBeep();
    void tonesDoNotBlock();
    void brightness();
    void brightnessOutput_data();
    void brightnessOutput();
    void pixelTestWalk();
    void pixelTestCoversTheScreen();
    void pixelTestsAreIndependent();
    void closedPixelTestStaysGreen();
    void gradient_data();
    void gradient();
    void gradientFollowsItsSize();
};

void TestDeviceTests::initTestCase()
{
    requirePanel();
}

void TestDeviceTests::plainBeep()
{
    const FactoryWindow factory({"beep"});
    factory.tools().setBody("beep", "sleep 0.1; echo ended >>/run/beeps");
    factory.click("Test");
    factory.click("Beep", 0);
    QVERIFY(QFile::exists("/run/beeps")); // the program waited for the end of the tool
    QCOMPARE(factory.calls().first(), QString("beep"));
}

void TestDeviceTests::freeTone()
{
    const FactoryWindow factory({"beep"});
    factory.click("Test");
    factory.click("Beep", 1);
    QTRY_COMPARE(factory.calls(), QStringList{"beep [-f] [100] [-l] [30]"});
    const auto boxes = factory.page(1)->findChildren<QSpinBox *>();
    boxes.at(0)->setValue(20001);
    boxes.at(1)->setValue(5001);
    factory.click("Beep", 1);
    QTRY_COMPARE(factory.calls().last(), QString("beep [-f] [20000] [-l] [5000]"));
    boxes.at(0)->setValue(2345);
    boxes.at(1)->setValue(678);
    factory.click("Beep", 1);
    QTRY_COMPARE(factory.calls().last(), QString("beep [-f] [2345] [-l] [678]"));
}

void TestDeviceTests::presetTones()
{
    const FactoryWindow factory({"beep"});
    factory.click("Test");
    const QStringList presets{"2900 t:1000", "2700 t:100", "2900 t:100"};
    for (const QString &preset : presets) {
        const qsizetype before = factory.calls().size();
        factory.click("Beep f:" + preset);
        QTRY_COMPARE(factory.calls().size(), before + 1);
    }
    QCOMPARE(factory.calls(),
             (QStringList{"beep [-f] [2900] [-l] [1000]", "beep [-f] [2700] [-l] [100]",
                          "beep [-f] [2900] [-l] [100]"}));
}

void TestDeviceTests::failingBeep_data()
{
    QTest::addColumn<QString>("body");
    QTest::newRow("exit status") << "exit 1";
    QTest::newRow("killed") << "kill -KILL $$";
    QTest::newRow("missing") << QString();
}

void TestDeviceTests::failingBeep()
{
    QFETCH(QString, body);
    const FactoryWindow factory({"beep", "xrandr"});
    factory.tools().setBody("beep", body);
    factory.tools().setBody("xrandr", body);
    factory.click("Test");
    const QByteArray path = qgetenv("PATH");
    if (body.isNull()) {
        qputenv("PATH", "/nonexistent");
    }
    factory.click("Beep", 0);
    factory.click("Beep", 1);
    factory.click("Beep f:2700 t:100");
    factory.window()->slotBrightnessTest(5);
    qputenv("PATH", path);
    if (!body.isNull()) {
        QTRY_COMPARE(factory.calls().filter("beep").size(), 3);
        QCOMPARE(factory.calls().filter("xrandr"),
                 (QStringList{"xrandr [-q]", "xrandr [--output] [] [--brightness] [1]"}));
    }
    QCOMPARE(factory.result(), QString());
}

void TestDeviceTests::tonesDoNotBlock()
{
    const FactoryWindow factory({"beep"});
    factory.tools().setBody("beep", "exec sleep 30");
    factory.click("Test");
    QElapsedTimer timer;
    timer.start();
    factory.click("Beep", 1);
    factory.click("Beep f:2900 t:1000");
    QVERIFY2(timer.elapsed() < 10000, qPrintable(QString::number(timer.elapsed())));
    QTRY_COMPARE(factory.calls().filter("beep").size(), 2);
}

void TestDeviceTests::brightness()
{
    const FactoryWindow factory({"xrandr"});
    factory.tools().setBody("xrandr", "[ \"$1\" != -q ] || echo 'LVDS1 connected 800x600+0+0'");
    factory.click("Test");
    QCOMPARE(factory.calls(), QStringList()); // the initial brightness is not applied
    auto *box = factory.page(1)->findChild<QComboBox *>();
    box->setCurrentIndex(0);
    QCOMPARE(factory.calls(), QStringList());
    // The display gets brighter as the shown percentage falls.
    const QStringList factors{"0", "0.2", "0.4", "0.6", "0.8", "1"};
    for (const int index : {5, 0, 1, 2, 3, 4}) {
        box->setCurrentIndex(index);
        QCOMPARE(factory.calls().size() % 2, 0);
        QCOMPARE(
            factory.calls().mid(factory.calls().size() - 2),
            (QStringList{"xrandr [-q]",
                         "xrandr [--output] [LVDS1] [--brightness] [" + factors.at(index) + ']'}));
    }
}

void TestDeviceTests::brightnessOutput_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("output");
    QTest::newRow("last one wins") << "A connected 1\nB disconnected 1\nC connected 1\n"
                                   << "C";
    QTest::newRow("empty line ends it") << "A connected 1\n\nB connected 1\n"
                                        << "A";
    QTest::newRow("none") << "A disconnected\n"
                          << "";
}

void TestDeviceTests::brightnessOutput()
{
    QFETCH(QString, text);
    QFETCH(QString, output);
    const FactoryWindow factory({"xrandr"});
    factory.tools().setBody("xrandr", "[ \"$1\" != -q ] || cat <<'END'\n" + text + "END");
    factory.window()->slotBrightnessTest(3);
    QCOMPARE(factory.calls().last(), "xrandr [--output] [" + output + "] [--brightness] [0.6]");
}

void TestDeviceTests::pixelTestWalk()
{
    const FactoryWindow factory;
    factory.click("Test");
    factory.click("Pixel Test");
    QCOMPARE(pixelTests().size(), 1);
    const QPointer<KPixelTestWidget> test = pixelTests().first();
    QVERIFY(QTest::qWaitForWindowExposed(test));
    for (const Qt::GlobalColor color : {Qt::white, Qt::black, Qt::red, Qt::blue, Qt::green}) {
        QVERIFY(test->isVisible());
        QCOMPARE(onlyColor(test->grab().toImage()), QColor(color));
        QTest::mousePress(test, Qt::LeftButton);
        QCOMPARE(onlyColor(test->grab().toImage()), QColor(color)); // the colour changes on release
        QTest::mouseRelease(test, Qt::LeftButton);
    }
    QVERIFY(!test->isVisible());
    QTRY_VERIFY(test.isNull());
    QVERIFY(factory.window()->isVisible());
}

void TestDeviceTests::pixelTestCoversTheScreen()
{
    KPixelTestWidget test;
    QVERIFY(test.isWindow());
    QCOMPARE(test.windowFlags(), QWidget().windowFlags());
    QVERIFY(!test.isVisible());
    test.run();
    QVERIFY(QTest::qWaitForWindowExposed(&test));
    QCOMPARE(test.geometry(), QGuiApplication::primaryScreen()->availableGeometry());
    QTRY_COMPARE(onlyColor(QGuiApplication::primaryScreen()->grabWindow(0).toImage()),
                 QColor(Qt::white));
}

void TestDeviceTests::pixelTestsAreIndependent()
{
    const FactoryWindow factory;
    factory.window()->slotPixelTest();
    factory.window()->slotPixelTest();
    QCOMPARE(pixelTests().size(), 2);
    QTest::mouseClick(pixelTests().at(0), Qt::LeftButton);
    QCOMPARE(onlyColor(pixelTests().at(0)->grab().toImage()), QColor(Qt::black));
    QCOMPARE(onlyColor(pixelTests().at(1)->grab().toImage()), QColor(Qt::white));
    qDeleteAll(pixelTests());
}

void TestDeviceTests::closedPixelTestStaysGreen()
{
    auto *test = new KPixelTestWidget;
    test->run();
    for (int release = 0; release < 7; ++release) { // the last two come before it is deleted
        QTest::mouseRelease(test, Qt::LeftButton);
    }
    QVERIFY(!test->isVisible());
    QCOMPARE(onlyColor(test->grab().toImage()), QColor(Qt::green));
    const QPointer<KPixelTestWidget> watched = test;
    QTRY_VERIFY(watched.isNull());
}

void TestDeviceTests::gradient_data()
{
    QTest::addColumn<QSize>("size");
    for (const QSize size : {QSize(680, 100), QSize(101, 7), QSize(1280, 301)}) {
        QTest::addRow("%dx%d", size.width(), size.height()) << size;
    }
}

void TestDeviceTests::gradient()
{
    QFETCH(QSize, size);
    ColorBlending blending;
    blending.resize(size);
    const QImage image = blending.grab().toImage();
    // Qt samples the gradient at the middle of a pixel, from a table of 1024 steps.
    const int tolerance = 4;
    for (int x = 0; x < size.width(); ++x) {
        const QColor expected = blendedColor((x + 0.5) / size.width());
        for (const int y : {0, size.height() / 2, size.height() - 1}) {
            const QColor actual = image.pixelColor(x, y);
            QVERIFY2(difference(actual, expected) <= tolerance,
                     qPrintable(
                         QString("%1: %2, not %3").arg(x).arg(actual.name()).arg(expected.name())));
        }
    }
}

void TestDeviceTests::gradientFollowsItsSize()
{
    ColorBlending blending;
    blending.resize(200, 100);
    blending.show();
    QVERIFY(QTest::qWaitForWindowExposed(&blending));
    blending.resize(400, 100);
    const auto middle = [] {
        return QGuiApplication::primaryScreen()->grabWindow(0).toImage().pixelColor(200, 50);
    };
    blending.move(0, 0);
    QTRY_VERIFY(difference(middle(), Qt::red) <= 4);
}

QTEST_MAIN(TestDeviceTests)
#include "tst_devicetests.moc"
