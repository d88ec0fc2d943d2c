#include "system/output/ifconfigoutput.h"

#include <QRegularExpression>

namespace {
constexpr QLatin1String addressLabel("inet addr:");
constexpr QLatin1String broadcastLabel("Bcast:");
constexpr QLatin1String maskLabel("Mask:");
constexpr QLatin1String hardwareLabel("HWaddr");
constexpr qsizetype longestHardwareAddress = 30; // longer texts are not addresses

QString withoutBlanksAtEnd(QString text)
{
    while (text.endsWith(' ')) {
        text.chop(1);
    }
    return text;
}

QString findAddress(const QString &output)
{
    const qsizetype label = output.indexOf(addressLabel);
    if (label < 0) {
        return "NULL";
    }
    const qsizetype start = label + addressLabel.size();
    const qsizetype end = output.indexOf(broadcastLabel);
    const QString address = end < start ? output.mid(start) : output.mid(start, end - start);
    return withoutBlanksAtEnd(address);
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
    // The length is counted from the label: this adds the six characters that the header mentions.
    return end < 0 ? QString() : output.mid(start, end - label + 1);
}
} // namespace

InterfaceAddress parseInterfaceAddress(const QString &ifconfigOutput)
{
    return {findAddress(ifconfigOutput), findMask(ifconfigOutput)};
}

QString parseHardwareAddress(const QString &ifconfigOutput)
{
    const QString label = hardwareLabel + ' ';
    const qsizetype found = ifconfigOutput.indexOf(label);
    if (found < 0) {
        return "NULL";
    }
    const qsizetype start = found + label.size();
    const qsizetype lineEnd = ifconfigOutput.indexOf('\n', start);
    const qsizetype end = lineEnd < 0 ? ifconfigOutput.size() : lineEnd;
    if (end - start > longestHardwareAddress) {
        return {};
    }
    return withoutBlanksAtEnd(ifconfigOutput.mid(start, end - start));
}

QStringList hardwareAddresses(const QString &ifconfigOutput)
{
    QStringList addresses;
    for (const QString &line : ifconfigOutput.split('\n')) {
        const qsizetype label = line.indexOf(hardwareLabel);
        if (label >= 0) {
            addresses += line.mid(label + hardwareLabel.size()).simplified();
        }
    }
    return addresses;
}
