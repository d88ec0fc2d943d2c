#include "factory/softwaresetup.h"

#include "factorywindow.h"
#include "panelfiles.h"
#include "panelguard.h"
#include "panelmain.h"
#include "panelprogram.h"
#include "panelscreen.h"

#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QGuiApplication>
#include <QPushButton>
#include <QScreen>
#include <QSpinBox>
#include <QTest>
#include <QTextEdit>

#include <map>

namespace {
constexpr char markerFile[] = "/media/usb0/talmero_setup";
constexpr char rulesFile[] = "/etc/udev/rules.d/70-persistent-net.rules";
constexpr int modelRows = 5;
constexpr int typeRows = 2;
constexpr int brightnessRows = 6;

QByteArray fileText(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("no file");
}

QString rule(const QString &address, int number)
{
    return QString(R"(SUBSYSTEM=="net", ACTION=="add", DRIVERS=="?*", ATTR{address}=="%1", )"
                   R"(ATTR{dev_id}=="0x0", ATTR{type}=="1", KERNEL=="eth*", NAME="eth%2")")
               .arg(address)
               .arg(number)
        + " \n   ";
}

QColor middleOfTheScreen()
{
    return screenColor(QPoint(400, 300));
}
} // namespace

class TestFactory : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void init();
    void cleanup();
    void productionLine();
    void staysClosedWithoutMarker();
    void brightnessIsInverted();
    void buzzer();
    void pixelTestFillsTheScreen();

private:
    QPoint place(const QString &name) const { return m_places.at(name); }
    void start();
    void openTestPage();
    bool showsResult(const QString &text) const;

    std::map<QString, QPoint> m_places;  ///< where to tap, by the text on a button or a name
    std::map<QString, QImage> m_results; ///< pictures of the result view, by its text
    QRect m_resultArea;
    std::unique_ptr<FakeTools> m_tools;
    std::unique_ptr<PanelProgram> m_program;
};

/// A second window, in this process, tells where to tap and how each result is drawn.
void TestFactory::initTestCase()
{
    requirePanel();
    toolOutput({"ip", "address", "add", "192.168.0.10/24", "dev", "eth0"});
    QDir().mkpath("/etc/udev/rules.d");
    const FactoryWindow twin;
    const auto remember = [this, &twin](const QString &name, const QWidget *widget) {
        m_places[name] = widget->mapTo(twin.window(), widget->rect().center());
    };
    const auto boxes = twin.page(0)->findChildren<QComboBox *>();
    remember("model", boxes.at(0));
    remember("type", boxes.at(1));
    twin.click("Test");
    remember("brightness", twin.page(1)->findChild<QComboBox *>());
    for (const auto *button : twin.window()->findChildren<QPushButton *>()) {
        remember(button->text(), button);
    }
    remember("first Beep", twin.button("Beep", 0));
    remember("second Beep", twin.button("Beep", 1));
    const auto *frequency = twin.page(1)->findChild<QSpinBox *>();
    m_places["frequency up"]
        = frequency->mapTo(twin.window(), QPoint(frequency->width() - 22, frequency->height() / 2));

    auto *view = twin.window()->findChild<QTextEdit *>("resultView");
    m_resultArea
        = QRect(view->viewport()->mapTo(twin.window(), QPoint()), view->viewport()->size());
    const QString broken = "10:/dev/ttyS2:" + alphabet;
    for (const QString &text :
         {QString(), "5:1:" + alphabet + okLines, "10:/dev/ttyS0:" + alphabet + okLines,
          broken.left(40) + broken.mid(41) + failLines}) {
        view->setPlainText(text);
        m_results[text] = view->viewport()->grab().toImage();
    }
}

void TestFactory::init()
{
    QFile marker(markerFile);
    QVERIFY(marker.open(QIODevice::WriteOnly));
    m_tools = std::make_unique<FakeTools>(
        QStringList{"sleep", "xCal", "mv", "rm", "date", "hwclock", "beep", "window-is-there"});
    m_tools->setBody("xCal",
                     "xwininfo -root -tree | grep -q '\"talmero-bios\")' && window-is-there");
    m_tools->setBody("rm", "exec /usr/bin/rm \"$@\"");
}

void TestFactory::cleanup()
{
    m_program.reset();
    m_tools.reset();
    QFile::remove(markerFile);
}

void TestFactory::start()
{
    m_program = std::make_unique<PanelProgram>();
    QTRY_COMPARE_WITH_TIMEOUT(programWindow(), QRect(0, 0, 800, 600), startLimit);
    m_tools->setBody("sleep", "exec /usr/bin/sleep \"$@\"");
}

void TestFactory::openTestPage()
{
    start();
    tapScreen(place("Test"));
    QTRY_VERIFY(showsResult({}));
}

bool TestFactory::showsResult(const QString &text) const
{
    const QImage &wanted = m_results.at(text);
    return screenImage().copy(m_resultArea).convertToFormat(wanted.format()) == wanted;
}

void TestFactory::productionLine()
{
    writePanelFile("model", "old\n");
    start();
    QCOMPARE(m_tools->calls(), (QStringList{"sleep [1]", "sleep [2]", "xCal"}));
    chooseRow(place("model"), modelRows, 1);
    chooseRow(place("type"), typeRows, 1);
    const QDateTime now = QDateTime::currentDateTime();
    tapScreen(place("Save"));
    QTRY_VERIFY(m_tools->calls().contains(QString("rm [%1]").arg(rulesFile)));
    QTRY_COMPARE(fileText(rulesFile),
                 (rule("02:00:00:00:00:01", 0) + rule("02:00:00:00:00:02", 1)).toLatin1());
    QCOMPARE(readPanelFile("model"), QByteArray("K21T"));
    const QStringList saved = m_tools->calls().mid(3);
    QCOMPARE(saved.size(), 4);
    QCOMPARE(saved.at(0), QString("rm [/opt/talmero/bios/model]"));
    const QString stamp = "MMddhhmmyyyy";
    QVERIFY2(saved.at(1) == "date [" + now.toString(stamp) + ']'
                 || saved.at(1) == "date [" + now.addSecs(-60).toString(stamp) + ']',
             qPrintable(saved.at(1)));
    QCOMPARE(saved.at(2), QString("hwclock [-w]"));

    toolOutput({PANEL_SIMULATOR "/serial", "whole", "whole", "missing"});
    tapScreen(place("Test"));
    QTRY_VERIFY(showsResult({}));
    tapScreen(place("Eth0"));
    QTRY_VERIFY(showsResult("5:1:" + alphabet + okLines));
    tapScreen(place("COM1 RS232"));
    QTRY_VERIFY(showsResult("10:/dev/ttyS0:" + alphabet + okLines));
    tapScreen(place("COM3 RS232"));
    const QString broken = "10:/dev/ttyS2:" + alphabet;
    QTRY_VERIFY(showsResult(broken.left(40) + broken.mid(41) + failLines));

    tapScreen(place("Pixel Test"));
    for (const Qt::GlobalColor color : {Qt::white, Qt::black, Qt::red, Qt::blue, Qt::green}) {
        QTRY_COMPARE(middleOfTheScreen(), QColor(color));
        tapScreen(QPoint(400, 300));
    }
    QTRY_VERIFY(showsResult(broken.left(40) + broken.mid(41) + failLines));
    tapScreen(place("Close"));
    QCOMPARE(m_program->waitForEnd(), 0);
    QVERIFY(!m_tools->calls().join(' ').contains("mv ["));
    QVERIFY(!m_program->errorText().contains("QObject"));
}

void TestFactory::staysClosedWithoutMarker()
{
    QFile::remove(markerFile);
    m_program = std::make_unique<PanelProgram>();
    QTRY_VERIFY_WITH_TIMEOUT(shownCount() >= 0, startLimit);
    QVERIFY(!m_tools->calls().contains("xCal"));
}

void TestFactory::brightnessIsInverted()
{
    openTestPage();
    const QString before = shownBrightness();
    QCOMPARE(before, QString("1.0"));
    const QStringList shown{"0.0", "0.20", "0.40", "0.60", "0.80", "1.0"};
    for (const int row : {1, 3, 0, 5}) {
        chooseRow(place("brightness"), brightnessRows, row);
        QTRY_COMPARE(shownBrightness(), shown.at(row));
    }
}

void TestFactory::buzzer()
{
    openTestPage();
    const auto lastCallAfterTap = [this](const QString &name) {
        const qsizetype before = m_tools->calls().size();
        tapScreen(place(name));
        return QTest::qWaitFor([this, before] { return m_tools->calls().size() > before; })
            ? m_tools->calls().last()
            : QString();
    };
    QCOMPARE(lastCallAfterTap("first Beep"), QString("beep"));
    QCOMPARE(lastCallAfterTap("second Beep"), QString("beep [-f] [100] [-l] [30]"));
    tapScreen(place("frequency up"));
    QCOMPARE(lastCallAfterTap("second Beep"), QString("beep [-f] [101] [-l] [30]"));
    QCOMPARE(lastCallAfterTap("Beep f:2900 t:1000"), QString("beep [-f] [2900] [-l] [1000]"));
    QCOMPARE(lastCallAfterTap("Beep f:2700 t:100"), QString("beep [-f] [2700] [-l] [100]"));
    QCOMPARE(lastCallAfterTap("Beep f:2900 t:100"), QString("beep [-f] [2900] [-l] [100]"));
}

void TestFactory::pixelTestFillsTheScreen()
{
    openTestPage();
    tapScreen(place("Pixel Test"));
    for (const Qt::GlobalColor color : {Qt::white, Qt::black, Qt::red, Qt::blue, Qt::green}) {
        QImage plain(QSize(800, 600), QImage::Format_RGB32);
        plain.fill(color);
        QTRY_COMPARE(screenImage().convertToFormat(QImage::Format_RGB32), plain);
        tapScreen(QPoint(1, 598)); // anywhere
    }
    QTRY_VERIFY(showsResult({}));
    QVERIFY(m_program->isRunning());
}

PANEL_QTEST_MAIN(TestFactory)
#include "tst_factory.moc"
