#include "system/output/tooloutput.h"

#include <QTest>

class TestXrandrOutput : public QObject
{
    Q_OBJECT
private slots:
    void findsConnectedOutput_data();
    void findsConnectedOutput();
};

void TestXrandrOutput::findsConnectedOutput_data()
{
    QTest::addColumn<QString>("output");
    QTest::addColumn<QString>("name");
    QTest::newRow("nothing") << ""
                             << "";
    QTest::newRow("Xvfb") << "xrandr: Failed to get size of gamma for output screen\n"
                             "Screen 0: minimum 1 x 1, current 800 x 600, maximum 800 x 600\n"
                             "screen connected 800x600+0+0 0mm x 0mm\n"
                             "   800x600        0.00* \n"
                          << "screen";
    QTest::newRow("Xorg with the dummy driver")
        << "Screen 0: minimum 320 x 175, current 800 x 600, maximum 16384 x 16384\n"
           "DUMMY0 connected primary 800x600+0+0 0mm x 0mm\n"
           "   800x600       60.00*+\n"
           "DUMMY1 disconnected (normal left inverted right x axis y axis)\n"
           "DUMMY2 disconnected (normal left inverted right x axis y axis)\n"
        << "DUMMY0";
    QTest::newRow("two connected: the later one")
        << "LVDS1 connected 800x600+0+0\nVGA1 connected 1024x768+0+0\n"
        << "VGA1";
    QTest::newRow("disconnected only") << "VGA1 disconnected (normal)\n"
                                       << "";
    QTest::newRow("no blank after connected") << "VGA1 connected\n"
                                              << "";
    QTest::newRow("stops at an empty line") << "LVDS1 connected 1\n\nVGA1 connected 1\n"
                                            << "LVDS1";
    QTest::newRow("begins with an empty line") << "\nVGA1 connected 1\n"
                                               << "";
    QTest::newRow("begins with a blank") << "LVDS1 connected 1\n VGA1 connected 1\n"
                                         << "";
    QTest::newRow("no line end at the end") << "VGA1 connected 1"
                                            << "VGA1";
    QTest::newRow("other case") << "VGA1 Connected 1\n"
                                << "";
    QTest::newRow("name of any text")
        << QString::fromUtf8("Ä\"'$(x) connected 1\n") << QString::fromUtf8("Ä\"'$(x)");
    QTest::newRow("garbage") << QString(QChar(0)) + "\xFF connected\t"
                             << "";
}

void TestXrandrOutput::findsConnectedOutput()
{
    QFETCH(QString, output);
    QFETCH(QString, name);
    QCOMPARE(connectedOutputName(output), name);
}

QTEST_GUILESS_MAIN(TestXrandrOutput)
#include "tst_xrandroutput.moc"
