#pragma once

#include <QStringList>

#include <chrono>

namespace Doctor {
/// What the command line asks for.
struct Arguments
{
    enum class Task { Check, Help, Version };
    Task task = Task::Check;
    bool isJson = false;
    std::chrono::milliseconds limit{5000}; ///< for each tool
    QString error; ///< what is wrong with the command line; empty if nothing is
};

/// Reads the command line @p arguments, without the tool's name.
Arguments parseArguments(const QStringList &arguments);
} // namespace Doctor
