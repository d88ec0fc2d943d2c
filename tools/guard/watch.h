#pragma once

namespace Guard {
/// Held by the process that watches.
inline constexpr char lockFile[] = "/run/talmero-guard.lock";

/// Watches the panel until SIGTERM or SIGINT:
/// - a guarded file that was written is made durable, and copied if it is good;
/// - what tar unpacks for the program is flushed once a second and when tar ends;
/// - links out of the application's folder are removed at the start and after each unpacking;
/// - the reserve of the disk with the settings is kept.
/// Result: false if another process watches already.
bool watchPanel();

/// Whether a process watches.
bool isWatching();
} // namespace Guard
