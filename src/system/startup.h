#pragma once

#include <QProcessEnvironment>
#include <QString>

/// Whether the command line asks for the version: one argument alone that is "-v", in either
/// case and with any blanks around it.
bool isVersionQuery(int argumentCount, const char *const *arguments);

/// Writes the version, "Version: " with the date and time of the first release, to the debug
/// channel. Needs no application object.
void printVersion();

/// Takes out of the environment what would make the toolkit scale or restyle the window, and
/// switches off what it starts and this program never uses: the event loop of another toolkit, and
/// the message bus of a desktop, for which it would even start a server. Call it before the
/// application object exists. The program is configured by its files alone, and a pixel is a pixel
/// of the panel whatever resolution its display claims to have.
void shieldFromEnvironment();

/// The environment as it was before shieldFromEnvironment(), for the programs that are started on
/// top of this one; the present one if that was never called.
QProcessEnvironment givenEnvironment();
