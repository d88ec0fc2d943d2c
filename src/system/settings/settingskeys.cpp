#include "system/settings/settingskeys.h"

#include <QStringList>

const EthernetKeys &ethernetKeys(int lan)
{
    static const EthernetKeys keys[] = {
        {"eth0", "ethernet.eth0", "ethernet.eth0.mask"},
        {"eth1", "ethernet.eth1", "ethernet.eth1.mask"},
    };
    return keys[lan == 0 ? 0 : 1];
}

std::optional<QSize> parseScreenSize(const QString &text)
{
    const QStringList parts = text.split('x', Qt::KeepEmptyParts, Qt::CaseInsensitive);
    if (parts.size() != 2) {
        return std::nullopt;
    }
    const QSize size(parts.at(0).toInt(), parts.at(1).toInt()); // 0 if not a number
    if (size.width() < 1 || size.height() < 1) {
        return std::nullopt;
    }
    return size;
}
