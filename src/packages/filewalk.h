#pragma once

#include <QString>
#include <QStringList>

/// How the case of an extension is compared.
enum class ExtensionCase {
    SmallLetters, ///< only small letters match
    AnyCase,
};

/// The folder @p configured, with "/" at its end. If it is empty: "/media/", where USB sticks are
/// mounted.
QString searchFolder(const QString &configured);

/// Finds the plain files below @p folder (which ends with "/") whose name ends with one of
/// @p extensions (small letters, with the dot). The search is breadth-first; the entries of a
/// folder come in the order of the file system. It skips hidden entries, symbolic links and folders
/// that cannot be listed. It does not detect mount loops.
/// Result: the paths relative to @p folder, decoded with textFromBytes().
QStringList findFilesBelow(const QString &folder, const QStringList &extensions,
                           ExtensionCase extensionCase);
