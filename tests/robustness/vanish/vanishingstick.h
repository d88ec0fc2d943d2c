#pragma once

#include <QByteArray>
#include <QProcess>

/// A stick with a file system of its own, served by a process, that goes away while it is used.
class VanishingStick
{
public:
    enum class End {
        Pulled,    ///< what serves it is killed: the mount stays, and each use of it fails
        Unmounted, ///< "umount -l": files that are open can be read to their end
        TornOff,   ///< "umount -f -l": files that are open cannot be read any more
        Hangs,     ///< gives no answer for a time, then is pulled
    };

    struct After
    {
        qint64 bytes = -1; ///< that were read; -1: however many
        int folders = -1;  ///< that were listed
    };

    /// Mounts the files of the folder @p source at @p mountPoint. The test program ends if that
    /// fails. @p hangTime is in ms.
    VanishingStick(const QByteArray &source, const QByteArray &mountPoint, End end, After after,
                   int hangTime = 0);
    ~VanishingStick();
    Q_DISABLE_COPY_MOVE(VanishingStick)

    /// Pulls the stick now.
    void pull();

private:
    QByteArray m_mountPoint;
    QProcess m_server;
};
