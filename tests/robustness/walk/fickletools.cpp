#include "fickletools.h"

#include "diskfiles.h"

namespace {
struct Tool
{
    const char *name;
    const char *answer; ///< shell text that prints what the real tool would
};

constexpr Tool tools[] = {
    {"beep", ":"},
    {"date", ":"},
    {"dhclient", ":"},
    {"du", "printf '4.0K\\t/home/dest/compile\\n12M\\t/home/dest/\\n'"},
    {"hwclock", ":"},
    {"ifconfig",
     "printf 'eth0 Link encap:Ethernet  HWaddr 00:16:3E:00:00:01  \\n"
     "  inet addr:192.168.0.5  Bcast:192.168.0.255  Mask:255.255.255.0\\n'"},
    {"sleep", ":"},
    {"xCal", ":"},
    {"xinput", "[ $1 = --list ] && echo PenMount || echo \"button[1]=$(cat /run/walk.finger)\""},
    {"xrandr", "echo 'DUMMY0 connected 800x600+0+0'"},
    {"xset", ":"},
};

// Shell text that runs before the answer, one per mood.
constexpr const char *moodTexts[FickleTools::moods] = {
    "",
    "exit 1",
    "exit 0",
    "kill -9 $$",
    "/usr/bin/sleep 0.2",
    "head -c 100000 /bin/sh; exit 0",
    "echo 'eth0: Fehler beim Auslesen'; exit 3",
};

constexpr char moodFile[] = "/run/walk.mood";
constexpr char fingerFile[] = "/run/walk.finger";

QStringList toolNames()
{
    QStringList names;
    for (const Tool &tool : tools) {
        names += tool.name;
    }
    return names;
}
} // namespace

FickleTools::FickleTools()
    : m_tools(toolNames())
{
    for (const Tool &tool : tools) {
        m_tools.setBody(tool.name, QString(". %1\n%2").arg(moodFile, tool.answer));
    }
    setMood(0);
    setFinger(false);
}

void FickleTools::setMood(int mood)
{
    writeFile(moodFile, moodTexts[mood]);
}

void FickleTools::setFinger(bool isDown)
{
    writeFile(fingerFile, isDown ? "down" : "up");
}
