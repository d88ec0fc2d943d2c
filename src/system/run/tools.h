#pragma once

#include "system/run/command.h"

#include <iterator>

/// Every tool that the program runs. toolCommand() builds its commands and takes no other, so
/// whoever asks what a panel must have (talmero-doctor does) needs no list of its own.
enum class Tool {
    Beep,
    Date,
    Dhclient,
    Du,
    Hwclock,
    Ifconfig,
    Mv,
    Rm,
    Shell,
    Sleep,
    Sync,
    Tar,
    XCal,
    Xinput,
    Xrandr,
    Xset,
};

/// Their names in this order: looked up on PATH, but for that of the shell.
inline constexpr const char *toolNames[]
    = {"beep",    "date",  "dhclient", "du",  "hwclock", "ifconfig", "mv",     "rm",
       "/bin/sh", "sleep", "sync",     "tar", "xCal",    "xinput",   "xrandr", "xset"};
static_assert(std::size(toolNames) == size_t(Tool::Xset) + 1);

/// The command that runs @p tool with @p arguments.
Command toolCommand(Tool tool, const QStringList &arguments = {});
