#include "factory/softwaresetup.h"

#include "factory/colorblending.h"
#include "factory/linktest.h"
#include "factorywindow.h"
#include "panelguard.h"

#include <QComboBox>
#include <QDateTimeEdit>
#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMetaMethod>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QSpinBox>
#include <QStackedWidget>
#include <QTest>
#include <QTextEdit>

namespace {
QString widgetText(const QWidget *widget)
{
    if (const auto *label = qobject_cast<const QLabel *>(widget)) {
        return label->text();
    }
    if (const auto *button = qobject_cast<const QPushButton *>(widget)) {
        return '[' + button->text() + ']';
    }
    if (const auto *box = qobject_cast<const QSpinBox *>(widget)) {
        return QString("%1 (%2..%3)").arg(box->text()).arg(box->minimum()).arg(box->maximum());
    }
    if (const auto *list = qobject_cast<const QComboBox *>(widget)) {
        QStringList items;
        for (int entry = 0; entry < list->count(); ++entry) {
            items += list->itemText(entry);
        }
        return items.join('/');
    }
    if (const auto *edit = qobject_cast<const QLineEdit *>(widget)) {
        return edit->text();
    }
    return widget->metaObject()->className();
}

/// The rows of a page, as the texts of their widgets.
QStringList rowTexts(const QWidget *viewport)
{
    QStringList rows;
    for (int index = 0; index < viewport->layout()->count(); ++index) {
        QLayoutItem *item = viewport->layout()->itemAt(index);
        if (item->layout() == nullptr) {
            rows += widgetText(item->widget());
            continue;
        }
        QStringList texts;
        for (int column = 0; column < item->layout()->count(); ++column) {
            texts += widgetText(item->layout()->itemAt(column)->widget());
        }
        rows += texts.join(' ');
    }
    return rows;
}
} // namespace

class TestSoftwareSetup : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void startsWithACalibration();
    void slotsKeepTheirOrder();
    void builtWindow();
    void builtPages();
    void everythingFits();
    void testLeadsToTheTestPage();
    void closeEndsTheProgram();
};

void TestSoftwareSetup::initTestCase()
{
    requirePanel();
}

void TestSoftwareSetup::startsWithACalibration()
{
    const FakeTools tools({"sleep", "xCal"});
    const SoftwareSetup window;
    QCOMPARE(tools.calls(), (QStringList{"sleep [2]", "xCal"}));
}

void TestSoftwareSetup::slotsKeepTheirOrder()
{
    QStringList names;
    const QMetaObject &meta = SoftwareSetup::staticMetaObject;
    for (int index = meta.methodOffset(); index < meta.methodCount(); ++index) {
        QCOMPARE(meta.method(index).methodType(), QMetaMethod::Slot);
        names += meta.method(index).methodSignature();
    }
    QCOMPARE(
        names,
        (QStringList{"slotAccept()", "slotReject()", "slotAction(QAbstractButton*)", "slotTest()",
                     "slotBuzzerTest()", "slotBuzzerTest2()", "slotBuzzerTest3()",
                     "slotBrightnessTest(int)", "slotCOM232Test()", "slotCOMEcho()",
                     "slotEtherTest()", "slotEtherEcho()", "slotPixelTest()"}));
}

void TestSoftwareSetup::builtWindow()
{
    const FactoryWindow factory;
    const QWidget *window = factory.window();
    QCOMPARE(window->minimumSize(), QSize(800, 600));
    QCOMPARE(window->maximumSize(), QSize(800, 600));
    QCOMPARE(window->font().pointSize(), 15);
    QCOMPARE(window->layout()->count(), 2);
    QVERIFY(qobject_cast<QHBoxLayout *>(window->layout()) != nullptr);
    const auto *pages = qobject_cast<QStackedWidget *>(window->layout()->itemAt(0)->widget());
    QVERIFY(pages != nullptr);
    QCOMPARE(pages->count(), 2);
    QCOMPARE(pages->currentIndex(), 0);
    for (int index = 0; index < 2; ++index) {
        const auto *page = qobject_cast<QScrollArea *>(pages->widget(index));
        QVERIFY(page != nullptr && page->widget() == nullptr);
        QVERIFY(qobject_cast<QVBoxLayout *>(page->viewport()->layout()) != nullptr);
    }
    const auto *buttons = qobject_cast<QDialogButtonBox *>(window->layout()->itemAt(1)->widget());
    QVERIFY(buttons != nullptr);
    QCOMPARE(buttons->orientation(), Qt::Vertical);
    QCOMPARE(buttons->buttons().size(), 3);
    QCOMPARE(buttons->buttonRole(factory.button("Save")), QDialogButtonBox::AcceptRole);
    QCOMPARE(buttons->buttonRole(factory.button("Test")), QDialogButtonBox::ActionRole);
    QCOMPARE(buttons->button(QDialogButtonBox::Close), factory.button("Close"));
}

void TestSoftwareSetup::builtPages()
{
    const FactoryWindow factory;
    QCOMPARE(
        rowTexts(factory.page(0)),
        (QStringList{"Model: K25T/K21T/K25/K21/K07", "Type: Panel PC/HMI", "Time: QDateTimeEdit"}));
    QCOMPARE(rowTexts(factory.page(1)),
             (QStringList{"Buzzer: [Beep]", "Buzzer: 100 KHz (100..20000) 30 ms (30..5000) [Beep]",
                          "Buzzer: [Beep f:2900 t:1000] [Beep f:2700 t:100] [Beep f:2900 t:100]",
                          "Brightness: 100%/80%/60%/40%/20%/10%", "Color Test", "ColorBlending",
                          "[Pixel Test]", "COM Port test: [COM1 RS232] [COM2 RS232] [COM3 RS232]",
                          "Ether Port test: [Eth0] [Eth1]", "192.168.0.30:33", "QTextEdit"}));
    for (const QComboBox *box : factory.window()->findChildren<QComboBox *>()) {
        QCOMPARE(box->currentIndex(), 0);
    }
    const QDateTime time = factory.window()->findChild<QDateTimeEdit *>()->dateTime();
    QVERIFY(qAbs(time.secsTo(QDateTime::currentDateTime())) < 10);
    for (int number = 1; number <= 3; ++number) {
        QCOMPARE(factory.button(QString("COM%1 RS232").arg(number))->property("comtest"),
                 QVariant(QString("%1-232").arg(number)));
    }
    QCOMPARE(factory.button("Eth0")->property("ethtest"), QVariant("1-ether"));
    QCOMPARE(factory.button("Eth1")->property("ethtest"), QVariant("2-ether"));
    QCOMPARE(factory.window()->findChild<ColorBlending *>()->minimumHeight(), 100);
}

void TestSoftwareSetup::everythingFits()
{
    const FactoryWindow factory;
    for (int page = 0; page < 2; ++page) {
        const QWidget *viewport = factory.page(page);
        QCOMPARE(factory.window()->findChild<QStackedWidget *>()->currentIndex(), page);
        for (const auto *widget :
             viewport->findChildren<QWidget *>(QString(), Qt::FindDirectChildrenOnly)) {
            QVERIFY2(viewport->rect().contains(widget->geometry()), qPrintable(widgetText(widget)));
            if (const auto *button = qobject_cast<const QPushButton *>(widget)) {
                const QSize text = button->fontMetrics().size(Qt::TextSingleLine, button->text());
                QVERIFY2(button->height() >= 34 && button->height() >= text.height() + 8
                             && button->width() >= text.width() + 8,
                         qPrintable(button->text()));
            } else {
                QVERIFY2(widget->width() >= widget->minimumSizeHint().width()
                             && widget->height() >= widget->minimumSizeHint().height(),
                         qPrintable(widgetText(widget)));
            }
        }
        factory.click("Test");
    }
    auto *view = factory.window()->findChild<QTextEdit *>("resultView");
    view->setPlainText(serialPayload("/dev/ttyS0", linkTestCharacters) + '\n' + QString(38, '-')
                       + "\nTest Fail!");
    QVERIFY(!view->verticalScrollBar()->isVisible()); // the page fits without scrolling
}

void TestSoftwareSetup::testLeadsToTheTestPage()
{
    const FactoryWindow factory;
    const auto *pages = factory.window()->findChild<QStackedWidget *>();
    QWidget other;
    other.show();
    QVERIFY(QTest::qWaitForWindowExposed(&other));
    other.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&other));
    factory.window()->slotAction(factory.button("Beep"));
    QCOMPARE(pages->currentIndex(), 0);
    factory.click("Test");
    QCOMPARE(pages->currentIndex(), 1);
    QVERIFY(QTest::qWaitForWindowActive(factory.window()));
    factory.click("Test");
    QCOMPARE(pages->currentIndex(), 1);
    QCOMPARE(factory.calls(), QStringList());
}

void TestSoftwareSetup::closeEndsTheProgram()
{
    const FactoryWindow factory;
    QMetaObject::invokeMethod(
        factory.window(), [&factory] { factory.click("Close"); }, Qt::QueuedConnection);
    QCOMPARE(QCoreApplication::exec(), 0);
}

QTEST_MAIN(TestSoftwareSetup)
#include "tst_softwaresetup.moc"
