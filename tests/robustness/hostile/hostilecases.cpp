#include "hostilecases.h"

#include "diskfiles.h"
#include "disksnapshot.h"
#include "faultfiles.h"
#include "packagefiles.h"

#include <QDir>

#include <algorithm>
#include <cstdio>
#include <optional>

#include <sys/mount.h>

namespace {
constexpr char sticksFolder[] = "/run/hostile";
constexpr char smallTemporary[] = "/run/small";
constexpr char applicationFolder[] = "/home/dest";
constexpr int mountCount = 12;

/// The lines of the generator's table @p name, split into fields.
QList<QList<QByteArray>> tableLines(const QByteArray &name)
{
    static const bool made = [] {
        bool given = false;
        const int seed = qEnvironmentVariableIntValue("HOSTILE_SEED", &given);
        shellBytes(QString("python3 '%1' %2 %3 '%4'")
                       .arg(HOSTILE_GENERATOR, takesAllCases() ? "--all" : "",
                            QString::number(given ? seed : 1), sticksFolder));
        return true;
    }();
    Q_UNUSED(made)
    QList<QList<QByteArray>> lines;
    for (const QByteArray &line : readFile(QByteArray(sticksFolder) + '/' + name).split('\n')) {
        if (!line.isEmpty()) {
            lines += line.split('\t');
        }
    }
    return lines;
}

HostileCase caseOf(const QList<QByteArray> &fields)
{
    HostileCase hostile{fields[0], fields[1], {}, {}, fields[4], fields[5], fields[6]};
    for (const QByteArray &file : fields[2].split(',')) {
        hostile.paths += QByteArray(sticksFolder) + "/packages/" + file;
    }
    for (const QByteArray &result : fields[3].split(',')) {
        hostile.results += result.toInt();
    }
    return hostile;
}

/// Restores the panel and, in "/outside", a tree that no package may touch.
void resetPanel()
{
    resetInstalledFiles();
    shellBytes(
        "rm -rf /home/hostile; cd /outside; mkdir folder compile; ln -s guard link;"
        "echo inner >folder/inner; echo inner >compile/inner; echo tool >tool; chmod 4755 tool");
}
} // namespace

bool takesAllCases()
{
    return qEnvironmentVariableIsSet("HOSTILE_ALL");
}

const QList<HostileCase> &hostileCases()
{
    static const QList<HostileCase> cases = [] {
        QList<HostileCase> read;
        for (const QList<QByteArray> &fields : tableLines("cases.tsv")) {
            read += caseOf(fields);
        }
        return read;
    }();
    return cases;
}

const QList<HostileTree> &hostileTrees()
{
    static const QList<HostileTree> trees = [] {
        QList<HostileTree> read;
        for (const QList<QByteArray> &fields : tableLines("trees.tsv")) {
            read
                += {fields[0], QByteArray(sticksFolder) + "/trees/" + fields[0], fields[1].toInt()};
        }
        return read;
    }();
    return trees;
}

QList<QByteArray> watchedFolders(bool all)
{
    QList<QByteArray> folders{"/home", "/homde", "/outside", "/tmp", "/opt/talmero"};
    if (all) {
        folders += {"/etc", "/var/spool"};
    }
    return folders;
}

void resetApplication()
{
    const QByteArray folder = applicationFolder;
    emptyFolder(folder);
    writeFile(folder + "/compile/old", "old\n");
    writeFile(folder + "/both", "old\n");
    writeFile(folder + "/kept", "old\n");
}

struct CasePanel::State
{
    std::optional<SmallDisk> disk;
    std::optional<TemporaryFolder> temporaryFolder;
    std::optional<DiskSnapshot> before;
};

CasePanel::CasePanel(const HostileCase &hostile)
    : m_state(std::make_unique<State>())
{
    resetPanel();
    if (hostile.setup == "no-target") {
        QDir(applicationFolder).removeRecursively();
    } else if (hostile.setup == "small-target") {
        m_state->disk.emplace(applicationFolder, "size=1m,mode=755");
        resetApplication();
    } else if (hostile.setup == "small-temporary") {
        m_state->disk.emplace(smallTemporary, "size=1m");
        m_state->temporaryFolder.emplace(smallTemporary);
    }
    m_state->before.emplace(watchedFolders());
}

CasePanel::~CasePanel() = default;

QList<QByteArray> CasePanel::changes() const
{
    return m_state->before->changesTo(DiskSnapshot(watchedFolders()));
}

QByteArray wrongChanges(const HostileCase &hostile, const QList<QByteArray> &changes)
{
    const QByteArray all = changes.join(' ');
    const bool anything = hostile.changes == "*";
    const bool right = anything ? std::all_of(changes.begin(), changes.end(),
                                              [](const QByteArray &change) {
                                                  return change.mid(1).startsWith("/home/dest/");
                                              })
                                : all == hostile.changes;
    if (right) {
        return {};
    }
    return (hostile.hazard == "-" ? QByteArray() : "known hazard, " + hostile.hazard + ": ")
        + "changed is <" + all + ">, not <" + hostile.changes + '>';
}

QByteArray takeKeptFile()
{
    const QByteArray path
        = shellBytes("find /tmp -maxdepth 1 -type f -regex '/tmp/[^/]*\\.[A-Za-z]*'").trimmed();
    if (path.isEmpty()) {
        return {};
    }
    QByteArray content = readFile(path);
    QFile::remove(path);
    return content;
}

void printRow(const QByteArray &name, const QByteArray &result, const QByteArray &changes,
              qint64 milliseconds)
{
    std::printf("| %s | %s | %s | %.1f s |\n", name.constData(), result.constData(),
                changes.left(120).constData(), double(milliseconds) / 1000);
}

MountRing::MountRing(const QByteArray &folder)
{
    QByteArray place = folder;
    for (int mounted = 0; mounted < mountCount; ++mounted) {
        place += "/again";
        if (mount(folder, place, nullptr, MS_BIND, nullptr) != 0) {
            qFatal("cannot mount at %s", place.constData());
        }
        m_places.prepend(place);
    }
}

MountRing::~MountRing()
{
    for (const QByteArray &place : m_places) {
        umount(place);
    }
}
