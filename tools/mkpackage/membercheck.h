#pragma once

#include "findings.h"
#include "tarreader.h"

#include <QHash>

namespace MkPackage {
/// Checks the members of an archive, one after the other, for what does harm when root unpacks them
/// on a panel. It remembers a number for each of them, not the name, to save memory.
class MemberCheck
{
public:
    explicit MemberCheck(Findings &findings)
        : m_findings(findings)
    {
    }

    void add(const TarMember &member);

    /// How many files and folders tar creates, including folders that are not members themselves.
    qsizetype count() const { return m_known.size(); }

private:
    void checkPlace(const TarMember &member);
    void checkParent(const TarMember &member, quint64 parent);
    void checkSameName(const TarMember &member, TarMember::Type before);
    void checkSymLink(const TarMember &member);
    void checkHardLink(const TarMember &member);
    void checkRights(const TarMember &member);
    void checkTopFolder(const TarMember &member);
    void say(Check check, Level level, const TarMember &member, const char *what);

    Findings &m_findings;
    QHash<quint64, TarMember::Type> m_known; ///< by the number of the path
};
} // namespace MkPackage
