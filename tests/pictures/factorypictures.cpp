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
constexpr const char *pixelColors[] = {"white", "black", "red", "blue", "green"};

void takeList(PictureBook &book, QComboBox *box, const QString &name)
{
    QTest::mouseClick(box, Qt::LeftButton);
    book.take(name);
    box->hidePopup();
}

/// Starts the test of a port and waits until it shows a verdict.
void takeLinkTest(PictureBook &book, const FactoryWindow &factory, const QString &button,
                  const QString &name)
{
    factory.window()->findChild<QTextEdit *>("resultView")->clear();
    factory.click(button);
    if (!QTest::qWaitFor([&factory] { return factory.result().contains("Test "); })) {
        qFatal("no verdict of %s", qPrintable(button));
    }
    book.take(name);
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
    for (const char *color : pixelColors) {
        book.take(QString("pixel-test-") + color);
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
    book.take("factory-test");
    takeList(book, factory.page(1)->findChild<QComboBox *>(), "factory-test-brightness");
    takeLinkTest(book, factory, "COM1 RS232", "factory-test-ok");
    shellBytes("'" PANEL_SIMULATOR "'/serial changed none none");
    takeLinkTest(book, factory, "COM1 RS232", "factory-test-fail");
    takePixelTest(book, factory);
}
