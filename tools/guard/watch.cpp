#include "watch.h"

#include "background.h"
#include "configuration.h"
#include "filecare.h"
#include "folderwatch.h"
#include "links.h"
#include "reserve.h"
#include "storage.h"
#include "system/paths.h"
#include "system/textcodec.h"
#include "unpackwatch.h"

#include <QDeadlineTimer>
#include <QFileInfo>

#include <array>
#include <chrono>
#include <csignal>

#include <fcntl.h>
#include <sys/stat.h>

namespace Guard {
namespace {
using namespace std::chrono_literals;

constexpr auto tickInterval = 1s;
constexpr auto busyInterval = 50ms; // until a background job can start again

/// Where packages are unpacked; "/home/dest" may be a disk of its own.
constexpr const char *unpackFolders[]
    = {Paths::applicationFolder, Paths::firmwareFolder, Paths::biosFolder};

volatile std::sig_atomic_t shallEnd = 0;

void endWatching(int)
{
    shallEnd = 1;
}

constexpr mode_t lockMode = 0644; // anybody may ask whether the guard watches

struct flock wholeFile()
{
    struct flock lock
    {
    };
    lock.l_type = F_WRLCK;
    lock.l_whence = SEEK_SET;
    return lock;
}

/// Writes everything that waits for these disks, once for each disk.
void flushDisks()
{
    QList<dev_t> flushed;
    for (const char *folder : unpackFolders) {
        const Descriptor opened(open(folder, O_RDONLY | O_DIRECTORY | O_CLOEXEC));
        struct stat status;
        if (fstat(opened.number(), &status) == 0 && !flushed.contains(status.st_dev)) {
            syncfs(opened.number());
            flushed += status.st_dev;
        }
    }
}

void removeLinks(const Configuration &configuration)
{
    QStringList acts;
    for (const Link &link : findLinksOut(Paths::applicationFolder, configuration.allowedLinks)) {
        const QString text = QString("the link %1 to %2, which leads out of %3")
                                 .arg(textFromBytes(link.path), textFromBytes(link.target),
                                      QString(Paths::applicationFolder));
        if (!configuration.removesLinks) {
            say("found " + text);
        } else if (unlink(link.path.constData()) == 0) {
            acts += "removed " + text;
        }
    }
    recordActs(acts);
}

Configuration readConfiguration()
{
    Configuration configuration
        = parseConfiguration(contentOf(configurationFile).value_or(QByteArray()));
    for (const QString &problem : configuration.problems) {
        say(problem);
    }
    return configuration;
}

class Watch
{
public:
    Watch();
    void run();

private:
    void keepUp();
    void lookAtFiles();
    void lookAtUnpacking();
    void wait();
    std::chrono::milliseconds waitingTime() const;

    Configuration m_configuration = readConfiguration();
    FileCare m_files;
    FolderWatch m_folders;
    UnpackWatch m_unpacking{{std::begin(unpackFolders), std::end(unpackFolders)}};
    Background m_flush{flushDisks};
    Background m_sweep{[this] { removeLinks(m_configuration); }};
    Reserve m_reserve{Paths::biosFolder, m_configuration.reserve};
    QDeadlineTimer m_nextTick{tickInterval};
};

Watch::Watch()
{
    if (!m_unpacking.findTar()) {
        say("the kernel does not tell when tar runs: what it unpacks is not flushed");
    }
    m_sweep.request();
    keepUp();
}

void Watch::run()
{
    while (shallEnd == 0) {
        lookAtUnpacking();
        lookAtFiles();
        if (m_nextTick.hasExpired()) {
            keepUp();
        }
        m_flush.check();
        m_sweep.check();
        wait();
    }
}

/// What is done once a second: folders and tar may have been replaced.
void Watch::keepUp()
{
    m_nextTick.setRemainingTime(tickInterval);
    m_unpacking.findTar();
    m_files.findFiles();
    for (const QString &folder : m_folders.watch(m_files.folders())) {
        m_files.noteFolder(folder);
    }
    if (m_unpacking.isUnpacking()) {
        m_flush.request();
    }
    m_reserve.check(m_unpacking.isUnpacking());
}

void Watch::lookAtFiles()
{
    const FolderWatch::Changes changes = m_folders.readChanges();
    for (const QString &path : changes.started) {
        m_files.noteStart(path);
    }
    for (const QString &path : changes.complete) {
        m_files.noteEnd(path);
    }
    if (m_folders.isLost()) {
        m_files.noteAll();
    }
    m_files.careForDueFiles();
}

void Watch::lookAtUnpacking()
{
    if (m_unpacking.check()) {
        m_flush.request();
        m_sweep.request();
    }
}

void Watch::wait()
{
    std::vector<pollfd> waited{{m_folders.descriptor(), POLLIN, 0}};
    m_unpacking.addDescriptors(waited);
    poll(waited.data(), waited.size(), int(waitingTime().count()));
}

std::chrono::milliseconds Watch::waitingTime() const
{
    if (m_flush.isWanted() || m_sweep.isWanted()) {
        return busyInterval;
    }
    return std::min(std::chrono::milliseconds(m_nextTick.remainingTime()), m_files.timeToNext());
}
} // namespace

bool watchPanel()
{
    // Never removed, because another process may be about to lock it.
    const Descriptor file(open(lockFile, O_RDWR | O_CREAT | O_CLOEXEC, lockMode));
    struct flock lock = wholeFile();
    if (fcntl(file.number(), F_OFD_SETLK, &lock) != 0) {
        say("another process watches already");
        return false;
    }
    std::signal(SIGTERM, endWatching);
    std::signal(SIGINT, endWatching);
    Watch().run();
    return true;
}

bool isWatching()
{
    const Descriptor file(open(lockFile, O_RDONLY | O_CLOEXEC));
    struct flock lock = wholeFile();
    return fcntl(file.number(), F_OFD_GETLK, &lock) == 0 && lock.l_type != F_UNLCK;
}
} // namespace Guard
