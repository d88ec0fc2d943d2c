#include "widgets/startingapplicationaniationbutton.h"

#include "layermodel.h"

#include <QElapsedTimer>
#include <QFontMetrics>
#include <QSignalSpy>
#include <QTest>
#include <QtMath>

namespace {
constexpr QSize buttonSize(400, 300);
constexpr QPoint centre(200, 150);
constexpr int second = 1000;               // ms
constexpr int overOneTick = 1200;          // ms
constexpr int timerTolerance = second / 5; // ms by which a tick may come early
/// The area of the ring, where pixels differ from the layers below it.
constexpr QRect ringArea(110, 60, 180, 180);

const QList<QColor> ringColors{Qt::red, Qt::magenta, Qt::yellow, Qt::green, Qt::blue, Qt::white};

QImage painted(QWidget &button)
{
    return button.grab().toImage().convertToFormat(QImage::Format_ARGB32_Premultiplied);
}

/// Radius of the ring around a number of one digit, in px.
int ringRadius(const QWidget &button)
{
    const QFontMetrics metrics(button.font());
    return qMax(metrics.height(), metrics.horizontalAdvance('5'));
}

/// The count that the colour of the ring stands for; -1 if there is no ring. Looks at the radius
/// of the ring, outside the number.
int ringCount(StartingApplicationAniationButton &button)
{
    const int radius = ringRadius(button);
    const QImage image = painted(button);
    for (int degree = 0; degree < 360; ++degree) {
        const double angle = qDegreesToRadians(double(degree));
        const QPoint at = centre + QPoint(int(radius * qCos(angle)), int(radius * qSin(angle)));
        const qsizetype count = ringColors.indexOf(image.pixelColor(at));
        if (count >= 0) {
            return int(count);
        }
    }
    return -1;
}

LayerModel computed(bool pressed)
{
    const QRect rect(QPoint(0, 0), buttonSize);
    LayerModel model(buttonSize, Qt::black);
    if (!pressed) {
        model.addShadow(rect);
        model.addBarShadow(rect);
        model.addLinearGradient(rect);
        model.addHighlight(rect);
    }
    return model;
}

bool isLit(const QImage &image, int x, int y)
{
    return qGray(image.pixel(x, y)) > 127;
}

/// Whether the pixel @p arc pixels clockwise from the right end of a circle around @p middle is
/// lit.
bool isLitAtArc(const QImage &image, QPointF middle, double radius, double arc)
{
    const double angle = arc / radius;
    return isLit(image, qFloor(middle.x() + radius * qCos(angle)),
                 qFloor(middle.y() + radius * qSin(angle)));
}

bool holdsWhite(const QImage &image, const QRect &area)
{
    for (int y = area.top(); y <= area.bottom(); ++y) {
        for (int x = area.left(); x <= area.right(); ++x) {
            if (image.pixelColor(x, y) == QColor(Qt::white)) {
                return true;
            }
        }
    }
    return false;
}
} // namespace

class TestCountDown : public QObject
{
    Q_OBJECT
private slots:
    void usesLargeBoldFont();
    void countsDownForSixSeconds();
    void touchStopsTheCount();
    void showingAgainRestarts();
    void paintsAsComputed();
    void ringIsADottedCircle_data();
    void ringIsADottedCircle();
    void slidingOffCountsAsTouch();
};

void TestCountDown::usesLargeBoldFont()
{
    const StartingApplicationAniationButton button;
    QCOMPARE(button.font().pixelSize(), 40);
    QCOMPARE(button.font().weight(), QFont::Bold);
}

void TestCountDown::countsDownForSixSeconds()
{
    StartingApplicationAniationButton button;
    button.resize(buttonSize);
    QSignalSpy zero(&button, &StartingApplicationAniationButton::countDownToZero);
    button.show();
    QElapsedTimer timer;
    timer.start();
    for (int count = 5; count >= 0; --count) {
        QTRY_COMPARE_WITH_TIMEOUT(ringCount(button), count, 2 * second);
        QVERIFY(timer.elapsed() >= (5 - count) * second - timerTolerance);
        QCOMPARE(zero.count(), 0);
    }
    QVERIFY(zero.wait(2 * second));
    QVERIFY2(timer.elapsed() > 5700 && timer.elapsed() < 8000,
             qPrintable(QString::number(timer.elapsed())));
    // After the end there is no ring, not even a black one, but the number stays.
    const QRect number(centre - QPoint(30, 20), QSize(60, 40));
    QCOMPARE(computed(false).difference(painted(button), number), QString());
    QVERIFY(holdsWhite(painted(button), number));
    QTest::qWait(overOneTick); // the signal must not come again
    QCOMPARE(zero.count(), 1);
}

void TestCountDown::touchStopsTheCount()
{
    StartingApplicationAniationButton button;
    button.resize(buttonSize);
    QSignalSpy zero(&button, &StartingApplicationAniationButton::countDownToZero);
    QSignalSpy clicked(&button, &StartingApplicationAniationButton::buttonClicked);
    button.show();
    QTRY_COMPARE(ringCount(button), 3);
    QTest::mousePress(&button, Qt::LeftButton);
    QCOMPARE(clicked.count(), 0);
    QTest::mouseRelease(&button, Qt::LeftButton);
    QCOMPARE(clicked.count(), 1);
    QTest::qWait(overOneTick); // the count must not go on
    QCOMPARE(ringCount(button), 3);
    QCOMPARE(zero.count(), 0);
    QTest::mouseClick(&button, Qt::LeftButton);
    QCOMPARE(clicked.count(), 2);
}

void TestCountDown::showingAgainRestarts()
{
    StartingApplicationAniationButton button;
    button.resize(buttonSize);
    QSignalSpy zero(&button, &StartingApplicationAniationButton::countDownToZero);
    button.show();
    QTRY_COMPARE(ringCount(button), 4);
    button.hide();
    button.show();
    QElapsedTimer timer;
    timer.start();
    QCOMPARE(ringCount(button), 5);
    QVERIFY(zero.wait(8 * second));
    // The timer of the first show still runs, but must not count.
    QVERIFY2(timer.elapsed() > 5700 && timer.elapsed() < 8000,
             qPrintable(QString::number(timer.elapsed())));
    QTest::qWait(overOneTick); // the signal must not come again
    QCOMPARE(zero.count(), 1);
}

void TestCountDown::paintsAsComputed()
{
    StartingApplicationAniationButton button;
    button.resize(buttonSize);
    QCOMPARE(computed(false).difference(painted(button), ringArea), QString());
    QCOMPARE(ringCount(button), 5);
    button.setPressed(true);
    QCOMPARE(computed(true).difference(painted(button), ringArea), QString());
    QCOMPARE(ringCount(button), 5);
    button.setPressed(false);
    QCOMPARE(computed(false).difference(painted(button), ringArea), QString());
}

void TestCountDown::ringIsADottedCircle_data()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<int>("fontSize");
    QTest::newRow("default") << buttonSize << 40;
    QTest::newRow("other size") << QSize(300, 500) << 40;
    QTest::newRow("other font") << buttonSize << 61;
}

/// A dot is one pen width long, and two pen widths lie between dots. The square cap adds half a
/// width at each end.
void TestCountDown::ringIsADottedCircle()
{
    QFETCH(QSize, size);
    QFETCH(int, fontSize);
    constexpr int width = 10; // px
    StartingApplicationAniationButton button;
    QFont font = button.font();
    font.setPixelSize(fontSize);
    button.setFont(font);
    button.resize(size);
    button.setPressed(true); // then only the ring and the number are not black
    const QImage image = painted(button);
    const int radius = ringRadius(button);
    const QPoint middle(size.width() / 2, size.height() / 2);

    QList<int> lit; // x of lit pixels right of the number, in the middle row
    for (int x = middle.x() + radius / 2; x < size.width(); ++x) {
        if (isLit(image, x, middle.y())) {
            lit += x - middle.x() - radius;
        }
    }
    QCOMPARE(lit, (QList<int>{-5, -4, -3, -2, -1, 0, 1, 2, 3, 4}));

    const int dots = int(2 * M_PI * radius) / (3 * width); // the last dot may be shorter
    for (int dot = 0; dot < dots; ++dot) {
        const int start = dot * 3 * width;
        for (const int arc : {-3, 0, 5, 10, 13}) {
            QVERIFY2(isLitAtArc(image, middle, radius, start + arc),
                     qPrintable(QString("dot %1, %2").arg(dot).arg(arc)));
        }
        for (const int arc : {17, 20, 23}) {
            QVERIFY2(!isLitAtArc(image, middle, radius, start + arc),
                     qPrintable(QString("dot %1, %2").arg(dot).arg(arc)));
        }
    }
}

void TestCountDown::slidingOffCountsAsTouch()
{
    StartingApplicationAniationButton button;
    button.resize(buttonSize);
    QSignalSpy clicked(&button, &StartingApplicationAniationButton::buttonClicked);
    QTest::mousePress(&button, Qt::LeftButton, {}, centre);
    QTest::mouseRelease(&button, Qt::LeftButton, {}, QPoint(5000, -1));
    QCOMPARE(clicked.count(), 1);
}

QTEST_MAIN(TestCountDown)
#include "tst_countdown.moc"
