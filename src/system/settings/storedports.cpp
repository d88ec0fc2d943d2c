#include "system/settings/storedports.h"

#include "system/settings/settingskeys.h"

PortSetup storedPort(const SettingsMap &settings, int lan)
{
    const EthernetKeys &keys = ethernetKeys(lan);
    const QString address = settings.value(keys.address);
    if (address.isEmpty()) {
        return {};
    }
    if (address == QLatin1String(dhcpValue)) {
        return {PortMode::Dhcp, {}, {}};
    }
    const QString mask = settings.value(keys.mask);
    return {PortMode::Static, address, mask.isEmpty() ? QString(defaultMask) : mask};
}

PortSetups storedPorts(const SettingsMap &settings)
{
    return {storedPort(settings, 0), storedPort(settings, 1)};
}
