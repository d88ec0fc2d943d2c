#include "widgets/stackwidgetpage.h"

#include "layermodel.h"

#include <QSignalSpy>
#include <QTest>

namespace {
LayerModel computed(int type, const QRect &rect)
{
    LayerModel model(rect.size(), Qt::black);
    model.addShadow(rect);
    model.addBarShadow(rect);
    if (type == StackWidgetPage::Glow) {
        model.addRadialGradient(rect);
    } else {
        model.addLinearGradient(rect);
    }
    model.addHighlight(rect);
    return model;
}

class CountingPage : public StackWidgetPage
{
public:
    int paints = 0;

protected:
    void paintEvent(QPaintEvent *event) override
    {
        ++paints;
        StackWidgetPage::paintEvent(event);
    }
};
} // namespace

class TestStackWidgetPage : public QObject
{
    Q_OBJECT
private slots:
    void paintsAsComputed_data();
    void paintsAsComputed();
    void otherTypePaintsNothing();
    void defaultIsGloss();
    void repaintsOnlyOnChange();
};

void TestStackWidgetPage::paintsAsComputed_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<QSize>("size");
    for (const int type : {0, 1, 2}) {
        for (const QSize size : {QSize(800, 600), QSize(481, 799), QSize(20, 7), QSize(1, 1)}) {
            QTest::addRow("type %d, %dx%d", type, size.width(), size.height()) << type << size;
        }
    }
}

void TestStackWidgetPage::paintsAsComputed()
{
    QFETCH(int, type);
    QFETCH(QSize, size);
    StackWidgetPage page(static_cast<StackWidgetPage::BackgroundDrawingType>(type));
    page.resize(size);
    QCOMPARE(computed(type, page.rect()).difference(paintedImage(page)), QString());
}

void TestStackWidgetPage::otherTypePaintsNothing()
{
    for (const int type : {3, -1, 1000}) {
        StackWidgetPage page(static_cast<StackWidgetPage::BackgroundDrawingType>(type));
        page.resize(50, 50);
        QImage untouched(page.size(), QImage::Format_ARGB32_Premultiplied);
        untouched.fill(Qt::cyan);
        QCOMPARE(paintedImage(page), untouched);
    }
}

void TestStackWidgetPage::defaultIsGloss()
{
    StackWidgetPage page;
    page.resize(200, 100);
    QCOMPARE(computed(StackWidgetPage::Gloss, page.rect()).difference(paintedImage(page)),
             QString());
    page.setDrawingType(StackWidgetPage::Glow);
    QCOMPARE(computed(StackWidgetPage::Glow, page.rect()).difference(paintedImage(page)),
             QString());
}

void TestStackWidgetPage::repaintsOnlyOnChange()
{
    CountingPage page;
    page.show();
    QVERIFY(QTest::qWaitForWindowExposed(&page));
    QCoreApplication::processEvents();
    const int before = page.paints;
    page.setDrawingType(StackWidgetPage::Gloss);
    QCoreApplication::processEvents();
    QCOMPARE(page.paints, before);
    page.setDrawingType(StackWidgetPage::Glow);
    QTRY_COMPARE(page.paints, before + 1);
}

QTEST_MAIN(TestStackWidgetPage)
#include "tst_stackwidgetpage.moc"
