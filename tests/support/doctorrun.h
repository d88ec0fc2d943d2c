#pragma once

#include <QByteArrayList>
#include <QStringList>

/// One run of talmero-doctor.
struct DoctorRun
{
    int status = -1;
    QByteArray output;
    QByteArray errors;
    qint64 time = 0; ///< ms
};

/// Runs @p command, of which talmero-doctor is a part. The test program ends if it crashes or
/// hangs.
DoctorRun runCommand(const QStringList &command);

/// Runs talmero-doctor with @p arguments.
DoctorRun runDoctor(const QStringList &arguments = {});

/// The lines of @p report that are not ok.
QByteArrayList complaintsIn(const QByteArray &report);

/// Shell text of an ifconfig of today.
extern const char todaysIfconfig[];
