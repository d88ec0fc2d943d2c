#pragma once

#include "descriptor.h"

#include <QByteArrayList>

#include <vector>

#include <poll.h>

namespace Guard {
/// Tells when tar runs in the folders in which packages are unpacked. The kernel reports each start
/// of tar, so that other writers cost nothing. Needs CAP_SYS_ADMIN.
class UnpackWatch
{
public:
    /// @p folders are those in which packages are unpacked.
    explicit UnpackWatch(QByteArrayList folders);

    /// Finds tar on PATH; an update may have replaced it. Call it now and then.
    /// Result: false if its starts cannot be watched.
    bool findTar();

    /// Notes the tars that have started and those that have ended.
    /// Result: whether one has ended since the last call.
    bool check();

    bool isUnpacking() const { return !m_running.empty(); }

    /// Adds to @p waited what becomes readable when check() has something to note.
    void addDescriptors(std::vector<pollfd> &waited) const;

private:
    bool noteStarts();
    bool noteEnds();
    bool unpacks(int process) const;

    QByteArrayList m_folders;
    Descriptor m_starts;
    std::vector<Descriptor> m_running; ///< one for each tar
};
} // namespace Guard
