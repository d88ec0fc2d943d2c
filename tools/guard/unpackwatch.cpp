#include "unpackwatch.h"

#include "system/run/tools.h"
#include "system/textcodec.h"

#include <QFile>
#include <QStandardPaths>

#include <algorithm>
#include <array>

#include <fcntl.h>
#include <sys/fanotify.h>
#include <sys/syscall.h>

namespace Guard {
namespace {
constexpr size_t bufferSize = 4096; // bytes; more than a hundred events

bool hasEnded(const Descriptor &process)
{
    pollfd waited{process.number(), POLLIN, 0};
    return poll(&waited, 1, 0) != 0;
}
} // namespace

UnpackWatch::UnpackWatch(QByteArrayList folders)
    : m_folders(std::move(folders))
    , m_starts(fanotify_init(FAN_CLASS_NOTIF | FAN_CLOEXEC | FAN_NONBLOCK, O_RDONLY | O_CLOEXEC))
{
}

bool UnpackWatch::findTar()
{
    const QString tar = QStandardPaths::findExecutable(QLatin1String(toolNames[size_t(Tool::Tar)]));
    return fanotify_mark(m_starts.number(), FAN_MARK_ADD, FAN_OPEN_EXEC, AT_FDCWD,
                         bytesFromText(tar).constData())
        == 0;
}

bool UnpackWatch::check()
{
    const bool missedOne = noteStarts();
    return noteEnds() || missedOne;
}

void UnpackWatch::addDescriptors(std::vector<pollfd> &waited) const
{
    waited.push_back({m_starts.number(), POLLIN, 0});
    for (const Descriptor &process : m_running) {
        waited.push_back({process.number(), POLLIN, 0});
    }
}

/// Result: whether a tar has started that ended before it could be looked at.
bool UnpackWatch::noteStarts()
{
    bool missedOne = false;
    alignas(fanotify_event_metadata) std::array<char, bufferSize> buffer;
    ssize_t size = 0;
    while ((size = read(m_starts.number(), buffer.data(), buffer.size())) > 0) {
        const auto *event = reinterpret_cast<const fanotify_event_metadata *>(buffer.data());
        for (; FAN_EVENT_OK(event, size); event = FAN_EVENT_NEXT(event, size)) {
            const Descriptor program(event->fd); // closes it
            Descriptor process(int(syscall(SYS_pidfd_open, event->pid, 0)));
            if (process.number() < 0) {
                missedOne = true;
            } else if (unpacks(event->pid)) {
                m_running.push_back(std::move(process));
            }
        }
    }
    return missedOne;
}

bool UnpackWatch::noteEnds()
{
    return std::erase_if(m_running, hasEnded) > 0;
}

/// Whether the process @p process works in one of the folders, as tar does for the program. A
/// process that has just ended counts, because nobody knows.
bool UnpackWatch::unpacks(int process) const
{
    const QString folder = QFile::symLinkTarget(QString("/proc/%1/cwd").arg(process));
    return folder.isEmpty() || m_folders.contains(bytesFromText(folder));
}
} // namespace Guard
