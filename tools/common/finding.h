#pragma once

#include <QString>

namespace ToolReport {
/// How much a finding matters. The numbers are the exit status of talmero-doctor.
enum class Level { Ok = 0, Warning = 1, Error = 2 };

/// One thing that a tool has found out.
struct Finding
{
    Level level = Level::Ok;
    QString text;
    QString advice;  ///< what to do about it; empty if there is nothing to do
    QString subject; ///< what it is about
};
} // namespace ToolReport
