#pragma once

#include "toolrun.h"

#include <QByteArrayList>
#include <QStringList>

/// Runs talmero-doctor with @p arguments.
ToolRun runDoctor(const QStringList &arguments = {});

/// The lines of @p report that are not ok.
QByteArrayList complaintsIn(const QByteArray &report);

/// Shell text that prints what a current ifconfig prints.
extern const char todaysIfconfig[];
