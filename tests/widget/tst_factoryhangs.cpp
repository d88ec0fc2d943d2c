#include "factory/softwaresetup.h"

#include "factorywindow.h"

#include <QElapsedTimer>
#include <QTest>

using namespace std::chrono_literals;

namespace {
constexpr int limit = 600; // ms

struct Hang
{
    const char *name;
    const char *tool;
    const char *body; // shell text before the tool hangs
    const char *slot;
    int hangs; // runs that hang
    int calls; // runs in total
};
constexpr Hang hangs[] = {
    {"mv", "mv", "true", "slotAccept", 1, 6},
    {"rm", "rm", "true", "slotAccept", 2, 6},
    {"date", "date", "true", "slotAccept", 1, 6},
    {"hwclock", "hwclock", "true", "slotAccept", 1, 6},
    {"beep", "beep", "true", "slotBuzzerTest", 1, 1},
    {"display query", "xrandr", "[ $1 = -q ] || exit", "brightness", 1, 2},
    {"brightness", "xrandr", "[ $1 != -q ] || exit", "brightness", 1, 2},
};
} // namespace

class TestFactoryHangs : public QObject
{
    Q_OBJECT
private slots:
    void continuesAfterTheLimit_data();
    void continuesAfterTheLimit();
};

void TestFactoryHangs::continuesAfterTheLimit_data()
{
    QTest::addColumn<int>("index");
    int index = 0;
    for (const Hang &hang : hangs) {
        QTest::newRow(hang.name) << index++;
    }
}

void TestFactoryHangs::continuesAfterTheLimit()
{
    QFETCH(int, index);
    const Hang &hang = hangs[index];
    const FactoryWindow factory({"mv", "rm", "date", "hwclock", "ifconfig", "beep", "xrandr"},
                                {.tool = std::chrono::milliseconds(limit)});
    factory.tools().setBody(hang.tool, QString(hang.body) + "\nexec /usr/bin/sleep 300");
    QElapsedTimer timer;
    timer.start();
    if (qstrcmp(hang.slot, "brightness") == 0) {
        factory.window()->slotBrightnessTest(2);
    } else {
        QVERIFY(QMetaObject::invokeMethod(factory.window(), hang.slot));
    }
    const int expected = limit * hang.hangs;
    QVERIFY2(timer.elapsed() >= expected && timer.elapsed() < expected + 3000,
             qPrintable(QString::number(timer.elapsed())));
    QCOMPARE(factory.calls().size(), hang.calls);
}

QTEST_MAIN(TestFactoryHangs)
#include "tst_factoryhangs.moc"
