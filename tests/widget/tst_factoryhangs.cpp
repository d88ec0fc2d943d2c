#include "factory/softwaresetup.h"

#include "factorywindow.h"
#include "panelguard.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QProcess>
#include <QTest>

#include <memory>
#include <vector>

// A hanging tool is waited for up to 30 s. So each row runs in a process of its own, all at once:
// without arguments this program starts one of itself for each row.

namespace {
struct Hang
{
    const char *name;
    const char *tool;
    const char *body; // what the tool does before it hangs
    const char *slot;
    int limit; // ms until the window goes on
    int calls; // tools that ran in the end
};
constexpr Hang hangs[] = {
    {"mv", "mv", "true", "slotAccept", 5000, 6},
    {"rm", "rm", "true", "slotAccept", 10000, 6}, // twice
    {"date", "date", "true", "slotAccept", 5000, 6},
    {"hwclock", "hwclock", "true", "slotAccept", 5000, 6},
    {"beep", "beep", "true", "slotBuzzerTest", 5000, 1},
    {"display query", "xrandr", "[ $1 = -q ] || exit", "brightness", 30000, 2},
    {"brightness", "xrandr", "[ $1 != -q ] || exit", "brightness", 5000, 2},
};
} // namespace

class TestFactoryHangs : public QObject
{
    Q_OBJECT
private slots:
    void everyRow();
    void goesOn_data();
    void goesOn();
};

void TestFactoryHangs::everyRow()
{
    std::vector<std::unique_ptr<QProcess>> runs;
    for (const Hang &hang : hangs) {
        runs.push_back(std::make_unique<QProcess>());
        runs.back()->setProcessChannelMode(QProcess::MergedChannels);
        runs.back()->start(QCoreApplication::applicationFilePath(),
                           {QString("goesOn:") + hang.name});
    }
    for (const auto &run : runs) {
        QVERIFY(run->waitForFinished(60000));
        QVERIFY2(run->exitCode() == 0, run->readAll().constData());
    }
}

void TestFactoryHangs::goesOn_data()
{
    QTest::addColumn<int>("index");
    int index = 0;
    for (const Hang &hang : hangs) {
        QTest::newRow(hang.name) << index++;
    }
}

void TestFactoryHangs::goesOn()
{
    QFETCH(int, index);
    const Hang &hang = hangs[index];
    const FactoryWindow factory({"mv", "rm", "date", "hwclock", "ifconfig", "beep", "xrandr"});
    factory.tools().setBody(hang.tool, QString(hang.body) + "\nexec /usr/bin/sleep 300");
    QElapsedTimer timer;
    timer.start();
    if (qstrcmp(hang.slot, "brightness") == 0) {
        factory.window()->slotBrightnessTest(2);
    } else {
        QVERIFY(QMetaObject::invokeMethod(factory.window(), hang.slot));
    }
    QVERIFY2(timer.elapsed() >= hang.limit && timer.elapsed() < hang.limit + 2500,
             qPrintable(QString::number(timer.elapsed())));
    QCOMPARE(factory.calls().size(), hang.calls);
}

int main(int argc, char *argv[])
{
    requirePanel();
    const QApplication application(argc, argv);
    TestFactoryHangs test;
    return argc > 1 ? QTest::qExec(&test, argc, argv)
                    : QTest::qExec(&test, {QString(argv[0]), "everyRow"});
}
#include "tst_factoryhangs.moc"
