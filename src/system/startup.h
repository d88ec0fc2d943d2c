#pragma once

#include <QProcessEnvironment>
#include <QString>

/// Whether the command line asks for the version: its only argument is "-v", in either case and
/// with any white space around it.
bool isVersionQuery(int argumentCount, const char *const *arguments);

/// Prints "Version: " and the date and time of the first release with qDebug(). Needs no
/// application object.
void printVersion();

/// Removes the environment variables that make Qt scale or restyle the window: the program is
/// configured by its files alone, and one of its pixels is always one pixel of the panel.
/// Also disables two things that Qt starts and this program never uses: GLib's event loop, and the
/// session bus, for which Qt would even start a server.
/// Call it before the application object is created.
void shieldFromEnvironment();

/// The environment before shieldFromEnvironment(), for the programs that this one starts. The
/// current environment if that function was never called.
QProcessEnvironment givenEnvironment();
