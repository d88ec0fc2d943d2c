#include "diskfiles.h"
#include "factory/kpixeltestwidget.h"
#include "factory/softwaresetup.h"
#include "factorywindow.h"
#include "picturebook.h"
#include "stoppedclock.h"

#include <QApplication>
#include <QComboBox>
#include <QLineEdit>
#include <QPointer>
#include <QTest>
#include <QTextEdit>

namespace {
constexpr Qt::GlobalColor pixelColors[] = {Qt::white, Qt::black, Qt::red, Qt::blue, Qt::green};

void takeList(PictureBook &book, QComboBox *box, const QString &name)
{
    QTest::mouseClick(box, Qt::LeftButton);
    book.take(name);
    box->hidePopup();
}

/// Starts the test of a port and waits until it shows a verdict.
void runLinkTest(const FactoryWindow &factory, const QString &button)
{
    factory.window()->findChild<QTextEdit *>("resultView")->clear();
    factory.click(button);
    if (!QTest::qWaitFor([&factory] { return factory.result().contains("Test "); })) {
        qFatal("no verdict of %s", qPrintable(button));
    }
}

QPointer<KPixelTestWidget> pixelTest()
{
    for (QWidget *window : QApplication::topLevelWidgets()) {
        if (auto *test = qobject_cast<KPixelTestWidget *>(window)) {
            return test;
        }
    }
    return nullptr;
}

void takePixelTest(PictureBook &book, const FactoryWindow &factory)
{
    factory.click("Pixel Test");
    const QPointer<KPixelTestWidget> test = pixelTest();
    for (const Qt::GlobalColor color : pixelColors) {
        book.expectColor("the pixel test", color);
        QTest::mouseClick(test, Qt::LeftButton);
    }
}
} // namespace

void takeFactoryPictures(PictureBook &book)
{
    const FactoryWindow factory({"xrandr", "beep"});
    StoppedClock::setTime(factory.page(0));
    book.take("factory-setup");
    const auto choices = factory.page(0)->findChildren<QComboBox *>();
    takeList(book, choices.at(0), "factory-setup-model");
    takeList(book, choices.at(1), "factory-setup-type");

    factory.click("Test");
    book.takeDetail("factory-test");
    takeList(book, factory.page(1)->findChild<QComboBox *>(), "factory-test-brightness");
    runLinkTest(factory, "COM1 RS232");
    book.take("factory-test-ok");
    shellBytes("'" PANEL_SIMULATOR "'/serial changed none none");
    runLinkTest(factory, "COM1 RS232");
    book.takeDetail("factory-test-fail");
    takePixelTest(book, factory);
}
