#pragma once

#include <QStringList>

#include <chrono>

// Command lines of the tools that the program runs: the program first, then its arguments.

/// How long a tool may take to answer a query before the program goes on without it.
inline constexpr std::chrono::milliseconds queryLimit{30000};

/// The pause before the first window, which lets the panel's session settle. Made by a tool, so
/// that an integrator can shorten it by putting another one first on PATH.
QStringList startPauseCommand();

/// Lists the display outputs; connectedOutputName() reads what it prints.
QStringList outputQueryCommand();

/// Starts the HMI runtime; runs until the runtime ends.
QStringList runtimeCommand();
