#include "widgets/lineeditwithkeypad.h"
#include "widgets/radiobutton.h"
#include "widgets/touchstyle.h"

#include "layermodel.h"

#include <QApplication>
#include <QComboBox>
#include <QMessageBox>
#include <QPainter>
#include <QPushButton>
#include <QScrollBar>
#include <QSpinBox>
#include <QStyle>
#include <QStyleOptionButton>
#include <QTest>
#include <QToolButton>

#include <algorithm>
#include <cmath>

namespace {
constexpr QSize buttonSize(200, 40);

QRect elementRect(const RadioButton &button, QStyle::SubElement element)
{
    QStyleOptionButton option;
    option.initFrom(&button);
    option.text = button.text();
    return button.style()->subElementRect(element, &option, &button);
}

bool isOn(int x, int y, const QRect &outline)
{
    const bool inside = outline.contains(x, y);
    return inside && !outline.adjusted(1, 1, -1, -1).contains(x, y);
}

/// Alpha of the gloss at a pixel of a dot. The gloss is white with alpha 170 in its centre and was
/// computed for a square of the side @p side.
double glossAlpha(int x, int y, int side)
{
    const int radius = side / 2;
    const double distance = std::hypot(x + 0.5 - radius, y + 0.5 - radius);
    return 170 * std::max(0.0, 1 - distance / radius);
}

/// Relative luminance of a colour, from 0 to 1.
double luminance(const QColor &color)
{
    const auto linear = [](double part) {
        return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF())
        + 0.0722 * linear(color.blueF());
}
} // namespace

class TestTouchWidgets : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void lineEditTexts();
    void lineEditFont();
    void uncheckedRadioButton();
    void checkedRadioButton();
    void textColorFollowsTheState();
    void glossIsComputedOnlyOnce();
    void uncheckingRemovesTheDot();
    void wholeRowReacts();
    void scrollBarsAreWideEnough();
    void pushButtonsAreLargeEnough();
    void toolButtonsAreHighEnough();
    void dialogsHaveAFrame();
    void otherWindowsHaveNoFrame();
    void boxButtonsHaveNoIcons();
    void spinButtonsShowThatTheyArePressed();
    void listBoxesShowALargeArrow();
    void textHasContrast_data();
    void textHasContrast();
};

void TestTouchWidgets::initTestCase()
{
    QApplication::setStyle(new TouchStyle);
}

void TestTouchWidgets::lineEditTexts()
{
    QCOMPARE(LineEditWithKeyPad().text(), QString("127.0.0.1"));
    QCOMPARE(LineEditWithKeyPad(QString("1.2.3.4")).text(), QString("1.2.3.4"));
    QCOMPARE(LineEditWithKeyPad(QString()).text(), QString());
}

void TestTouchWidgets::lineEditFont()
{
    QWidget window;
    QFont font = window.font();
    font.setPixelSize(10);
    font.setItalic(true);
    window.setFont(font);
    const LineEditWithKeyPad edit(&window);
    QCOMPARE(edit.font().pixelSize(), 24);
    QCOMPARE(edit.font().weight(), QFont::Bold);
    QVERIFY(edit.font().italic()); // all else is inherited
}

void TestTouchWidgets::uncheckedRadioButton()
{
    RadioButton button;
    button.resize(buttonSize);
    const QImage image = paintedImage(button);
    const QRect box = elementRect(button, QStyle::SE_RadioButtonIndicator);
    QCOMPARE(box.size(), QSize(25, 25));
    const QRect outline = box.adjusted(1, 1, -1, -1);
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            QColor expected(Qt::cyan);
            if (isOn(x, y, outline)) {
                expected = Qt::black;
            } else if (box.contains(x, y)) {
                expected = Qt::gray;
            }
            QVERIFY2(image.pixelColor(x, y) == expected,
                     qPrintable(QString("%1, %2").arg(x).arg(y)));
        }
    }
}

void TestTouchWidgets::checkedRadioButton()
{
    RadioButton button;
    button.resize(buttonSize);
    button.setChecked(true);
    const QImage image = paintedImage(button);
    const QRect box = elementRect(button, QStyle::SE_RadioButtonIndicator);
    const QRect dot(box.left() + 2, box.top() + 2, 20, 20);
    QCOMPARE(image.pixelColor(box.topLeft()), QColor(Qt::white));
    QCOMPARE(image.pixelColor(box.topLeft() + QPoint(1, 1)), QColor(Qt::black));
    QCOMPARE(image.pixelColor(box.topLeft() + QPoint(2, 2)), QColor(Qt::white)); // beside the dot
    for (int y = dot.top(); y < dot.bottom(); ++y) {
        for (int x = dot.left(); x < dot.right(); ++x) {
            if (std::hypot(x + 0.5 - dot.center().x() - 0.5, y + 0.5 - dot.center().y() - 0.5)
                > 8) {
                continue; // the black outline
            }
            const double alpha = glossAlpha(x, y, 20); // relative to the corner of the widget
            const QColor pixel = image.pixelColor(x, y);
            QVERIFY(qAbs(pixel.red() - alpha) <= 2);
            QVERIFY(qAbs(pixel.blue() - alpha) <= 2);
            QCOMPARE(pixel.green(), 255);
        }
    }
}

void TestTouchWidgets::textColorFollowsTheState()
{
    RadioButton button("HHH");
    QFont font = button.font();
    font.setPixelSize(24);
    font.setBold(true);
    button.setFont(font);
    button.resize(buttonSize);
    const QRect text = elementRect(button, QStyle::SE_RadioButtonContents);
    const auto holds = [&](const QColor &color) {
        const QImage image = paintedImage(button);
        for (int y = text.top(); y <= text.bottom(); ++y) {
            for (int x = text.left(); x <= text.right(); ++x) {
                if (image.rect().contains(x, y) && image.pixelColor(x, y) == color) {
                    return true;
                }
            }
        }
        return false;
    };
    QVERIFY(holds(Qt::gray));
    QVERIFY(!holds(Qt::white));
    button.setChecked(true);
    QVERIFY(holds(Qt::white));
    QVERIFY(!holds(Qt::gray));
}

void TestTouchWidgets::glossIsComputedOnlyOnce()
{
    RadioButton early;
    early.resize(buttonSize);
    early.setChecked(true);
    early.getIndicatorRadialGradient(QRect(0, 0, 100, 100)); // like a first paint at another size
    RadioButton late;
    late.resize(buttonSize);
    late.setChecked(true);
    QVERIFY(paintedImage(early) != paintedImage(late));
    const QImage before = paintedImage(late);
    late.resize(400, 90);
    const QRect box = elementRect(late, QStyle::SE_RadioButtonIndicator);
    late.resize(buttonSize);
    QCOMPARE(paintedImage(late), before);
    QVERIFY(box.top() > 30); // the dot of a taller button lies below the gloss
    late.resize(400, 90);
    QCOMPARE(paintedImage(late).pixelColor(box.center()), QColor(Qt::green));
}

void TestTouchWidgets::uncheckingRemovesTheDot()
{
    RadioButton button;
    button.setAutoExclusive(false);
    button.resize(buttonSize);
    const QImage unchecked = paintedImage(button);
    button.setChecked(true);
    QVERIFY(paintedImage(button) != unchecked);
    button.setChecked(false);
    QCOMPARE(paintedImage(button), unchecked);
}

void TestTouchWidgets::wholeRowReacts()
{
    RadioButton button("x");
    button.resize(400, 40);
    QTest::mouseClick(&button, Qt::LeftButton, {}, QPoint(390, 5));
    QVERIFY(button.isChecked());
}

void TestTouchWidgets::scrollBarsAreWideEnough()
{
    QCOMPARE(QScrollBar(Qt::Vertical).sizeHint().width(), 28);
    QCOMPARE(QScrollBar(Qt::Horizontal).sizeHint().height(), 28);
}

void TestTouchWidgets::pushButtonsAreLargeEnough()
{
    QPushButton button("x");
    QCOMPARE(button.sizeHint(), QSize(120, 48));
    QFont font = button.font();
    font.setPixelSize(60);
    button.setFont(font);
    button.setText("not cut");
    const QSize text = button.fontMetrics().size(Qt::TextSingleLine, button.text());
    QVERIFY(text.width() > 120);
    QVERIFY(button.sizeHint().width() > text.width());
    QVERIFY(button.sizeHint().height() > text.height());
}

void TestTouchWidgets::toolButtonsAreHighEnough()
{
    QToolButton button;
    button.setText("x");
    QCOMPARE(button.sizeHint().height(), 44);
    QVERIFY(button.sizeHint().width() < 60); // only as wide as its text
    QFont font = button.font();
    font.setPixelSize(60);
    button.setFont(font);
    QVERIFY(button.sizeHint().height() > 60);
}

void TestTouchWidgets::dialogsHaveAFrame()
{
    QDialog plain;
    QMessageBox box(QMessageBox::Warning, "title", "text", QMessageBox::Ok);
    for (QDialog *dialog : {&plain, static_cast<QDialog *>(&box)}) {
        dialog->resize(dialog->sizeHint().expandedTo(QSize(200, 100)));
        const QImage image = dialog->grab().toImage();
        const QRect inside = image.rect().adjusted(3, 3, -3, -3);
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                if (!inside.contains(x, y)) {
                    QCOMPARE(image.pixelColor(x, y), QColor(192, 104, 31));
                }
            }
        }
        const QColor window = dialog->palette().color(QPalette::Window);
        QCOMPARE(image.pixelColor(inside.topLeft()), window);
        QCOMPARE(image.pixelColor(inside.bottomRight()), window);
    }
}

void TestTouchWidgets::otherWindowsHaveNoFrame()
{
    QWidget window;
    window.resize(200, 100);
    QCOMPARE(window.grab().toImage().pixelColor(0, 0), window.palette().color(QPalette::Window));
    QDialog dialog;
    QWidget part(&dialog);
    part.setAttribute(Qt::WA_StyledBackground); // the style paints it like a dialog
    part.resize(200, 100);
    QCOMPARE(part.grab().toImage().pixelColor(0, 0), part.palette().color(QPalette::Window));
}

void TestTouchWidgets::boxButtonsHaveNoIcons()
{
    const QMessageBox box(QMessageBox::Warning, "title", "text",
                          QMessageBox::Ok | QMessageBox::Cancel | QMessageBox::Save);
    QCOMPARE(box.buttons().size(), 3);
    for (const QAbstractButton *button : box.buttons()) {
        QVERIFY2(button->icon().isNull(), qPrintable(button->text()));
    }
}

void TestTouchWidgets::spinButtonsShowThatTheyArePressed()
{
    QSpinBox box;
    box.resize(box.sizeHint());
    QStyleOptionSpinBox option;
    option.initFrom(&box);
    const auto rect = [&](QStyle::SubControl control) {
        return box.style()->subControlRect(QStyle::CC_SpinBox, &option, control, &box);
    };
    QCOMPARE(rect(QStyle::SC_SpinBoxFrame), box.rect());
    const QRect up = rect(QStyle::SC_SpinBoxUp);
    const QRect down = rect(QStyle::SC_SpinBoxDown);
    const QImage before = box.grab().toImage();
    QTest::mousePress(&box, Qt::LeftButton, {}, up.center());
    const QImage pressed = box.grab().toImage();
    QTest::mouseRelease(&box, Qt::LeftButton, {}, up.center());
    const QImage after = box.grab().toImage();
    QVERIFY(pressed.copy(up) != before.copy(up));
    QVERIFY(pressed.copy(down) == before.copy(down));
    QVERIFY(after.copy(up) == before.copy(up));
}

void TestTouchWidgets::listBoxesShowALargeArrow()
{
    QComboBox box;
    box.addItem("60 Mins");
    box.resize(box.sizeHint());
    QStyleOptionComboBox option;
    option.initFrom(&box);
    const QRect place
        = box.style()->subControlRect(QStyle::CC_ComboBox, &option, QStyle::SC_ComboBoxArrow, &box);
    const QRect text = box.style()->subControlRect(QStyle::CC_ComboBox, &option,
                                                   QStyle::SC_ComboBoxEditField, &box);
    QCOMPARE(place.width(), 44);
    QVERIFY(box.rect().contains(place));
    QVERIFY(!text.intersects(place));
    QVERIFY(text.width() >= box.fontMetrics().horizontalAdvance("60 Mins"));
    const QImage image = box.grab().toImage();
    const QPoint middle = place.center();
    const QColor brush = box.palette().color(QPalette::ButtonText);
    QCOMPARE(image.pixelColor(middle), brush);
    QCOMPARE(image.pixelColor(middle + QPoint(-6, -4)), brush); // the arrow points down
    QCOMPARE(image.pixelColor(middle + QPoint(6, -4)), brush);
    QVERIFY(image.pixelColor(middle + QPoint(-6, 3)) != brush);
}

void TestTouchWidgets::textHasContrast_data()
{
    QTest::addColumn<QPalette::ColorRole>("text");
    QTest::addColumn<QPalette::ColorRole>("background");
    QTest::newRow("window") << QPalette::WindowText << QPalette::Window;
    QTest::newRow("field") << QPalette::Text << QPalette::Base;
    QTest::newRow("button") << QPalette::ButtonText << QPalette::Button;
    QTest::newRow("chosen") << QPalette::HighlightedText << QPalette::Highlight;
}

/// Contrast ratio as in WCAG, which asks for 4.5 for text of any size.
void TestTouchWidgets::textHasContrast()
{
    QFETCH(const QPalette::ColorRole, text);
    QFETCH(const QPalette::ColorRole, background);
    for (const auto group : {QPalette::Active, QPalette::Inactive}) {
        const QPalette palette = QApplication::palette();
        const double one = luminance(palette.color(group, text));
        const double other = luminance(palette.color(group, background));
        QVERIFY((std::max(one, other) + 0.05) / (std::min(one, other) + 0.05) >= 4.5);
    }
}

QTEST_MAIN(TestTouchWidgets)
#include "tst_touchwidgets.moc"
