#pragma once

#include "facts.h"

#include <chrono>

namespace Doctor {
/// What is in the archive that tar is tried with.
inline constexpr char sampleContent[] = "unpacked\n";

/// Looks at the panel and asks its tools, each for at most @p limit, all at the same time. Changes
/// nothing but a folder of its own among the temporary files.
Facts gatherFacts(std::chrono::milliseconds limit);

/// What is at @p path, of which the content is read if @p withContent says so.
PathFacts pathFacts(const QString &path, bool withContent);

/// Looks for links below @p folders that lead out of them.
StrayLinks findStrayLinks(const QStringList &folders);

/// Whether the serial port @p device can be opened, without waiting for anything.
SerialPort serialPortState(const QString &device);
} // namespace Doctor
