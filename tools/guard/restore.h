#pragma once

namespace Guard {
/// Repairs what a power cut left, before the network and the session start:
/// - a guarded file that is empty, cut or refused by ifupdown gets its last good copy back;
/// - ifupdown's file is written from the settings, with the program's own formatter, where the
///   program stored new settings and did not get to that file.
/// Good files are not touched. Missing ones stay missing: a power cut empties files, and only
/// people remove them. Prints a line for each repair and for each that was not possible.
/// Result: false if a file could not be written.
bool restoreFiles();
} // namespace Guard
