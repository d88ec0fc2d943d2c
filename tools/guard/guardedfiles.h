#pragma once

#include <QList>
#include <QString>

namespace Guard {
/// What a guarded file holds, which decides when it is good.
enum class Kind {
    Settings,   ///< bios.ini
    Line,       ///< a version file
    Interfaces, ///< ifupdown's file
    NoCopy,     ///< only made durable: whatever it holds may be meant
};

/// A file that a power cut may damage while the program writes it.
struct GuardedFile
{
    QString path;
    Kind kind;
};

const QList<GuardedFile> &guardedFiles();

/// Folder of the copies. Not beside the files: an update of the BIOS folder could bring files of
/// the same names, and the program's own folder is for the panel's maker.
inline constexpr char copyFolder[] = "/var/lib/talmero-guard";

/// Name of the file at @p path, which is also that of its copy.
QString nameOf(const QString &path);
} // namespace Guard
