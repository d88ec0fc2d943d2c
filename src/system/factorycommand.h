#pragma once

#include <QStringList>

#include <chrono>

// Command lines of the tools that only the factory window runs: the program first, then its
// arguments.

/// How long a tool of the factory window may take that answers at once on a sound unit.
inline constexpr std::chrono::milliseconds factoryToolLimit{5000};

/// How long the list of all network interfaces may take.
inline constexpr std::chrono::milliseconds interfaceListLimit{10000};

/// The pause before the calibration that opens the factory window.
QStringList calibrationPauseCommand();

/// The pause in which the rest of a serial echo may arrive.
QStringList echoPauseCommand();

/// Takes the session's start script out of the way, for units that are sold without a session
/// of their own.
QStringList sessionAsideCommand();

/// Removes the file at @p path.
QStringList removeFileCommand(const QString &path);

/// Lists all network interfaces that are up; hardwareAddresses() reads what it prints.
QStringList interfaceListCommand();

/// The buzzer's own standard tone; returns when it has ended.
QStringList beepCommand();

/// A tone of @p frequency (Hz) for @p duration (ms), both as decimal text.
QStringList toneCommand(const QString &frequency, const QString &duration);

/// The tone that a button with a text like "Beep f:2900 t:1000" promises.
QStringList presetToneCommand(const QString &buttonText);
