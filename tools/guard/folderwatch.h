#pragma once

#include "descriptor.h"

#include <QHash>
#include <QSet>
#include <QString>
#include <QStringList>

namespace Guard {
/// Tells which files of some folders change.
class FolderWatch
{
public:
    /// What happened since the last question: paths of files.
    struct Changes
    {
        QSet<QString> complete; ///< closed after writing, or moved to their names
        QSet<QString> started;  ///< written to; the writer may still have them open
    };

    FolderWatch();

    /// Watches exactly @p folders from now on. Folders may be missing or replaced: call it again
    /// now and then. Result: the folders that were not watched before, so that changes in them
    /// went unseen.
    QStringList watch(const QStringList &folders);

    /// Reads all events that wait. If the kernel lost some, isLost() is true until the next call.
    Changes readChanges();

    bool isLost() const { return m_isLost; }

    /// Becomes readable with an event.
    int descriptor() const { return m_events.number(); }

private:
    Descriptor m_events;
    QHash<int, QString> m_folders;
    bool m_isLost = false;
};
} // namespace Guard
