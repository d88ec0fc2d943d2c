#pragma once

#include "system/paths.h"
#include "system/run/process.h"
#include "system/run/tools.h"

#include <QMap>
#include <QSize>
#include <QStringList>

#include <array>
#include <iterator>
#include <optional>

namespace Doctor {
/// What is asked of tools. None of these changes anything.
enum class Question {
    Outputs,
    OutputDetails,
    Devices,
    DeviceState,
    Server,
    FirstPort,
    SecondPort,
    Interfaces,
    ApplicationSize,
    Time,
    TarVersion,
    Unpack,
    DhcpVersion,
    InterfacesFile,
    Fonts,
    ScriptSyntax,
    ShortPause,
    GuardStatus,
};
inline constexpr size_t questionCount = size_t(Question::GuardStatus) + 1;

/// A question and its answer.
struct Answered
{
    Command command;
    ToolResult answer;
};

/// What is at a path.
struct PathFacts
{
    enum class Kind { Missing, File, Folder, Other };
    Kind kind = Kind::Missing;
    bool isLink = false;
    bool isReadable = false;
    bool isWritable = false;    ///< by root; a guess for other users
    bool isForeign = false;     ///< it is not owned by root, or anyone can write it
    QByteArray content = {};    ///< of a plain file, up to contentLimit
    qint64 size = 0;            ///< of a plain file, in bytes
    qint64 freeSpace = -1;      ///< of its file system, in bytes; negative if not known
    QByteArray fileSystem = {}; ///< its type
};

/// The folder in which @p path lies.
QString folderOf(const char *path);

/// How much of a file is read, in bytes. No file of a panel is nearly as large.
inline constexpr qint64 contentLimit = 1 << 20;

/// A network interface of the kernel.
struct Interface
{
    QString name;
    QString address; ///< hardware address
    bool isLoopback = false;
};

/// A serial port.
enum class SerialPort { Missing, NoDevice, Refused, Ready };

/// Links below some folders that lead out of their folder.
struct StrayLinks
{
    QStringList paths; ///< the first ones
    qsizetype count = 0;
    bool isWhole = true; ///< false if there were too many entries to check all of them
};

// Tools that the program itself does not run, but tar, the panel's boot or talmero-doctor does.
inline constexpr char guardName[] = "talmero-guard";
inline constexpr char gzipName[] = "gzip";
inline constexpr char ifqueryName[] = "ifquery";
inline constexpr char fontListName[] = "fc-list";

/// Everything that the checks decide on. It is gathered once, so that a check is a function of
/// values.
struct Facts
{
    uint user = 0;
    QString display; ///< the display that was queried
    bool displayIsGuessed = false;
    qint64 time = 0;  ///< of the system clock when "date" was asked, in s since 1970
    qint64 limit = 0; ///< how long each tool had to answer, in ms
    std::array<QString, std::size(toolNames)> tools;            ///< paths; empty if not found
    QString gzip;                                               ///< path; empty if not found
    QString guard;                                              ///< path; empty if not found
    QString ifquery;                                            ///< path; empty if not found
    QString fontList;                                           ///< path; empty if not found
    std::array<std::optional<Answered>, questionCount> answers; ///< nothing where no tool was asked
    QByteArray unpacked; ///< what came out of the sample archive
    QByteArray sample;   ///< what is in it
    QMap<QString, PathFacts> paths;
    QString temporaryFolder;
    qsizetype leftArchives = 0; ///< in the folder for temporary files
    QList<Interface> interfaces;
    std::array<SerialPort, Paths::serialPortCount> serialPorts{};
    StrayLinks strayLinks;

    const QString &tool(Tool which) const { return tools[size_t(which)]; }
    const std::optional<Answered> &answer(Question question) const
    {
        return answers[size_t(question)];
    }
    PathFacts path(const QString &name) const { return paths.value(name); }
};
} // namespace Doctor
