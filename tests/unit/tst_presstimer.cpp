#include "system/presstimer.h"

#include <QTest>

namespace {
/// One poll: the button ('d' down, 'u' up, '?' unknown) and the clock in ms.
struct Poll
{
    char state;
    qint64 time;
};
using Polls = QList<Poll>;

TouchState stateOf(char state)
{
    switch (state) {
    case 'd':
        return TouchState::Down;
    case 'u':
        return TouchState::Up;
    default:
        return TouchState::Unknown;
    }
}

constexpr qint64 start = 1'800'000'000'000; // ms since the epoch, beyond 32 bits
} // namespace

Q_DECLARE_METATYPE(Polls)

class TestPressTimer : public QObject
{
    Q_OBJECT
private slots:
    void fires_data();
    void fires();
};

void TestPressTimer::fires_data()
{
    QTest::addColumn<Polls>("polls");
    QTest::addColumn<QList<int>>("firing"); // indexes of the polls that fire
    using Firing = QList<int>;
    QTest::newRow("first down never fires") << Polls{{'d', start}} << Firing{};
    QTest::newRow("2100 ms") << Polls{{'d', start}, {'d', start + 2100}} << Firing{1};
    QTest::newRow("1900 ms, then 2300 ms")
        << Polls{{'d', start}, {'d', start + 1900}, {'d', start + 2300}} << Firing{2};
    QTest::newRow("2000 ms is too short") << Polls{{'d', start}, {'d', start + 2000}} << Firing{};
    QTest::newRow("2001 ms is enough") << Polls{{'d', start}, {'d', start + 2001}} << Firing{1};
    QTest::newRow("release restarts")
        << Polls{{'d', start}, {'u', start + 1000}, {'d', start + 1200}, {'d', start + 3100}}
        << Firing{};
    QTest::newRow("release restarts, then held")
        << Polls{{'d', start}, {'u', start + 1000}, {'d', start + 1200}, {'d', start + 3201}}
        << Firing{3};
    QTest::newRow("unknown keeps counting")
        << Polls{{'d', start}, {'?', start + 500}, {'?', start + 2500}, {'d', start + 2600}}
        << Firing{3};
    QTest::newRow("unknown keeps idle")
        << Polls{{'u', start}, {'?', start + 9000}, {'d', start + 9001}} << Firing{};
    QTest::newRow("restarts after firing")
        << Polls{{'d', start}, {'d', start + 2500}, {'d', start + 2600}, {'d', start + 4700}}
        << Firing{1, 3};
    QTest::newRow("clock jumps back: waits until it catches up")
        << Polls{{'d', start}, {'d', start - 60000}, {'d', start + 1900}, {'d', start + 2001}}
        << Firing{3};
    QTest::newRow("clock jumps forward: fires early")
        << Polls{{'d', start}, {'d', start + 3600000}} << Firing{1};
    // The difference is an int: it turns negative after 2^31 ms and starts again at 0 after 2^32.
    QTest::newRow("jump of 25 days")
        << Polls{{'d', start}, {'d', start + 2147483648LL}} << Firing{};
    QTest::newRow("jump of nearly 25 days")
        << Polls{{'d', start}, {'d', start + 2147483647LL}} << Firing{1};
    QTest::newRow("jump of 50 days")
        << Polls{{'d', start}, {'d', start + 4294967296LL + 1000}} << Firing{};
    QTest::newRow("clock at 0 counts") << Polls{{'d', 0}, {'d', 2001}} << Firing{1};
    QTest::newRow("clock before the epoch does not count")
        << Polls{{'d', -5000}, {'d', -2000}, {'d', -1}, {'d', 1999}} << Firing{};
}

void TestPressTimer::fires()
{
    QFETCH(Polls, polls);
    QFETCH(QList<int>, firing);
    PressTimer timer;
    QList<int> fired;
    for (int index = 0; index < polls.size(); ++index) {
        if (timer.poll(stateOf(polls.at(index).state), polls.at(index).time)) {
            fired += index;
        }
    }
    QCOMPARE(fired, firing);
}

QTEST_GUILESS_MAIN(TestPressTimer)
#include "tst_presstimer.moc"
