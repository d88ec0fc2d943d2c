#pragma once

#include "facts.h"

#include <chrono>

namespace Doctor {
/// The contents of the archive that tar is tested with.
inline constexpr char sampleContent[] = "unpacked\n";

/// Inspects the panel and asks its tools, all at the same time, each for at most @p limit. Nothing
/// changes but a temporary folder, which is removed again.
Facts gatherFacts(std::chrono::milliseconds limit);

/// What is at @p path. Reads the content only if @p withContent is set.
PathFacts pathFacts(const QString &path, bool withContent);

/// Finds links below @p folders that lead out of their folder.
StrayLinks findStrayLinks(const QStringList &folders);

/// Whether the serial port @p device can be opened. Never blocks.
SerialPort serialPortState(const QString &device);
} // namespace Doctor
