#include "system/output/tooloutput.h"

#include <QTest>

class TestDuOutput : public QObject
{
    Q_OBJECT
private slots:
    void total_data();
    void total();
};

void TestDuOutput::total_data()
{
    QTest::addColumn<QString>("output");
    QTest::addColumn<QString>("total");
    QTest::newRow("nothing") << ""
                             << "";
    QTest::newRow("one folder") << "12M\t/home/dest/\n"
                                << "12M";
    QTest::newRow("the last line counts") << "4.0K\t/home/dest/a\n12M\t/home/dest/\n"
                                          << "12M";
    QTest::newRow("empty folder") << "0\t/home/dest/\n"
                                  << "0";
    QTest::newRow("no line end") << "12M\t/home/dest/"
                                 << "";
    QTest::newRow("no tab") << "12M /home/dest/\n"
                            << "12M /home/dest/";
    QTest::newRow("line end alone") << "\n"
                                    << "";
    QTest::newRow("empty line at the end") << "12M\t/home/dest/\n\n"
                                           << "";
    QTest::newRow("tabs in the path") << "8.0K\t/home/dest/a\tb\n"
                                      << "8.0K";
    QTest::newRow("decimal comma") << "1,5G\t/home/dest/\n"
                                   << "1,5G";
}

void TestDuOutput::total()
{
    QFETCH(QString, output);
    QTEST(diskUsageTotal(output), "total");
}

QTEST_GUILESS_MAIN(TestDuOutput)
#include "tst_duoutput.moc"
