#include "picturecompare.h"

#include <QFont>
#include <QImage>
#include <QLinearGradient>
#include <QPainter>
#include <QTest>

#include <functional>

namespace {
constexpr QSize pageSize(420, 320); // px; no multiple of the squares that are compared
constexpr int rowHeight = 44;

/// What a page shows, and how its text is drawn.
struct Page
{
    QStringList rows{"Mouse :", "Display Orientation :", "Buzzer :", "Screen Saving :"};
    QRect button{250, 260, 120, 48};
    QColor headingColor{192, 104, 31};
    QFont::HintingPreference hinting = QFont::PreferDefaultHinting;
    qreal textShift = 0; // px to the right
    int shades = 256;    // of each colour
    int textSize = 16;   // px; the smallest of the program
};

QImage withShades(const QImage &image, int shades)
{
    QImage reduced = image;
    const int step = 256 / shades;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const QColor color = image.pixelColor(x, y);
            reduced.setPixelColor(x, y,
                                  QColor(color.red() / step * step, color.green() / step * step,
                                         color.blue() / step * step));
        }
    }
    return reduced;
}

QImage painted(const Page &page)
{
    QImage image(pageSize, QImage::Format_RGB32);
    QPainter painter(&image);
    QLinearGradient background(0, 0, 0, pageSize.height());
    background.setColorAt(0, QColor(90, 90, 90));
    background.setColorAt(1, Qt::black);
    painter.fillRect(image.rect(), background);
    painter.fillRect(page.button, QColor(240, 240, 240));

    QFont font("Open Sans");
    font.setPixelSize(page.textSize);
    font.setHintingPreference(page.hinting);
    painter.setFont(font);
    painter.setPen(Qt::black);
    painter.drawText(page.button, Qt::AlignCenter, "OK");
    painter.translate(page.textShift, 0);
    painter.setPen(page.headingColor);
    painter.drawText(10, 30, "Miscellaneous");
    painter.setPen(Qt::white);
    for (int row = 0; row < page.rows.size(); ++row) {
        painter.drawText(10, 80 + row * rowHeight, page.rows.at(row));
    }
    painter.end();
    return page.shades < 256 ? withShades(image, page.shades) : image;
}

using Change = std::function<void(Page &)>;
} // namespace

class TestPictureCompare : public QObject
{
    Q_OBJECT
private slots:
    void sameToAUser_data();
    void sameToAUser();
    void changed_data();
    void changed();
    void differentSizes();
    void nothingStored();
};

void TestPictureCompare::sameToAUser_data()
{
    QTest::addColumn<Change>("change");
    QTest::newRow("the same") << Change([](Page &) {});
    QTest::newRow("text not hinted")
        << Change([](Page &page) { page.hinting = QFont::PreferNoHinting; });
    QTest::newRow("text a third of a pixel aside")
        << Change([](Page &page) { page.textShift = 1 / 3.0; });
    QTest::newRow("text half a pixel aside") << Change([](Page &page) { page.textShift = 0.5; });
    QTest::newRow("text a pixel aside") << Change([](Page &page) { page.textShift = 1; });
    QTest::newRow("fewer shades") << Change([](Page &page) { page.shades = 64; });
}

void TestPictureCompare::sameToAUser()
{
    QFETCH(const Change, change);
    Page page;
    change(page);
    const QImage shown = painted(page);
    const QImage stored = painted({});
    QCOMPARE(changedArea(shown, stored), QRect());
    QCOMPARE(changedArea(stored, shown), QRect());
}

void TestPictureCompare::changed_data()
{
    QTest::addColumn<Change>("change");
    QTest::addColumn<QRect>("place"); // all of the change lies here
    const QRect button(232, 240, 160, 80);
    QTest::newRow("button moved to the right")
        << Change([](Page &page) { page.button.translate(4, 0); }) << button;
    QTest::newRow("button moved down")
        << Change([](Page &page) { page.button.translate(0, 4); }) << button;
    QTest::newRow("wider button") << Change([](Page &page) { page.button.adjust(0, 0, 4, 0); })
                                  << button;
    QTest::newRow("no button") << Change([](Page &page) { page.button = {}; }) << button;
    const QRect secondRow(0, 104, 240, 32);
    QTest::newRow("another word") << Change([](Page &page) {
        page.rows[1] = "Display Alignment :";
    }) << secondRow;
    QTest::newRow("another letter")
        << Change([](Page &page) { page.rows[1] = "Display Orientatiom :"; }) << secondRow;
    QTest::newRow("no colon") << Change([](Page &page) { page.rows[1].chop(1); }) << secondRow;
    const QRect lastRow(0, 192, 240, 32);
    QTest::newRow("no last row") << Change([](Page &page) { page.rows.removeLast(); }) << lastRow;
    const QRect heading(0, 8, 240, 32);
    QTest::newRow("another colour")
        << Change([](Page &page) { page.headingColor = QColor(31, 104, 192); }) << heading;
    QTest::newRow("a darker colour")
        << Change([](Page &page) { page.headingColor = QColor(120, 65, 20); }) << heading;
    QTest::newRow("text two sizes larger")
        << Change([](Page &page) { page.textSize = 18; }) << QRect(QPoint(), pageSize);
}

void TestPictureCompare::changed()
{
    QFETCH(const Change, change);
    QFETCH(const QRect, place);
    Page page;
    change(page);
    const QImage shown = painted(page);
    const QImage stored = painted({});
    const QRect area = changedArea(shown, stored);
    QVERIFY(!area.isEmpty());
    QCOMPARE(area | place, place);
    QCOMPARE(changedArea(stored, shown), area);
}

void TestPictureCompare::differentSizes()
{
    const QImage page = painted({});
    QCOMPARE(changedArea(page, page.copy(0, 0, 400, 320)), page.rect());
    QCOMPARE(changedArea(page.copy(0, 0, 400, 320), page), page.rect());
}

void TestPictureCompare::nothingStored()
{
    const QImage page = painted({});
    QCOMPARE(changedArea(page, QImage()), page.rect());
}

QTEST_MAIN(TestPictureCompare)
#include "tst_picturecompare.moc"
