#include "transferscreen.h"

#include "panelprogram.h"

#include <QTest>

namespace {
constexpr int rowHeight = 45;
constexpr int firstRow = 143;

/// The bar of a chosen row is a gradient of blues; nothing else on the pages is blue.
bool isBlue(const QColor &color)
{
    return color.red() < 90 && color.blue() > 170;
}
} // namespace

QPoint transferRow(int row)
{
    return {600, firstRow + row * rowHeight};
}

bool isChosen(QPoint row)
{
    return isBlue(screenColor(row + QPoint(50, 10)));
}

void choose(QPoint row)
{
    tapScreen(row);
    QTRY_VERIFY(isChosen(row));
}

bool showsDialog(const QString &title)
{
    return !dialogPlace(title).isNull();
}

void acceptWarning(const QString &title)
{
    QTRY_VERIFY_WITH_TIMEOUT(showsDialog(title), startLimit);
    tapScreen(dialogPlace(title).bottomRight() - QPoint(60, 35));
    QTRY_VERIFY(!showsDialog(title));
    QTRY_VERIFY(showsMainPage());
}

std::unique_ptr<PanelProgram> startAtPage(QPoint button)
{
    auto program = std::make_unique<PanelProgram>();
    openMainPage();
    tapScreen(button);
    if (!QTest::qWaitFor(showsSettingsPage)) {
        qFatal("the page does not open");
    }
    return program;
}

void returnToMainPage(QPoint button)
{
    tapScreen(button);
    QTRY_VERIFY_WITH_TIMEOUT(showsMainPage(), startLimit);
}
