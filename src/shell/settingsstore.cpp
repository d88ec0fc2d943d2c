#include "shell/biosinterface.h"

#include "system/paths.h"

#include <QDebug>

void BiosInterface::readINI()
{
    readSettingsFile(Paths::settingsFile, m_settings);
}

void BiosInterface::writeINI()
{
    if (!writeSettingsFile(Paths::settingsFile, m_settings)) {
        qDebug().noquote() << Q_FUNC_INFO
                           << QString("Write BIOS INI File: %1 Error").arg(Paths::settingsFile);
    }
}
