#pragma once

#include <string>

/// Memory of this process in KiB, as the kernel counts it: "VmRSS:" is what it has now, "VmHWM:"
/// the most that it has had. 0 if there is no such count.
double memoryUse(const std::string &count);
