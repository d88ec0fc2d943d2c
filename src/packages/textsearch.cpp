#include "packages/textsearch.h"

#include "system/files/filecopy.h"
#include "system/textcodec.h"

#include <QFile>

namespace {
constexpr qint64 pieceSize = 65536; // bytes; a single line may be larger than memory
} // namespace

bool fileHoldsText(const QString &path, const QString &text)
{
    QFile file;
    if (!openPlainFile(file, path)) {
        return false;
    }
    const QByteArray wanted = bytesFromText(text);
    QByteArray line; // its end, which may be the start of a match
    for (QByteArray piece; !(piece = file.readLine(pieceSize)).isEmpty();) {
        const bool lineEnds = piece.endsWith('\n');
        line += lineEnds ? piece.chopped(1) : piece;
        if (line.contains(wanted)) {
            return true;
        }
        line = lineEnds ? QByteArray() : line.right(wanted.size());
    }
    return false;
}
