#pragma once

#include <QByteArray>

namespace Guard {
/// What "talmero-guard status" prints, in the format of bios.ini: whether the guard watches
/// ("watch", "yes" or "no"), when each copy was made ("copy.NAME", UTC), and what it last
/// repaired ("act") and when ("time", UTC).
QByteArray statusText();
} // namespace Guard
