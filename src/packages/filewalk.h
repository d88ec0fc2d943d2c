#pragma once

#include <QString>
#include <QStringList>

/// In which letters an extension counts.
enum class ExtensionCase {
    SmallLetters, ///< only as it is given
    AnyCase,
};

/// The folder at @p configured, with a "/" at its end; "/media/", where sticks are mounted, if it
/// is empty.
QString searchFolder(const QString &configured);

/// Finds the plain files below @p folder whose name ends with one of @p extensions (small
/// letters, with the dot): breadth-first, the entries of a folder in the order in which the file
/// system gives them. Hidden entries and symbolic links are passed over, and so is what cannot be
/// listed. Loops of mounts are not guarded against.
/// @p folder ends with a "/". Result: the paths relative to it; bytes of names that are no text
/// are kept as textFromBytes() does.
QStringList findFilesBelow(const QString &folder, const QStringList &extensions,
                           ExtensionCase extensionCase);
