#pragma once

#include <QByteArrayView>
#include <QList>

namespace MkPackage {
/// What the checks need to know about the path of a member, or the target of a link.
struct MemberPath
{
    explicit MemberPath(QByteArrayView path);

    /// One number for each folder of the path, outermost first, and one for the whole path. Paths
    /// that mean the same have the same numbers. The numbers differ from run to run, so nobody can
    /// prepare two paths that share one.
    QList<quint64> numbers;

    bool isAbsolute = false;
    qsizetype ups = 0;         ///< number of ".." before the first name
    bool turnsBack = false;    ///< there is a ".." after a name
    qsizetype longestName = 0; ///< bytes
    bool asksForFolder;        ///< ends in a slash or a dot, as only the path of a folder may

    bool isTop() const { return numbers.isEmpty() && ups == 0; }
    bool leaves() const { return isAbsolute || ups > 0 || turnsBack; }
};
} // namespace MkPackage
