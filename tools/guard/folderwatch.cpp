#include "folderwatch.h"

#include "system/textcodec.h"

#include <array>

#include <sys/inotify.h>

namespace Guard {
namespace {
constexpr uint32_t completed = IN_CLOSE_WRITE | IN_MOVED_TO;
constexpr uint32_t watchedEvents = completed | IN_MODIFY | IN_ONLYDIR;
constexpr size_t eventsSize = 16384; // bytes; some hundred events
} // namespace

FolderWatch::FolderWatch()
    : m_events(inotify_init1(IN_NONBLOCK | IN_CLOEXEC))
{
}

QStringList FolderWatch::watch(const QStringList &folders)
{
    QStringList fresh;
    QHash<int, QString> watched;
    for (const QString &folder : folders) {
        // A folder that is watched already keeps its number.
        const int number = inotify_add_watch(m_events.number(), bytesFromText(folder).constData(),
                                             watchedEvents);
        if (number < 0) {
            continue;
        }
        watched.insert(number, folder);
        if (m_folders.value(number) != folder) {
            fresh += folder;
        }
    }
    m_folders = watched;
    return fresh;
}

FolderWatch::Changes FolderWatch::readChanges()
{
    Changes changes;
    m_isLost = false;
    alignas(inotify_event) std::array<char, eventsSize> buffer;
    ssize_t size = 0;
    while ((size = read(m_events.number(), buffer.data(), buffer.size())) > 0) {
        for (const char *at = buffer.data(); at < buffer.data() + size;) {
            const auto *event = reinterpret_cast<const inotify_event *>(at);
            m_isLost |= (event->mask & IN_Q_OVERFLOW) != 0;
            if (event->len > 0 && m_folders.contains(event->wd)) {
                const QString path = m_folders.value(event->wd) + '/'
                    + textFromBytes(static_cast<const char *>(event->name));
                ((event->mask & completed) != 0 ? changes.complete : changes.started) += path;
            }
            at += sizeof(inotify_event) + event->len;
        }
    }
    return changes;
}
} // namespace Guard
