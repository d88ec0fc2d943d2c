#pragma once

#include <QColor>
#include <QPoint>
#include <QRect>
#include <QStringList>

#include <memory>

class PanelProgram;
class QImage;

// What a test sees on the panel's screen of 800x600, and where it touches it.

inline constexpr int startLimit = 15000; // ms until the first window, however slow the machine is

inline constexpr QPoint countDownButton(400, 450);
inline constexpr QPoint cancelButton(50, 16);
inline constexpr QPoint okButton(750, 16);

/// A button of the main settings page.
struct PageButton
{
    const char *name;
    QPoint place;
};
inline constexpr PageButton pageButtons[] = {
    {"Install Fonts", {150, 415}}, {"Ethernet", {400, 415}},      {"File Transfer", {650, 415}},
    {"System Status", {150, 522}}, {"Miscellaneous", {400, 522}}, {"Calibration", {650, 522}},
};

/// What xwininfo prints when called with @p arguments; nothing if there is no such window. It fails
/// where another window vanishes while it looks, so it gets further tries then.
QString windowInfo(const QStringList &arguments);

/// Whether a pixel of @p area in @p image has exactly this colour.
bool holdsColor(const QImage &image, const QRect &area, const QColor &color);

/// Whether the main settings page is on the screen.
bool showsMainPage();

/// Whether a page with Cancel and OK in its title bar is on the screen.
bool showsSettingsPage();

/// The count whose colour the countdown's ring on the screen has, -1 if there is no ring.
int shownCount();

/// Where the program's window is on the screen; nothing if there is none.
QRect programWindow();

/// Where the dialog with this title is on the screen; nothing if it is not shown.
QRect dialogPlace(const QString &title);

/// The brightness of the display as xrandr prints it, for example "0.50".
QString shownBrightness();

/// Waits for the countdown and touches it, then waits for the main settings page. The test
/// program ends if one of them does not come.
void openMainPage();

/// Opens the list of the combo box at @p box, which has so many rows, and taps a row of it.
void chooseRow(QPoint box, int rows, int row);

// The file transfer page, and the way to a page and back.

inline constexpr QPoint transferButton = pageButtons[2].place;
inline constexpr QPoint applicationChoice(120, 92);
inline constexpr QPoint firmwareChoice(490, 92);

/// A place on a row of the page's list.
QPoint transferRow(int row);

/// Whether the row at this place, of this page or of another one with a list, is chosen.
bool isChosen(QPoint row);

/// Taps a row and waits until it is chosen.
void choose(QPoint row);

bool showsDialog(const QString &title);

/// Closes the box that tells why nothing was installed, and waits for the main page.
void acceptWarning(const QString &title);

/// Starts the program, goes to the main page and opens a page by its button there. The test
/// program ends if it does not come.
std::unique_ptr<PanelProgram> startAtPage(QPoint button);

/// Taps a button of the page and waits for the main page.
void returnToMainPage(QPoint button);
