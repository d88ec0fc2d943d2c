#include "gather.h"

#include "facts.h"
#include "packages/filewalk.h"
#include "questions.h"
#include "system/files/filecopy.h"
#include "system/files/versionfiles.h"
#include "system/settings/settingsfile.h"
#include "system/settings/settingskeys.h"
#include "system/textcodec.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QDir>
#include <QDirIterator>
#include <QFileInfo>
#include <QStandardPaths>
#include <QStorageInfo>
#include <QTemporaryDir>

#include <cerrno>
#include <future>
#include <vector>

#include <fcntl.h>
#include <sys/stat.h>
#include <termios.h>
#include <unistd.h>

namespace Doctor {
namespace {
constexpr char displayVariable[] = "DISPLAY";
constexpr char usualDisplay[] = ":0";
constexpr char interfacesFolder[] = "/sys/class/net";
constexpr char loopbackType[] = "772"; // ARPHRD_LOOPBACK
constexpr int mostEntries = 20000;     // searched for stray links
constexpr int mostShownLinks = 3;

/// Where root's tools are. The program runs as root; a user who logs in over ssh may have a shorter
/// PATH.
constexpr char rootPath[] = ":/usr/local/sbin:/usr/sbin:/sbin";

/// The tools that the session puts first on PATH, seen from the folder of this program.
constexpr char compatFolder[] = "/../lib/talmero-bios/compat/bin";

/// An archive as in a package: one file "sample" with sampleContent in it.
constexpr char sampleArchive[]
    = "H4sIAAAAAAACAytOzC3ISWWgKTAAAjMTEzANBOi0gYGhIYINFjc3NDFkUDBgoAMoLS5JLAJayTAyQWleQWJydmoKF8Mo"
      "GAWjYBSMgpEEAIe7u8gACAAA";

struct LookedAtPath
{
    const char *path;
    bool withContent;
};

constexpr LookedAtPath lookedAtPaths[] = {
    {Paths::settingsFile, true},    {Paths::runtimeVersionFile, true},
    {Paths::runtimeOemFile, true},  {Paths::biosVersionFile, true},
    {Paths::modelFile, true},       {Paths::runtimeScript, true},
    {Paths::biosFolder, false},     {Paths::interfacesFile, true},
    {Paths::namingRulesFile, true}, {Paths::factoryMarker, false},
    {Paths::mediaFolder, false},    {Paths::applicationFolder, false},
    {Paths::firmwareFolder, false}, {Paths::fontFolder, false},
    {Paths::lockFolder, false},
};

/// Whether root can write @p path. Permissions do not stop root, but a read-only disk does; another
/// user can only guess.
bool isWritable(const QByteArray &path)
{
    return access(path.constData(), W_OK) == 0 || (geteuid() != 0 && errno == EACCES);
}

PathFacts::Kind kindOf(mode_t mode)
{
    if (S_ISREG(mode)) {
        return PathFacts::Kind::File;
    }
    return S_ISDIR(mode) ? PathFacts::Kind::Folder : PathFacts::Kind::Other;
}

void lookAtPaths(Facts &facts)
{
    for (const LookedAtPath &looked : lookedAtPaths) {
        const QString path = QLatin1String(looked.path);
        facts.paths.insert(path, pathFacts(path, looked.withContent));
    }
    for (const char *file : {Paths::interfacesFile, Paths::namingRulesFile, Paths::factoryMarker}) {
        facts.paths.insert(folderOf(file), pathFacts(folderOf(file), false));
    }
    SettingsMap settings;
    applySettingsText(facts.path(Paths::settingsFile).content, settings);
    for (const char *key : {SettingsKeys::transferFolder, SettingsKeys::fontFolder}) {
        const QString folder = searchFolder(settings.value(QLatin1String(key)));
        facts.paths.insert(folder, pathFacts(folder, false));
    }
    facts.temporaryFolder = QDir::tempPath();
    facts.paths.insert(facts.temporaryFolder, pathFacts(facts.temporaryFolder, false));
    facts.leftArchives = QDir(facts.temporaryFolder)
                             .entryList({"talmero-bios.??????"}, QDir::Files | QDir::Hidden)
                             .size();
    facts.strayLinks = findStrayLinks({Paths::applicationFolder, Paths::biosFolder});
}

void findTools(Facts &facts)
{
    for (size_t tool = 0; tool < facts.tools.size(); ++tool) {
        facts.tools[tool] = QStandardPaths::findExecutable(QLatin1String(toolNames[tool]));
    }
    facts.gzip = QStandardPaths::findExecutable(gzipName);
    facts.guard = QStandardPaths::findExecutable(guardName);
    facts.ifquery = QStandardPaths::findExecutable(ifqueryName);
    facts.fontList = QStandardPaths::findExecutable(fontListName);
}

void listInterfaces(Facts &facts)
{
    const QDir folder(interfacesFolder);
    const QStringList names = folder.entryList(QDir::AllEntries | QDir::NoDotAndDotDot);
    for (const QString &name : names) {
        if (QFileInfo(folder.filePath(name)).isDir()) { // bonding puts a plain file here
            facts.interfaces += {name, firstLineOfFile(folder.filePath(name + "/address")),
                                 firstLineOfFile(folder.filePath(name + "/type"))
                                     == QLatin1String(loopbackType)};
        }
    }
}

/// A tool that is not to be trusted may write for as long as it is let.
bool writesWithoutEnd(const ToolResult &soFar)
{
    return soFar.output.size() + soFar.errors.size() >= mostKept;
}

void ask(Facts &facts, const QList<AskedTool> &questions, std::chrono::milliseconds limit)
{
    // run one after the other if there are no more threads
    std::vector<std::future<ToolResult>> answers;
    for (const AskedTool &asked : questions) {
        answers.push_back(
            asked.tool.isEmpty() ? std::future<ToolResult>() : std::async([asked, limit] {
                return runTool(
                    asked.command,
                    {.limit = limit, .folder = asked.folder, .shallStop = writesWithoutEnd});
            }));
    }
    for (qsizetype index = 0; index < questions.size(); ++index) {
        if (answers[size_t(index)].valid()) {
            facts.answers[size_t(questions.at(index).question)]
                = Answered{questions.at(index).command, answers[size_t(index)].get()};
        }
    }
}

/// Result: the path of the sample archive; empty if it cannot be written.
QString writeSample(const QTemporaryDir &folder)
{
    QFile file(folder.filePath("sample.tar.gz"));
    const QByteArray archive = QByteArray::fromBase64(sampleArchive);
    return folder.isValid() && file.open(QIODevice::WriteOnly)
            && file.write(archive) == archive.size() && file.flush()
        ? file.fileName()
        : QString();
}

bool leadsOutOf(const QString &folder, const QFileInfo &link)
{
    const QString target
        = QDir::cleanPath(QDir(link.path()).absoluteFilePath(link.symLinkTarget()));
    return !(target + '/').startsWith(folder + '/');
}

/// Makes PATH that of the session, for a caller who is not in it.
void addCompatTools()
{
    const QString folder = QDir::cleanPath(QCoreApplication::applicationDirPath() + compatFolder);
    if (QFileInfo(folder).isDir()) {
        qputenv("PATH", QFile::encodeName(folder) + ':' + qgetenv("PATH"));
    }
}

void setUpEnvironment(Facts &facts)
{
    facts.user = geteuid();
    if (facts.user != 0) {
        qputenv("PATH", qgetenv("PATH") + rootPath);
    }
    facts.displayIsGuessed = qEnvironmentVariableIsEmpty(displayVariable);
    if (facts.displayIsGuessed) {
        qputenv(displayVariable, usualDisplay);
        addCompatTools();
    }
    facts.display = qEnvironmentVariable(displayVariable);
}
} // namespace

PathFacts pathFacts(const QString &path, bool withContent)
{
    const QByteArray name = bytesFromText(path);
    PathFacts facts;
    struct stat status;
    facts.isLink = QFileInfo(path).isSymLink();
    if (stat(name.constData(), &status) != 0) {
        return facts;
    }
    facts.kind = kindOf(status.st_mode);
    facts.isReadable = access(name.constData(), R_OK) == 0;
    facts.isWritable = isWritable(name);
    facts.isForeign = status.st_uid != 0 || (status.st_mode & S_IWOTH) != 0;
    facts.size = status.st_size;
    if (facts.kind == PathFacts::Kind::Folder) {
        const QStorageInfo disk(path);
        facts.freeSpace = disk.bytesAvailable();
        facts.fileSystem = disk.fileSystemType();
    }
    QFile file;
    if (withContent && openPlainFile(file, path)) {
        facts.content = file.read(contentLimit);
    }
    return facts;
}

StrayLinks findStrayLinks(const QStringList &folders)
{
    StrayLinks links;
    int entries = 0;
    for (const QString &folder : folders) {
        QDirIterator walk(folder,
                          QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                          QDirIterator::Subdirectories);
        while (walk.hasNext()) {
            walk.next();
            if (++entries > mostEntries) {
                links.isWhole = false;
                return links;
            }
            if (walk.fileInfo().isSymLink() && leadsOutOf(folder, walk.fileInfo())
                && ++links.count <= mostShownLinks) {
                links.paths += walk.filePath();
            }
        }
    }
    return links;
}

SerialPort serialPortState(const QString &device)
{
    const int descriptor
        = open(bytesFromText(device).constData(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
    if (descriptor < 0) {
        if (errno == ENOENT) {
            return SerialPort::Missing;
        }
        return errno == ENXIO || errno == ENODEV || errno == EIO ? SerialPort::NoDevice
                                                                 : SerialPort::Refused;
    }
    termios settings;
    const bool answers
        = tcgetattr(descriptor, &settings) == 0; // a port without hardware does not answer
    close(descriptor);
    return answers ? SerialPort::Ready : SerialPort::NoDevice;
}

Facts gatherFacts(std::chrono::milliseconds limit)
{
    Facts facts;
    facts.limit = limit.count();
    setUpEnvironment(facts);
    findTools(facts);
    lookAtPaths(facts);
    listInterfaces(facts);
    for (int number = 0; number < Paths::serialPortCount; ++number) {
        facts.serialPorts[size_t(number)] = serialPortState(QString(Paths::serialPort).arg(number));
    }
    const QTemporaryDir folder;
    facts.time = QDateTime::currentSecsSinceEpoch();
    ask(facts, firstQuestions(facts, writeSample(folder), folder.path()), limit);
    ask(facts, {stateQuestion(facts)}, limit);
    facts.sample = sampleContent;
    facts.unpacked = pathFacts(folder.filePath("sample"), true).content;
    return facts;
}
} // namespace Doctor
