#pragma once

#include "guardedfiles.h"
#include "system/settings/settingsfile.h"

#include <QByteArray>

#include <optional>

// What a power cut leaves of a file, decided from its bytes alone.

namespace Guard {
/// What is wrong with a file.
enum class Fault {
    None,
    Empty,   ///< nothing but white space and zero bytes
    Cut,     ///< its end is missing, or it has zero bytes
    Refused, ///< ifupdown cannot read it
};

/// What is wrong with the file content @p text of itself. Settings are cut if their last line has
/// no end, because the program ends every line. A file that a person wrote may lack the last line
/// end: it has comments, or its keys are in another order.
/// Result: never Refused; only ifupdown knows.
Fault faultOf(Kind kind, const QByteArray &text);

/// The same for bios.ini, with the last good copy at hand, empty if there is none, and @p
/// interfaces, the content of ifupdown's file. The program writes keys in ascending order, so the
/// end of a file that lost its last lines is a whole line: such a file lacks the last keys of the
/// copy. If those are keys of LAN ports, a technician may have disabled the port. Then ifupdown's
/// file, which is written later, says the same.
Fault settingsFault(const QByteArray &text, const QByteArray &copy, const QByteArray &interfaces);

/// The same for ifupdown's file: the start of its last good copy is a cut one, unless it says the
/// same as @p settings, so that a port was disabled.
Fault interfacesFault(const QByteArray &text, const QByteArray &copy, const SettingsMap &settings);

/// The settings in @p text.
SettingsMap settingsIn(const QByteArray &text);

/// Whether @p settings have a key of a LAN port.
bool hasPortKeys(const SettingsMap &settings);

/// How ifupdown's file and the settings go together.
enum class Pairing {
    Equal,   ///< the program wrote it, and it says the same
    Differs, ///< the program wrote it, and it says something else
    Foreign, ///< somebody else wrote it
};

/// Compares ifupdown's file @p interfaces with @p settings. The program's file starts with
/// "auto lo" and a blank, and has no line that the program does not write.
Pairing comparePair(const QByteArray &interfaces, const SettingsMap &settings);

/// Content of ifupdown's file for @p settings.
QByteArray interfacesFor(const SettingsMap &settings);
} // namespace Guard
