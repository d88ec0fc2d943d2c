#include "status.h"

#include "guardedfiles.h"
#include "storage.h"
#include "system/settings/settingsfile.h"
#include "watch.h"

#include <QDateTime>
#include <QFileInfo>

namespace Guard {
QByteArray statusText()
{
    SettingsMap status;
    readSettingsFile(copyPath(actsName), status);
    status.insert("watch", QLatin1String(isWatching() ? "yes" : "no"));
    for (const GuardedFile &file : guardedFiles()) {
        const QFileInfo copy(copyPath(nameOf(file.path)));
        if (copy.exists()) {
            status.insert("copy." + nameOf(file.path),
                          copy.lastModified().toUTC().toString(Qt::ISODate));
        }
    }
    return formatSettings(status);
}
} // namespace Guard
