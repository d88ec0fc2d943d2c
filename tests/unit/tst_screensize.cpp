#include "system/settings/settingskeys.h"

#include <QTest>

class TestScreenSize : public QObject
{
    Q_OBJECT
private slots:
    void parses_data();
    void parses();
};

void TestScreenSize::parses_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QSize>("size"); // invalid if the text is no size
    QTest::newRow("small x") << "800x600" << QSize(800, 600);
    QTest::newRow("large X") << "800X600" << QSize(800, 600);
    QTest::newRow("smallest") << "1x1" << QSize(1, 1);
    QTest::newRow("empty") << "" << QSize();
    QTest::newRow("no x") << "800" << QSize();
    QTest::newRow("no height") << "800x" << QSize();
    QTest::newRow("no width") << "x600" << QSize();
    QTest::newRow("width 0") << "0x600" << QSize();
    QTest::newRow("height 0") << "1024x0" << QSize();
    QTest::newRow("negative") << "-800x600" << QSize();
    QTest::newRow("three parts") << "800x600x1" << QSize();
    QTest::newRow("mixed three parts") << "800x600X" << QSize();
    QTest::newRow("not a number") << "800xabc" << QSize();
    QTest::newRow("hexadecimal") << "0x10" << QSize();
    QTest::newRow("fraction") << "800.5x600" << QSize();
    QTest::newRow("beyond 32 bits") << "4294967296x600" << QSize();
}

void TestScreenSize::parses()
{
    QFETCH(QString, text);
    QFETCH(QSize, size);
    QCOMPARE(parseScreenSize(text).value_or(QSize()), size);
}

QTEST_GUILESS_MAIN(TestScreenSize)
#include "tst_screensize.moc"
