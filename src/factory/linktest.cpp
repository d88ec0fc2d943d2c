#include "factory/linktest.h"

#include <QCoreApplication>
#include <QStringList>

namespace {
QString payload(int first, const QString &second, const QString &characters)
{
    return QString::number(first) + ':' + second + ':' + characters;
}
} // namespace

std::optional<PeerAddress> parsePeerAddress(const QString &text)
{
    const QStringList parts = text.split(':');
    const QString host = parts.first().trimmed();
    if (parts.size() < 2 || host.isEmpty()) {
        return {};
    }
    return PeerAddress{host, parts.at(1).toUShort()}; // 0 if not a number or too large
}

int linkNumber(const QString &testName)
{
    return testName.section('-', 0, 0).toInt();
}

QString serialPayload(const QString &device, const QString &characters)
{
    return payload(int(device.size()), device, characters);
}

QString etherPayload(int number, const QString &characters)
{
    constexpr int firstField = 5; // for every port: echo peers in use may rely on it
    return payload(firstField, QString::number(number), characters);
}

QString linkVerdict(const QString &received, const QString &expected)
{
    return received == expected ? QCoreApplication::translate("SoftwareSetup", "Test Ok!")
                                : QCoreApplication::translate("SoftwareSetup", "Test Fail!");
}
