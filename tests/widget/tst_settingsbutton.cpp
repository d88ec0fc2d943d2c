#include "widgets/settingsbutton.h"

#include "layermodel.h"

#include <QSignalSpy>
#include <QTest>

namespace {
constexpr QSize buttonSize(200, 60);
/// The area of the text, where pixels differ from the layers below it.
constexpr QRect textArea(30, 10, 140, 40);

LayerModel computed(const QRect &rect, bool highlight)
{
    LayerModel model(rect.size(), Qt::black);
    model.addShadow(rect);
    model.addBarShadow(rect);
    model.addLinearGradient(rect);
    if (highlight) {
        model.addHighlight(rect);
    }
    return model;
}

/// The smallest rectangle around all pixels that differ.
QRect differingArea(const QImage &one, const QImage &other)
{
    QRect area;
    for (int y = 0; y < one.height(); ++y) {
        for (int x = 0; x < one.width(); ++x) {
            if (one.pixel(x, y) != other.pixel(x, y)) {
                area |= QRect(x, y, 1, 1);
            }
        }
    }
    return area;
}

bool holdsColor(const QImage &image, const QColor &color)
{
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (image.pixelColor(x, y) == color) {
                return true;
            }
        }
    }
    return false;
}

class CountingButton : public SettingsButton
{
public:
    using SettingsButton::SettingsButton;
    int paints = 0;

    /// Repaints since the last call.
    int newPaints()
    {
        QCoreApplication::processEvents();
        return std::exchange(paints, 0);
    }

protected:
    void paintEvent(QPaintEvent *event) override
    {
        ++paints;
        SettingsButton::paintEvent(event);
    }
};
} // namespace

class TestSettingsButton : public QObject
{
    Q_OBJECT
private slots:
    void constructorsSetTheFont();
    void paintsAsComputed_data();
    void paintsAsComputed();
    void pressedIsBlack();
    void roundedKeepsItsCorners();
    void drawsTextInTheCentre();
    void disabledLook();
    void shrinksTextThatDoesNotFit();
    void emitsOnEveryRelease();
    void pressingDisabled();
    void repaintsOnlyOnChange();
};

void TestSettingsButton::constructorsSetTheFont()
{
    QWidget window;
    QFont font = window.font();
    font.setPixelSize(28);
    window.setFont(font);
    const SettingsButton sized("text", 18, &window);
    QCOMPARE(sized.font().pixelSize(), 18);
    const SettingsButton sizedAndRounded("text", 18, true, &window);
    QCOMPARE(sizedAndRounded.font().pixelSize(), 28); // ignores the size
    const SettingsButton rounded("text", true, &window);
    QCOMPARE(rounded.font().pixelSize(), 28);
    const SettingsButton plain(QString("text"), &window);
    QCOMPARE(plain.font().pixelSize(), 28);
    const SettingsButton empty(&window);
    QCOMPARE(empty.font().pixelSize(), 28);
}

void TestSettingsButton::paintsAsComputed_data()
{
    QTest::addColumn<QSize>("size");
    for (const QSize size : {buttonSize, QSize(100, 32), QSize(101, 33), QSize(23, 60),
                             QSize(60, 7), QSize(5, 5), QSize(1, 1)}) {
        QTest::addRow("%dx%d", size.width(), size.height()) << size;
    }
}

void TestSettingsButton::paintsAsComputed()
{
    QFETCH(QSize, size);
    SettingsButton button;
    button.resize(size);
    QCOMPARE(computed(button.rect(), true).difference(paintedImage(button)), QString());
    button.setEnabled(false);
    QCOMPARE(computed(button.rect(), false).difference(paintedImage(button)), QString());
}

void TestSettingsButton::pressedIsBlack()
{
    SettingsButton button;
    button.resize(buttonSize);
    button.setPressed(true);
    QCOMPARE(LayerModel(buttonSize, Qt::black).difference(paintedImage(button)), QString());
    button.setPressed(false);
    QCOMPARE(computed(button.rect(), true).difference(paintedImage(button)), QString());
}

void TestSettingsButton::roundedKeepsItsCorners()
{
    for (SettingsButton *button :
         {new SettingsButton("", true), new SettingsButton("", 18, true)}) {
        button->resize(buttonSize);
        button->setPressed(true);
        const QImage image = paintedImage(*button);
        for (const QPoint corner : {QPoint(0, 0), QPoint(199, 0), QPoint(0, 59), QPoint(199, 59)}) {
            QCOMPARE(image.pixelColor(corner), QColor(Qt::cyan));
        }
        // The corner is 20 px wide and 15 px high; the edge after it is black.
        QCOMPARE(image.pixelColor(21, 1), QColor(Qt::black));
        QCOMPARE(image.pixelColor(1, 16), QColor(Qt::black));
        QCOMPARE(image.pixelColor(100, 30), QColor(Qt::black));
        delete button;
    }
    SettingsButton plain(QString(""), false);
    plain.resize(buttonSize);
    plain.setPressed(true);
    QCOMPARE(paintedImage(plain).pixelColor(0, 0), QColor(Qt::black));
}

void TestSettingsButton::drawsTextInTheCentre()
{
    SettingsButton empty;
    empty.resize(buttonSize);
    SettingsButton button("HHHH", 20);
    button.resize(buttonSize);
    button.setPressed(true);
    empty.setPressed(true);
    const QImage image = paintedImage(button);
    QVERIFY(holdsColor(image, Qt::white));
    const QRect text = differingArea(image, paintedImage(empty));
    QVERIFY2(qAbs(text.center().x() - 99) <= 2, qPrintable(QString::number(text.center().x())));
    QVERIFY2(qAbs(text.center().y() - 30) <= 4, qPrintable(QString::number(text.center().y())));
    button.setText("");
    QCOMPARE(paintedImage(button), paintedImage(empty));
}

void TestSettingsButton::disabledLook()
{
    SettingsButton disabled("COM Port", 20);
    disabled.setEnabled(false);
    SettingsButton homeKey("Home Key", 20);
    SettingsButton usual("Ethernet", 20);
    for (SettingsButton *button : {&disabled, &homeKey, &usual}) {
        button->resize(buttonSize);
        const bool usualLook = button == &usual;
        QCOMPARE(computed(button->rect(), usualLook).difference(paintedImage(*button), textArea),
                 QString());
        button->setPressed(true);
        QCOMPARE(holdsColor(paintedImage(*button), Qt::white), usualLook);
        QCOMPARE(holdsColor(paintedImage(*button), Qt::gray), !usualLook);
    }
}

void TestSettingsButton::shrinksTextThatDoesNotFit()
{
    SettingsButton empty;
    SettingsButton button("Miscellaneous", 40);
    for (const int width : {400, 200, 120, 70}) {
        const QSize size(width, 60);
        button.resize(size);
        empty.resize(size);
        const QRect text = differingArea(paintedImage(button), paintedImage(empty));
        QVERIFY2(text.left() > 0 && text.right() < width - 1, qPrintable(QString::number(width)));
        if (width == 400) {
            QVERIFY(text.width() > 250); // full size where there is room
        } else {
            QVERIFY(text.width() > width * 7 / 10); // not smaller than necessary
        }
    }
    QCOMPARE(button.font().pixelSize(), 40);
}

void TestSettingsButton::emitsOnEveryRelease()
{
    SettingsButton button("x", 18);
    button.resize(buttonSize);
    QSignalSpy clicked(&button, &SettingsButton::buttonClicked);
    QTest::mousePress(&button, Qt::LeftButton);
    QCOMPARE(clicked.count(), 0);
    QVERIFY(LayerModel(buttonSize, Qt::black).difference(paintedImage(button), textArea).isEmpty());
    QTest::mouseRelease(&button, Qt::LeftButton);
    QCOMPARE(clicked.count(), 1);
    QTest::mousePress(&button, Qt::LeftButton);
    QTest::mouseRelease(&button, Qt::LeftButton, {}, QPoint(-50, 500)); // the finger slid off
    QCOMPARE(clicked.count(), 2);
    QVERIFY(computed(button.rect(), true).difference(paintedImage(button), textArea).isEmpty());
}

void TestSettingsButton::pressingDisabled()
{
    SettingsButton title("TALMERO", 20);
    title.resize(buttonSize);
    title.setPressEnabled(false);
    QSignalSpy clicked(&title, &SettingsButton::buttonClicked);
    QTest::mousePress(&title, Qt::LeftButton);
    QCOMPARE(computed(title.rect(), true).difference(paintedImage(title), textArea), QString());
    QTest::mouseRelease(&title, Qt::LeftButton);
    QCOMPARE(clicked.count(), 0);
    title.setPressEnabled(true);
    QTest::mouseClick(&title, Qt::LeftButton);
    QCOMPARE(clicked.count(), 1);
}

void TestSettingsButton::repaintsOnlyOnChange()
{
    CountingButton button(QString("x"));
    button.show();
    QVERIFY(QTest::qWaitForWindowExposed(&button));
    button.newPaints();
    button.setText("x");
    button.setPressed(false);
    button.setPressEnabled(false);
    QCOMPARE(button.newPaints(), 0);
    button.setText("y");
    QCOMPARE(button.newPaints(), 1);
    button.setPressed(true);
    QCOMPARE(button.newPaints(), 1);
    button.setFontPixelSize(31);
    QCOMPARE(button.newPaints(), 1);
    button.setFontPixelSize(31);
    QCOMPARE(button.newPaints(), 0);
}

QTEST_MAIN(TestSettingsButton)
#include "tst_settingsbutton.moc"
