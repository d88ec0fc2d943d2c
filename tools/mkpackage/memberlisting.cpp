#include "memberlisting.h"

#include <QDateTime>
#include <QTimeZone>

#include <algorithm>

namespace MkPackage {
namespace {
using Type = TarMember::Type;

char typeLetter(Type type)
{
    switch (type) {
    case Type::Folder:
        return 'd';
    case Type::SymLink:
        return 'l';
    case Type::HardLink:
        return 'h';
    case Type::CharacterDevice:
        return 'c';
    case Type::BlockDevice:
        return 'b';
    case Type::Pipe:
        return 'p';
    case Type::File:
    case Type::Other:
        break;
    }
    return '-';
}

/// The letters "rwx" for one class of users. If its special bit is set, the letter @p special
/// replaces the "x", as a capital if the class may not execute.
QByteArray rightsOf(quint32 bits, bool isSpecial, char special)
{
    QByteArray letters = "---";
    letters[0] = (bits & 4) != 0 ? 'r' : '-';
    letters[1] = (bits & 2) != 0 ? 'w' : '-';
    const bool executes = (bits & 1) != 0;
    if (isSpecial) {
        letters[2] = executes ? special : char(special - 'a' + 'A');
    } else if (executes) {
        letters[2] = 'x';
    }
    return letters;
}

QByteArray modeText(const TarMember &member)
{
    const quint32 mode = member.mode;
    return typeLetter(member.type) + rightsOf(mode >> 6, (mode & 04000) != 0, 's')
        + rightsOf(mode >> 3, (mode & 02000) != 0, 's') + rightsOf(mode, (mode & 01000) != 0, 't');
}

/// For a device, its numbers in place of the size.
QByteArray sizeText(const TarMember &member)
{
    if (isDevice(member.type)) {
        return QByteArray::number(member.deviceMajor) + ','
            + QByteArray::number(member.deviceMinor);
    }
    return QByteArray::number(member.type == Type::File ? member.size : 0);
}

QByteArray timeText(qint64 seconds)
{
    const auto time = QDateTime::fromSecsSinceEpoch(seconds, QTimeZone::utc());
    return time.isValid() ? time.toString("yyyy-MM-dd HH:mm").toLatin1()
                          : QByteArray::number(seconds);
}

QByteArray nameText(const TarMember &member)
{
    QByteArray name = escapedName(member.name);
    switch (member.type) {
    case Type::SymLink:
        return name + " -> " + escapedName(member.target);
    case Type::HardLink:
        return name + " link to " + escapedName(member.target);
    default:
        return name;
    }
}
} // namespace

void MemberListing::add(const TarMember &member)
{
    const QByteArray owner
        = QByteArray::number(member.user) + '/' + QByteArray::number(member.group);
    const QByteArray size = sizeText(member);
    m_ownerWidth = std::max(m_ownerWidth, owner.size() + 1 + size.size());
    m_text += modeText(member) + ' ' + owner + size.rightJustified(m_ownerWidth - owner.size())
        + ' ' + timeText(member.time) + ' ' + nameText(member) + '\n';
}

QByteArray escapedName(const QByteArray &name)
{
    static const QByteArray controls = "\a\b\t\n\v\f\r\\";
    static const QByteArray letters = "abtnvfr\\";
    QByteArray shown;
    for (const char c : name) {
        const qsizetype control = controls.indexOf(c);
        if (control >= 0) {
            shown += QByteArray("\\") + letters.at(control);
        } else if (c >= ' ' && c <= '~') {
            shown += c;
        } else {
            shown += '\\' + QByteArray::number(quint8(c), 8).rightJustified(3, '0');
        }
    }
    return shown;
}
} // namespace MkPackage
