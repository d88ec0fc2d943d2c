#include "answers.h"
#include "checks.h"

#include "packages/packagecheck.h"
#include "system/files/versionfiles.h"

namespace Doctor {
namespace {
constexpr qint64 mebibyte = 1 << 20;
constexpr qint64 lowSpace = 64 * mebibyte; // bytes: a usual package, packed and unpacked
constexpr qint64 noSpace = mebibyte;       // bytes: a save may empty the settings

struct NeededFolder
{
    QString path;
    Level level;
    const char *loss;
    const char *file = nullptr; ///< the program's only file there; it can be written in place
};

const QList<NeededFolder> &neededFolders()
{
    // clang-format off
    static const QList<NeededFolder> folders{
        {Paths::biosFolder,                Level::Error,   "settings are not stored"},
        {Paths::firmwareFolder,            Level::Error,   "firmware is not installed, and nobody is told"},
        {Paths::fontFolder,                Level::Error,   "fonts are not installed, and nobody is told"},
        {folderOf(Paths::interfacesFile),  Level::Error,   "addresses are not kept over the next boot", Paths::interfacesFile},
        {folderOf(Paths::namingRulesFile), Level::Warning, "the factory window cannot name the LAN ports", Paths::namingRulesFile},
        {Paths::lockFolder,                Level::Warning, "the serial tests cannot lock their ports"},
    };
    // clang-format on
    return folders;
}

/// What is wrong with a folder; nothing if it exists and can be written.
std::optional<Finding> badFolder(const PathFacts &facts, const QString &path, Level level,
                                 const QString &loss)
{
    if (facts.kind != PathFacts::Kind::Folder) {
        return Finding{level,
                       QString("there is no folder %1").arg(path),
                       QString("make it in the image; until then %1").arg(loss),
                       {}};
    }
    if (!facts.isWritable) {
        return Finding{level,
                       QString("%1 cannot be written").arg(path),
                       QString("mount its disk for writing; until then %1").arg(loss),
                       {}};
    }
    return std::nullopt;
}

bool isWrittenInPlace(const Facts &facts, const NeededFolder &folder)
{
    return folder.file != nullptr && facts.path(QLatin1String(folder.file)).isWritable;
}

Finding checkFreeSpace(const Facts &facts, const QString &path)
{
    const qint64 space = facts.path(path).freeSpace;
    if (space < 0) {
        return warning(QString("the free space in %1 is unknown").arg(path),
                       "see the line about the folder");
    }
    const QString found = QString("%1 MiB free in %2").arg(space / mebibyte).arg(path);
    if (space < noSpace) {
        return error(found, "free some space: a save on a full disk empties the settings");
    }
    if (space < lowSpace) {
        return warning(found,
                       QString("make room: packages need more than %1 MiB, and twice what "
                               "comes out of them in their folder")
                           .arg(lowSpace / mebibyte));
    }
    return fine(found);
}

struct VersionFile
{
    const char *path;
    bool isNumber;
    const char *use; ///< what it decides
};

constexpr VersionFile versionFiles[] = {
    {Paths::runtimeVersionFile, true, "which applications may be installed"},
    {Paths::runtimeOemFile, false, "which firmware may be installed"},
    {Paths::biosVersionFile, true, "which BIOS images may be installed"},
    {Paths::modelFile, false, "which applications may be installed"},
};

/// "00" is also the number 0.
bool isZero(const QString &text)
{
    bool isNumber = false;
    return text.toLongLong(&isNumber) == 0 && isNumber;
}

Finding checkVersionFile(const Facts &facts, const VersionFile &file)
{
    const QString path = QLatin1String(file.path);
    const PathFacts found = facts.path(path);
    const QString decides = QString("; it decides %1").arg(QLatin1String(file.use));
    if (found.kind != PathFacts::Kind::File || !found.isReadable) {
        return warning(QString("%1 is missing or cannot be read").arg(path),
                       "write it on the production line" + decides);
    }
    if (!found.isWritable) {
        return error(QString("%1 cannot be written").arg(path), "mount its disk for writing");
    }
    const QString line = firstLineOf(found.content);
    if (line.isEmpty()) {
        return warning(QString("%1 is empty").arg(path),
                       "write it again: the power may have failed while it was written" + decides);
    }
    const QString text = QString("%1 says \"%2\"").arg(path, shortened(line));
    if (file.isNumber && versionNumber(line) == 0 && !isZero(line)) {
        return warning(text + ", which is not a version", "write a decimal number" + decides);
    }
    if (line != line.trimmed()) {
        return warning(text + ", with blanks at the start or the end",
                       "remove them: the whole text is compared" + decides);
    }
    return fine(text);
}
} // namespace

Findings checkFolders(const Facts &facts)
{
    Findings findings;
    for (const NeededFolder &folder : neededFolders()) {
        const auto bad = badFolder(facts.path(folder.path), folder.path, folder.level,
                                   QLatin1String(folder.loss));
        findings += bad && !isWrittenInPlace(facts, folder) ? *bad : fine(folder.path);
    }
    return findings;
}

Findings checkApplicationFolder(const Facts &facts)
{
    const QString path = Paths::applicationFolder;
    const PathFacts folder = facts.path(path);
    if (const auto bad = badFolder(folder, path, Level::Error,
                                   "applications are not installed, and nobody is told")) {
        return {*bad};
    }
    if (folder.isLink) {
        return {error(QString("%1 is a link, which installing follows").arg(path),
                      "replace it with a folder: an installation removes \"compile\" in it")};
    }
    if (folder.isForeign) {
        return {warning(
            QString("%1 belongs to another user than root, or anyone may write it").arg(path),
            "set its owner and permissions in the start script: packages change them")};
    }
    if (folder.fileSystem.startsWith("nfs") || folder.fileSystem == "cifs") {
        return {warning(QString("%1 lies on a network").arg(path),
                        "put it on the panel's disk: a start waits for its size without a limit")};
    }
    return {fine(path)};
}

Findings checkSpace(const Facts &facts)
{
    Findings findings;
    const QString temporary = facts.temporaryFolder;
    if (const auto bad = badFolder(facts.path(temporary), temporary, Level::Error,
                                   "every package is refused with \"Open File Error\"")) {
        findings += *bad;
    } else {
        findings += checkFreeSpace(facts, temporary);
    }
    for (const char *path : {Paths::applicationFolder, Paths::firmwareFolder, Paths::biosFolder}) {
        findings += checkFreeSpace(facts, QLatin1String(path));
    }
    if (facts.leftArchives > 0) {
        findings += warning(
            QString("package archives left over in %1: %2").arg(temporary).arg(facts.leftArchives),
            "remove them, and empty the folder at every start");
    }
    return findings;
}

Findings checkLinks(const Facts &facts)
{
    const StrayLinks &links = facts.strayLinks;
    const QString folders
        = QString("%1 and %2").arg(QString(Paths::applicationFolder), QString(Paths::biosFolder));
    if (links.count > 0) {
        return {warning(
            QString("links lead out of %1: %2 (%3)")
                .arg(folders, QString::number(links.count), shortened(links.paths.join(", "))),
            "check whether they belong there: the next package is unpacked through them")};
    }
    if (!links.isWhole) {
        return {
            fine(QString("no link among the first entries of %1 leads out of them").arg(folders))};
    }
    return {fine(QString("no link in %1 leads out of them").arg(folders))};
}

Findings checkVersionFiles(const Facts &facts)
{
    Findings findings;
    for (const VersionFile &file : versionFiles) {
        findings += checkVersionFile(facts, file);
    }
    return findings;
}

Findings checkScript(const Facts &facts)
{
    const QString path = Paths::runtimeScript;
    const PathFacts script = facts.path(path);
    const QString loss = "the HMI runtime does not start";
    if (script.kind != PathFacts::Kind::File || !script.isReadable) {
        return {error(QString("%1 is missing or cannot be read").arg(path),
                      "install it; until then " + loss)};
    }
    if (script.content.trimmed().isEmpty()) {
        return {error(QString("%1 is empty").arg(path), "install it; until then " + loss)};
    }
    if (const auto bad = badAnswer(facts, Question::ScriptSyntax, loss)) {
        return {*bad};
    }
    return {fine(QString("the shell reads %1").arg(path))};
}

Findings checkStick(const Facts &facts)
{
    const QString media = Paths::mediaFolder;
    const QString stick = folderOf(Paths::factoryMarker);
    if (facts.path(media).kind != PathFacts::Kind::Folder) {
        return {warning(QString("there is no folder %1").arg(media),
                        "mount sticks below it: the program looks there for packages and fonts")};
    }
    if (facts.path(stick).kind != PathFacts::Kind::Folder) {
        return {warning(
            QString("there is no folder %1").arg(stick),
            "mount the stick there: the program looks in it for the factory window's marker")};
    }
    if (facts.path(Paths::factoryMarker).kind != PathFacts::Kind::Missing) {
        return {warning(QString("%1 is there: the next start opens the factory window")
                            .arg(Paths::factoryMarker),
                        "remove the stick or the file")};
    }
    return {fine(stick)};
}

Findings checkSerialPorts(const Facts &facts)
{
    Findings findings;
    for (int number = 0; number < Paths::serialPortCount; ++number) {
        const QString device = QString(Paths::serialPort).arg(number);
        const QString loss = "only the factory window's test needs it";
        switch (facts.serialPorts[size_t(number)]) {
        case SerialPort::Missing:
            findings += warning(QString("there is no %1").arg(device), loss);
            break;
        case SerialPort::NoDevice:
            findings += warning(QString("%1 has no hardware").arg(device), loss);
            break;
        case SerialPort::Refused:
            findings += warning(QString("%1 cannot be opened").arg(device),
                                "end the program that uses it, or run this as root;  " + loss);
            break;
        case SerialPort::Ready:
            findings += fine(QString("%1 can be opened").arg(device));
            break;
        }
    }
    return findings;
}
} // namespace Doctor
