#include "panelscreen.h"

#include "panelprogram.h"

#include <QProcess>
#include <QRegularExpression>
#include <QTest>

namespace {
constexpr QRect headingArea(29, 310, 200, 50);
constexpr QRect cancelText(20, 10, 60, 14);
constexpr QRect okText(735, 10, 30, 14);
const QList<int> rowHeights{44, 46}; // px, of a list in the factory window and on a page
constexpr QColor headingColor(192, 104, 31);

/// The list of a combo box on the screen.
struct ShownList
{
    QPoint place;
    int rowHeight = 0; ///< px; 0 if no such list is shown
};

/// Finds the list with @p rows rows, by the height of its window.
ShownList shownList(int rows)
{
    static const QRegularExpression line(
        "(0x[0-9a-f]+) .* [0-9]+x([0-9]+)\\+[-0-9]+\\+[-0-9]+ +\\+([0-9]+)\\+([0-9]+)");
    for (const auto &match : line.globalMatch(windowInfo({"-root", "-tree"}))) {
        const int rowsHeight = match.captured(2).toInt() - 2;
        if (rowsHeight % rows == 0 && rowHeights.contains(rowsHeight / rows)
            && windowInfo({"-id", match.captured(1)}).contains("IsViewable")) {
            return {{match.captured(3).toInt(), match.captured(4).toInt()}, rowsHeight / rows};
        }
    }
    return {};
}

constexpr int transferRowHeight = 50;
constexpr int firstTransferRow = 143;

/// The bar of a chosen row is blue; nothing else on the pages is.
bool isBlue(const QColor &color)
{
    return color.red() < 90 && color.blue() > 170;
}
} // namespace

QString windowInfo(const QStringList &arguments)
{
    QProcess process;
    QByteArray errors;
    for (int attempt = 0; attempt < 20; ++attempt) {
        process.start("xwininfo", arguments);
        process.waitForFinished();
        errors = process.readAllStandardError();
        if (!errors.contains("X Error")) {
            return QString::fromUtf8(process.readAllStandardOutput());
        }
    }
    qFatal("xwininfo failed: %s", errors.constData());
}

bool holdsColor(const QImage &image, const QRect &area, const QColor &color)
{
    for (int y = area.top(); y <= area.bottom(); ++y) {
        for (int x = area.left(); x <= area.right(); ++x) {
            if (image.pixelColor(x, y) == color) {
                return true;
            }
        }
    }
    return false;
}

bool showsMainPage()
{
    const QImage image = screenImage();
    return holdsColor(image, headingArea, headingColor)
        && !holdsColor(image, cancelText, Qt::white);
}

bool showsSettingsPage()
{
    const QImage image = screenImage();
    return holdsColor(image, cancelText, Qt::white) && holdsColor(image, okText, Qt::white);
}

int shownCount()
{
    // Away from the number, whose white is the colour of 5.
    constexpr QRect ringArea(340, 250, 25, 100);
    const QList<QColor> colors{Qt::red, Qt::magenta, Qt::yellow, Qt::green, Qt::blue, Qt::white};
    const QImage image = screenImage();
    for (qsizetype count = 0; count < colors.size(); ++count) {
        if (holdsColor(image, ringArea, colors.at(count))) {
            return int(count);
        }
    }
    return -1;
}

QRect programWindow()
{
    // Lists and the keypad are windows of the same class, but above this one.
    const QRegularExpression line(
        "\\(\"talmero-bios\" \"talmero-bios\"\\) +([0-9]+)x([0-9]+)\\+[-0-9]+\\+[-0-9]+ "
        "+\\+(-?[0-9]+)\\+(-?[0-9]+)");
    QRect place;
    auto match = line.globalMatch(windowInfo({"-root", "-tree"}));
    while (match.hasNext()) {
        const auto window = match.next();
        place = QRect(window.captured(3).toInt(), window.captured(4).toInt(),
                      window.captured(1).toInt(), window.captured(2).toInt());
    }
    return place;
}

QRect dialogPlace(const QString &title)
{
    const QRegularExpression line(
        QString("\"%1\": .* ([0-9]+)x([0-9]+)\\+[-0-9]+\\+[-0-9]+ +\\+(-?[0-9]+)\\+(-?[0-9]+)")
            .arg(title));
    const auto window = line.match(windowInfo({"-root", "-tree"}));
    return window.hasMatch() ? QRect(window.captured(3).toInt(), window.captured(4).toInt(),
                                     window.captured(1).toInt(), window.captured(2).toInt())
                             : QRect();
}

QString shownBrightness()
{
    // The full path bypasses a stand-in of the test.
    return QRegularExpression("Brightness: ([0-9.]+)")
        .match(toolOutput({"/usr/bin/xrandr", "--verbose"}))
        .captured(1);
}

void openMainPage()
{
    if (!QTest::qWaitFor([] { return shownCount() >= 0; }, startLimit)) {
        qFatal("the countdown does not appear");
    }
    tapScreen(countDownButton);
    if (!QTest::qWaitFor(showsMainPage, startLimit)) {
        qFatal("a touch of the countdown does not open the main page");
    }
}

void chooseRow(QPoint box, int rows, int row)
{
    tapScreen(box);
    ShownList list;
    QTRY_VERIFY((list = shownList(rows)).rowHeight > 0);
    tapScreen(list.place + QPoint(50, 1 + row * list.rowHeight + list.rowHeight / 2));
    QTRY_VERIFY(shownList(rows).rowHeight == 0);
}

QPoint transferRow(int row)
{
    return {600, firstTransferRow + row * transferRowHeight};
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
