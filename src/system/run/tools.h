#pragma once

#include "system/run/command.h"

#include <iterator>

/// Every tool that the program runs. toolCommand() accepts no other, so this list is complete;
/// talmero-doctor uses it to check a panel.
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

/// Names in the order of Tool. All except the shell are looked up on PATH.
inline constexpr const char *toolNames[]
    = {"beep",    "date",  "dhclient", "du",  "hwclock", "ifconfig", "mv",     "rm",
       "/bin/sh", "sleep", "sync",     "tar", "xCal",    "xinput",   "xrandr", "xset"};
static_assert(std::size(toolNames) == size_t(Tool::Xset) + 1);

/// The command that runs @p tool with @p arguments.
Command toolCommand(Tool tool, const QStringList &arguments = {});
