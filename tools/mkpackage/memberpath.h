#pragma once

#include <QByteArrayView>
#include <QList>

namespace MkPackage {
/// What counts of the path of a member, or of the target of a link.
struct MemberPath
{
    explicit MemberPath(QByteArrayView path);

    /// Numbers of the folders above it, outermost first, and its own. Equal for paths that mean
    /// the same, and different in each run, so that nobody can make two paths of one number.
    QList<quint64> numbers;

    bool isAbsolute = false;
    qsizetype ups = 0;         ///< ".." in front of all names
    bool turnsBack = false;    ///< ".." behind a name
    qsizetype longestName = 0; ///< bytes
    bool asksForFolder;        ///< ends as only the path of a folder may, in a slash or a dot

    bool isTop() const { return numbers.isEmpty() && ups == 0; }
    bool leaves() const { return isAbsolute || ups > 0 || turnsBack; }
};
} // namespace MkPackage
