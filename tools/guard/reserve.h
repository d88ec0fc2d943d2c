#pragma once

#include <QString>

namespace Guard {
inline constexpr qint64 kibibyte = 1024; ///< bytes

/// What the reserve should hold, in bytes, if it holds @p current now and @p free bytes are free on
/// its disk. @p full is its whole size. It gives up a quarter at a time, so that it lasts for four
/// full disks, and grows again once there is plenty of room. While a package is being unpacked it
/// stays, because tar would take what it gives up.
qint64 wantedReserve(qint64 current, qint64 full, qint64 free, bool isUnpacking);

/// A file that occupies space on the disk of the settings. A part of it is freed when the disk is
/// full, because the program empties its settings before it writes them.
class Reserve
{
public:
    /// The file is in @p folder. @p size is its whole size in bytes; 0 for no reserve.
    Reserve(const QString &folder, qint64 size);

    /// Gives up or takes back space if the disk asks for it. Call it about once a second.
    void check(bool isUnpacking) const;

private:
    QString m_folder;
    qint64 m_size;
};
} // namespace Guard
