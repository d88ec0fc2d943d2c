#pragma once

#include <filesystem>

/// Ends the program with a plain message unless it runs in the simulated panel. What is measured
/// runs tools and reads the panel's files.
void requirePanel();

/// Folder that this program lies in; the other programs of the benchmark lie there too.
std::filesystem::path ownFolder();

/// Folder with a tool that returns at once under the name of each tool that the program runs.
std::filesystem::path instantToolsFolder();

/// Puts that folder first on PATH, for this program and what it starts.
void useInstantTools();

/// What comes first where this program itself is to show the measured window: both of the above,
/// and debug lines, one for each run of a tool, are kept out of the printed table.
void prepareForWindow();

/// The one argument that this program must be given. Prints @p usage and ends it otherwise.
const char *onlyArgument(int argc, char *argv[], const char *usage);
