#include "inputpanel/keypadposition.h"

#include <QTest>

class TestKeypadPosition : public QObject
{
    Q_OBJECT
private slots:
    void places_data();
    void places();
    void shifts_data();
    void shifts();
};

void TestKeypadPosition::places_data()
{
    QTest::addColumn<QRect>("field");
    QTest::addColumn<QRect>("available");
    QTest::addColumn<QPoint>("position");
    constexpr QRect landscape(0, 0, 800, 600);
    constexpr QRect portrait(0, 0, 480, 800);
    const auto row
        = [](const char *name, const QRect &field, const QRect &available, const QPoint &position) {
              QTest::newRow(name) << field << available << position;
          };
    // The last row of a field is y + height - 1. The keypad is 296 px high and starts two rows
    // below that.
    row("top", {151, 100, 300, 34}, landscape, {151, 135});
    row("bottom", {151, 500, 300, 34}, landscape, {151, 204});
    row("top edge", {0, 0, 300, 34}, landscape, {0, 35});
    row("bottom edge", {0, 566, 300, 34}, landscape, {0, 270});
    row("just fits", {0, 268, 300, 34}, landscape, {0, 303});
    row("one row too low", {0, 269, 300, 34}, landscape, {0, -27});
    row("right edge: never shifted", {790, 100, 300, 34}, landscape, {790, 135});
    row("left of the screen: never shifted", {-50, 100, 300, 34}, landscape, {-50, 135});
    row("portrait", {151, 400, 300, 34}, portrait, {151, 435});
    row("portrait, bottom", {151, 700, 300, 34}, portrait, {151, 404});
    row("a panel at the bottom takes room", {0, 260, 300, 34}, {0, 0, 800, 560}, {0, -36});
    row("a panel at the top does not matter", {0, 260, 300, 34}, {0, 40, 800, 560}, {0, 295});
    row("no room on either side: above", {0, 150, 300, 34}, {0, 0, 800, 400}, {0, -146});
}

void TestKeypadPosition::places()
{
    QFETCH(QRect, field);
    QFETCH(QRect, available);
    QFETCH(QPoint, position);
    QCOMPARE(keypadPosition(field, 296, available), position);
}

void TestKeypadPosition::shifts_data()
{
    QTest::addColumn<QRect>("field");
    QTest::addColumn<int>("height");
    QTest::addColumn<int>("shift");
    QTest::newRow("room below") << QRect(0, 100, 300, 34) << 600 << 0;
    QTest::newRow("room above") << QRect(0, 500, 300, 34) << 600 << 0;
    QTest::newRow("just room above") << QRect(0, 296, 300, 34) << 480 << 0;
    QTest::newRow("no room") << QRect(0, 200, 300, 34) << 480 << 96;
    QTest::newRow("field at the bottom") << QRect(0, 200, 300, 34) << 330 << 96;
    QTest::newRow("screen too low for both") << QRect(0, 200, 300, 34) << 329 << 0;
}

void TestKeypadPosition::shifts()
{
    QFETCH(QRect, field);
    QFETCH(int, height);
    QFETCH(int, shift);
    QCOMPARE(keypadShift(field, 296, QRect(0, 0, 800, height)), shift);
}

QTEST_GUILESS_MAIN(TestKeypadPosition)
#include "tst_keypadposition.moc"
