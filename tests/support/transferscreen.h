#pragma once

#include "panelscreen.h"

#include <QPoint>
#include <QString>

#include <memory>

class PanelProgram;

// The file transfer page on the panel's screen of 800x600, and the way to it and back.

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
