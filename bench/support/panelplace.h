#pragma once

#include <filesystem>

/// Exits with a message unless this runs in the simulated panel. The measured code runs tools and
/// changes the panel's files.
void requirePanel();

/// The folder of this program and of the other benchmark programs.
std::filesystem::path ownFolder();

/// The folder with stand-ins for the tools of the program, which return at once.
std::filesystem::path instantToolsFolder();

/// Puts that folder first on PATH.
void useInstantTools();

/// Prepares a benchmark that shows the measured window itself: calls requirePanel() and
/// useInstantTools(), and turns off debug lines, which would disturb the table.
void prepareForWindow();

/// The only argument. Without exactly one, prints @p usage and exits with status 2.
const char *onlyArgument(int argc, char *argv[], const char *usage);
