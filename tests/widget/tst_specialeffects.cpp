#include "widgets/specialeffects.h"

#include "layermodel.h"

#include <QPainter>
#include <QTest>

namespace {
class Effects : public SpecialEffectsDrawingInterface
{
};

using Draw = void (SpecialEffectsDrawingInterface::*)(QPainter &, const QRect &);
using Model = void (LayerModel::*)(const QRect &);

struct Operation
{
    const char *name;
    Draw draw;
    Model model;
};

constexpr Operation operations[] = {
    {"shadow", &SpecialEffectsDrawingInterface::drawShadow, &LayerModel::addShadow},
    {"bar shadow", &SpecialEffectsDrawingInterface::drawBarShadow, &LayerModel::addBarShadow},
    {"linear", &SpecialEffectsDrawingInterface::drawLinearGradient, &LayerModel::addLinearGradient},
    {"radial", &SpecialEffectsDrawingInterface::drawRadialGradient, &LayerModel::addRadialGradient},
    {"highlight", &SpecialEffectsDrawingInterface::drawHighlight, &LayerModel::addHighlight},
};

/// Odd and even sizes, and sizes that make a layer empty or inside out.
constexpr QSize sizes[] = {
    {100, 40}, {101, 41}, {240, 120}, {241, 119}, {40, 100}, {64, 300}, {24, 24},
    {23, 24},  {22, 30},  {21, 9},    {12, 8},    {11, 7},   {10, 6},   {5, 5},
    {4, 4},    {3, 3},    {2, 2},     {1, 1},     {1, 50},   {50, 1},   {50, 2},
    {50, 3},   {50, 4},   {0, 0},     {0, 20},    {20, 0},
};

QImage painted(Draw draw, const QRect &rect, const QColor &base)
{
    const QSize withMargin(rect.right() + 20, rect.bottom() + 20); // nothing may be painted there
    QImage image(withMargin, QImage::Format_ARGB32_Premultiplied);
    image.fill(base);
    QPainter painter(&image);
    Effects effects;
    (effects.*draw)(painter, rect);
    return image;
}

/// Rows in column @p x of @p image that are not black.
QList<int> paintedRows(const QImage &image, int x)
{
    QList<int> rows;
    for (int y = 0; y < image.height(); ++y) {
        if (image.pixelColor(x, y) != QColor(Qt::black)) {
            rows += y;
        }
    }
    return rows;
}

QList<int> range(int first, int last)
{
    QList<int> numbers;
    for (int number = first; number <= last; ++number) {
        numbers += number;
    }
    return numbers;
}
} // namespace

class TestSpecialEffects : public QObject
{
    Q_OBJECT
private slots:
    void paintsAsComputed_data();
    void paintsAsComputed();
    void linearGradientRows();
    void highlightArea();
};

void TestSpecialEffects::paintsAsComputed_data()
{
    QTest::addColumn<int>("operation");
    QTest::addColumn<QRect>("rect");
    for (int operation = 0; operation < int(std::size(operations)); ++operation) {
        for (const QSize &size : sizes) {
            for (const QPoint corner : {QPoint(0, 0), QPoint(31, 17)}) {
                QTest::addRow("%s %dx%d at %d", operations[operation].name, size.width(),
                              size.height(), corner.x())
                    << operation << QRect(corner, size);
            }
        }
    }
}

void TestSpecialEffects::paintsAsComputed()
{
    QFETCH(int, operation);
    QFETCH(QRect, rect);
    for (const QColor &base : {QColor(Qt::black), QColor(Qt::transparent), QColor(90, 90, 90)}) {
        const QImage image = painted(operations[operation].draw, rect, base);
        LayerModel model(image.size(), base);
        (model.*operations[operation].model)(rect);
        QCOMPARE(model.difference(image), QString());
    }
}

void TestSpecialEffects::linearGradientRows()
{
    const QImage image = painted(&SpecialEffectsDrawingInterface::drawLinearGradient,
                                 QRect(0, 0, 100, 40), Qt::black);
    // The gloss fades out at row 20.
    QCOMPARE(paintedRows(image, 50), range(0, 19) + range(34, 38));
    QCOMPARE(paintedRows(image, 100), QList<int>());
}

void TestSpecialEffects::highlightArea()
{
    const QImage image
        = painted(&SpecialEffectsDrawingInterface::drawHighlight, QRect(0, 0, 100, 40), Qt::black);
    for (const int x : {1, 50, 98}) {
        QCOMPARE(paintedRows(image, x), range(1, 6));
    }
    QCOMPARE(paintedRows(image, 0), QList<int>());
    QCOMPARE(paintedRows(image, 99), QList<int>());
}

QTEST_GUILESS_MAIN(TestSpecialEffects)
#include "tst_specialeffects.moc"
