#pragma once

#include <string>

/// Memory of this process in KiB, from /proc/self/status: "VmRSS:" is the current size, "VmHWM:"
/// the peak. 0 if there is no such field.
double memoryUse(const std::string &count);
