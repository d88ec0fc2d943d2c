#pragma once

#include <QByteArray>
#include <QProcess>

/// A stick that vanishes while it is used. A process serves its file system.
class VanishingStick
{
public:
    enum class End {
        Pulled,    ///< the server is killed: the mount stays, and each access fails
        Unmounted, ///< "umount -l": open files can be read to their end
        TornOff,   ///< "umount -f -l": reading open files fails
        Hangs,     ///< does not answer for a time, then is pulled
    };

    /// When the stick vanishes: at the first read or listing beyond these numbers.
    struct After
    {
        qint64 bytes = -1; ///< read so far; -1: no limit
        int folders = -1;  ///< listed so far; -1: no limit
    };

    /// Mounts the files of the folder @p source at @p mountPoint; qFatal() if that fails. A stick
    /// that hangs does so for @p hangTime ms.
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
