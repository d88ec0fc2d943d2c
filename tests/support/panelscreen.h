#pragma once

#include <QColor>
#include <QPoint>
#include <QRect>
#include <QStringList>

#include <memory>

class PanelProgram;
class QImage;

// Finds and touches things on the panel's screen of 800x600.

inline constexpr int startLimit = 15000; // ms until the first window on a slow machine

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

/// Output of xwininfo with @p arguments; empty if there is no such window. xwininfo fails if any
/// window vanishes while it runs, so this function tries again.
QString windowInfo(const QStringList &arguments);

/// Whether a pixel of @p area in @p image has exactly this colour.
bool holdsColor(const QImage &image, const QRect &area, const QColor &color);

/// Whether the main settings page is on the screen.
bool showsMainPage();

/// Whether a page with Cancel and OK in its title bar is on the screen.
bool showsSettingsPage();

/// The count that the colour of the ring stands for; -1 if there is no ring on the screen.
int shownCount();

/// Place of the program's window on the screen; empty if there is none.
QRect programWindow();

/// Place of the dialog with this title on the screen; empty if it is not shown.
QRect dialogPlace(const QString &title);

/// Brightness of the display as xrandr prints it, for example "0.50".
QString shownBrightness();

/// Waits for the countdown, touches it and waits for the main settings page. The test program ends
/// if one of them does not appear.
void openMainPage();

/// Opens the list of the combo box at @p box, which has @p rows rows, and taps one of them.
void chooseRow(QPoint box, int rows, int row);

// The file transfer page, and the way to a page and back.

inline constexpr QPoint transferButton = pageButtons[2].place;
inline constexpr QPoint applicationChoice(120, 92);
inline constexpr QPoint firmwareChoice(490, 92);

/// A place on a row of the page's list.
QPoint transferRow(int row);

/// Whether the row at this place is chosen. Works on any page with a list.
bool isChosen(QPoint row);

/// Taps a row and waits until it is chosen.
void choose(QPoint row);

bool showsDialog(const QString &title);

/// Closes the box with the reason why nothing was installed, and waits for the main page.
void acceptWarning(const QString &title);

/// Starts the program, opens the main page and taps the button of a page there. The test program
/// ends if the page does not open.
std::unique_ptr<PanelProgram> startAtPage(QPoint button);

/// Taps a button of the page and waits for the main page.
void returnToMainPage(QPoint button);
