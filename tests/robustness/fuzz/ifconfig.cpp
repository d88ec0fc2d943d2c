#include "fuzz.h"

#include "system/formats/networkfiles.h"
#include "system/output/ifconfigoutput.h"
#include "system/run/process.h"

#include <QStringList>

namespace {
void readAddress(const QString &output)
{
    const InterfaceAddress found = parseInterfaceAddress(output);
    require(!found.address.endsWith(' '));
    require(found.address == "NULL" || output.contains("inet addr:" + found.address));
    require(output.contains(found.mask));
}

void readHardwareAddress(const QString &output)
{
    const QString address = parseHardwareAddress(output);
    require(address.size() <= 30 && !address.endsWith(' ') && !address.contains('\n'));
    require(address == "NULL" || output.contains("HWaddr " + address));
}

void nameInterfaces(const QString &output)
{
    const QStringList addresses = hardwareAddresses(output);
    for (const QString &address : addresses) {
        require(address == address.simplified());
    }
    const QString rules = interfaceNamingRules(addresses);
    require(rules.count('\n') == addresses.size());
}
} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QString output = byteText(inputBytes(data, size));
    readAddress(output);
    readHardwareAddress(output);
    nameInterfaces(output);
    return 0;
}
