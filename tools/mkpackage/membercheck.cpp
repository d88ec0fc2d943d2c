#include "membercheck.h"

#include "memberpath.h"

#include <algorithm>

namespace MkPackage {
namespace {
constexpr qsizetype longestName = 255;  // bytes, of a file system
constexpr qsizetype longestPath = 4095; // bytes, of the kernel
constexpr quint32 specialBits = 06000;  // set-user-ID and set-group-ID
constexpr quint32 othersWrite = 02;
constexpr quint32 sticky = 01000;
constexpr quint32 ownerReads = 0400;
constexpr quint32 ownerUses = 0700; // of a folder

using Type = TarMember::Type;

/// Whether @p name has control characters, invisible characters or bytes that are not UTF-8.
bool isOdd(const QByteArray &name)
{
    if (!name.isValidUtf8()) {
        return true;
    }
    const QList<uint> characters = QString::fromUtf8(name).toUcs4();
    return std::any_of(characters.begin(), characters.end(), [](uint character) {
        const auto category = QChar::category(char32_t(character));
        return category == QChar::Other_Control || category == QChar::Other_Format;
    });
}

bool isLink(Type type)
{
    return type == Type::SymLink || type == Type::HardLink;
}

/// What is wrong with the target of a symbolic link; null if nothing is. A relative target stays
/// inside if each ".." is at its start and there are no more of them than folders above the link.
/// Other such links on its way do not change that.
const char *findTargetError(const TarMember &link)
{
    const MemberPath target(link.target);
    const qsizetype folders = MemberPath(link.name).numbers.size() - 1;
    if (link.target.isEmpty()) {
        return "has no target";
    }
    if (link.target.size() > longestPath) {
        return "leads to a path of more than 4095 bytes";
    }
    if (target.isAbsolute || target.ups > folders) {
        return "leads out of the panel's folder";
    }
    return target.turnsBack ? "goes back through \"..\" on its way" : nullptr;
}
} // namespace

void MemberCheck::add(const TarMember &member)
{
    if (isOdd(member.name)) {
        say(Check::Names, Level::Warning, member, "contains characters that no name should have");
    }
    checkPlace(member);
    checkRights(member);
    if (member.type == Type::SymLink) {
        checkSymLink(member);
    } else if (member.type == Type::HardLink) {
        checkHardLink(member);
    }
}

void MemberCheck::checkPlace(const TarMember &member)
{
    const MemberPath path(member.name);
    if (path.isAbsolute) {
        say(Check::Names, Level::Error, member, "is an absolute path");
    } else if (path.leaves()) {
        say(Check::Names, Level::Error, member, "leaves the panel's folder through \"..\"");
    } else if (path.longestName > longestName) {
        say(Check::Names, Level::Error, member, "has a name of more than 255 bytes");
    } else if (member.name.size() > longestPath) {
        say(Check::Names, Level::Error, member, "is a path of more than 4095 bytes");
    } else if (path.isTop()) {
        checkTopFolder(member);
    } else if (path.asksForFolder && member.type != Type::Folder) {
        say(Check::Names, Level::Error, member, "is named like a folder but is not one");
    } else {
        for (const quint64 parent : path.numbers.first(path.numbers.size() - 1)) {
            checkParent(member, parent);
        }
        const auto before = m_known.constFind(path.numbers.last());
        if (before != m_known.constEnd()) {
            checkSameName(member, *before);
        }
        m_known.insert(path.numbers.last(), member.type);
    }
}

void MemberCheck::checkParent(const TarMember &member, quint64 parent)
{
    const auto before = m_known.constFind(parent);
    if (before == m_known.constEnd()) {
        m_known.insert(parent, Type::Folder); // tar creates it
    } else if (isLink(*before)) {
        say(Check::Links, Level::Error, member, "passes through a link in this package");
    } else if (*before != Type::Folder) {
        say(Check::Names, Level::Error, member, "is inside something that is not a folder");
    }
}

void MemberCheck::checkSameName(const TarMember &member, Type before)
{
    if (isLink(before) || isLink(member.type)) {
        say(Check::Links, Level::Error, member, "occurs twice, once as a link");
    } else if (before == Type::Folder && member.type != Type::Folder) {
        say(Check::Names, Level::Error, member, "was a folder earlier in the archive");
    } else if (member.type != Type::Folder || before != Type::Folder) {
        say(Check::Names, Level::Warning, member, "occurs twice; the last one wins");
    }
}

void MemberCheck::checkSymLink(const TarMember &member)
{
    const char *error = findTargetError(member);
    m_findings.add(Check::Links, error != nullptr ? Level::Error : Level::Warning,
                   shownName(member.name) + " -> " + shownName(member.target) + ": "
                       + QLatin1String(error != nullptr ? error : "is a link inside the folder"));
}

void MemberCheck::checkHardLink(const TarMember &member)
{
    const MemberPath target(member.target);
    const bool isKnown = !target.leaves() && !target.isTop() && !target.asksForFolder
        && m_known.value(target.numbers.last(), Type::Other) == Type::File;
    say(Check::Links, isKnown ? Level::Warning : Level::Error, member,
        isKnown ? "is a hard link" : "is a hard link to something that is not an earlier file");
}

void MemberCheck::checkRights(const TarMember &member)
{
    const bool isFolder = member.type == Type::Folder;
    if (isLink(member.type)) {
        return; // links have no permissions of their own
    }
    if (isDevice(member.type) || member.type == Type::Pipe || member.type == Type::Other) {
        say(Check::Rights, Level::Error, member, "is a device, a pipe or another special file");
    } else if ((member.mode & specialBits) != 0) {
        say(Check::Rights, isFolder ? Level::Warning : Level::Error, member,
            "has the set-user-ID or set-group-ID bit");
    } else if ((member.mode & (othersWrite | sticky)) == othersWrite) {
        say(Check::Rights, Level::Warning, member, "can be written by anyone");
    } else if ((member.mode & (isFolder ? ownerUses : ownerReads)) == 0) {
        say(Check::Rights, Level::Warning, member, "can be read only by root");
    }
    if (member.user != 0 || member.group != 0) {
        m_findings.add(Check::Rights, Level::Warning,
                       QString("%1: will belong to %2:%3, not to root")
                           .arg(shownName(member.name))
                           .arg(member.user)
                           .arg(member.group));
    }
}

/// The member is the panel's own folder: tar gives that folder the owner and permissions of the
/// member.
void MemberCheck::checkTopFolder(const TarMember &member)
{
    if (member.type != Type::Folder || member.name.isEmpty()) {
        say(Check::Names, Level::Error, member, "is not a name");
    } else if ((member.mode & ownerUses) != ownerUses || (member.mode & othersWrite) != 0) {
        say(Check::Rights, Level::Error, member, "gives the panel's folder unsafe permissions");
    } else {
        say(Check::Rights, Level::Warning, member, "changes the permissions of the panel's folder");
    }
}

void MemberCheck::say(Check check, Level level, const TarMember &member, const char *what)
{
    m_findings.add(check, level, shownName(member.name) + ": " + QLatin1String(what));
}
} // namespace MkPackage
