#pragma once

#include "system/run/command.h"

// The commands of the tools that only the factory window runs.

/// The pause before the calibration that opens the factory window.
Command calibrationPauseCommand();

/// The pause in which the rest of a serial echo may arrive.
Command echoPauseCommand();

/// Takes the session's start script out of the way, for units that are sold without a session
/// of their own.
Command sessionAsideCommand();

/// Removes the file at @p path.
Command removeFileCommand(const QString &path);

/// Lists all network interfaces that are up; hardwareAddresses() reads what it prints.
Command interfaceListCommand();

/// The buzzer's own standard tone; returns when it has ended.
Command beepCommand();

/// A tone of @p frequency (Hz) for @p duration (ms), both as decimal text.
Command toneCommand(const QString &frequency, const QString &duration);

/// The tone that a button with a text like "Beep f:2900 t:1000" promises.
Command presetToneCommand(const QString &buttonText);
