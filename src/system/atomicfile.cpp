#include "system/atomicfile.h"

#include <QSaveFile>

bool replaceFile(const QString &path, const QByteArray &content)
{
    QSaveFile file(path);
    // Flushed here, because commit() takes no notice of a disk that is full by then, and would put
    // the part that was written in the old file's place.
    return file.open(QIODevice::WriteOnly) && file.write(content) == content.size() && file.flush()
        && file.commit();
}
