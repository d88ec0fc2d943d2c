#include "vanishingstick.h"

#include <QDir>
#include <QStringList>

#include <sys/mount.h>

namespace {
QString nameOf(VanishingStick::End end)
{
    switch (end) {
    case VanishingStick::End::Unmounted:
        return "unmounted";
    case VanishingStick::End::TornOff:
        return "torn off";
    default:
        return "pulled";
    }
}
} // namespace

VanishingStick::VanishingStick(const QByteArray &source, const QByteArray &mountPoint, End end,
                               After after, int hangTime)
    : m_mountPoint(mountPoint)
{
    QDir().mkpath(mountPoint);
    m_server.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    m_server.start(STICKSERVER,
                   {source, mountPoint, nameOf(end), QString::number(after.bytes),
                    QString::number(after.folders), QString::number(hangTime)});
    if (!m_server.waitForReadyRead()) {
        qFatal("cannot mount a stick at %s", mountPoint.constData());
    }
}

VanishingStick::~VanishingStick()
{
    umount2(m_mountPoint, MNT_DETACH); // fails if it is already unmounted
    pull();
}

void VanishingStick::pull()
{
    m_server.kill();
    m_server.waitForFinished();
}
