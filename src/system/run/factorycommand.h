#pragma once

#include "system/run/command.h"

// The commands that only the factory window runs.

/// The pause before the calibration that opens the factory window.
Command calibrationPauseCommand();

/// The pause in which the rest of a serial echo can arrive.
Command echoPauseCommand();

/// Renames the session's start script, for units that are sold without a session.
Command sessionAsideCommand();

/// Removes the file at @p path.
Command removeFileCommand(const QString &path);

/// Lists all network interfaces that are up; hardwareAddresses() parses its output.
Command interfaceListCommand();

/// The buzzer's standard tone. The tool ends when the tone does.
Command beepCommand();

/// A tone of @p frequency (Hz) for @p duration (ms), both as decimal text.
Command toneCommand(const QString &frequency, const QString &duration);

/// The tone named by a button's text, such as "Beep f:2900 t:1000".
Command presetToneCommand(const QString &buttonText);
