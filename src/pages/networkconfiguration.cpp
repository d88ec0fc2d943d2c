#include "shell/biosinterface.h"

#include "system/files/atomicfile.h"
#include "system/paths.h"
#include "system/run/commandline.h"
#include "system/run/process.h"
#include "system/settings/settingskeys.h"
#include "system/textcodec.h"

QPair<QString, QString> BiosInterface::releaseCurrenEthernetProcess()
{
    return doProcess(releaseLeaseCommand(), noLimit);
}

QPair<QString, QString> BiosInterface::manualSetIPProcess(const QString &ip, const QString &mask,
                                                          int lan)
{
    const EthernetKeys &keys = ethernetKeys(lan);
    m_settings.insert(keys.address, ip);
    m_settings.insert(keys.mask, mask);
    return doProcess(setAddressCommand(keys.interface, ip), noLimit);
}

QPair<QString, QString> BiosInterface::autoDetectIPProcess(int lan)
{
    const auto release = releaseCurrenEthernetProcess();
    const EthernetKeys &keys = ethernetKeys(lan);
    m_settings.remove(keys.mask);
    m_settings.insert(keys.address, dhcpValue);
    auto result = doProcess(obtainLeaseCommand(keys.interface), m_limits.lease);
    result.second.prepend(release.second);
    return result;
}

void BiosInterface::writeEthInterface(const QString &ip0, const QString &ip1, const QString &mask0,
                                      const QString &mask1)
{
    writeInterfaces(
        {PortSetup{shownPort(0).mode, ip0, mask0}, PortSetup{shownPort(1).mode, ip1, mask1}});
}

void BiosInterface::writeInterfaces(const PortSetups &ports)
{
    replaceFile(Paths::interfacesFile, bytesFromText(interfacesFileText(ports)));
}
