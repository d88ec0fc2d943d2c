#include "checks.h"

namespace Doctor {
const QList<Check> &allChecks()
{
    // clang-format off
    static const QList<Check> checks{
        {"user",            checkUser},
        {"tools",           checkTools},
        {"display",         checkDisplay},
        {"output",          checkOutput},
        {"screen",          checkScreen},
        {"rotation",        checkRotation},
        {"brightness",      checkBrightness},
        {"fonts",           checkFonts},
        {"touch",           checkTouch},
        {"LAN ports",       checkPorts},
        {"ifconfig",        checkIfconfig},
        {"interface list",  checkInterfaceList},
        {"DHCP client",     checkDhclient},
        {"interfaces file", checkInterfacesFile},
        {"naming rules",    checkNamingRules},
        {"serial ports",    checkSerialPorts},
        {"unpacking",       checkTar},
        {"size",            checkDu},
        {"clock",           checkDate},
        {"pause",           checkSleep},
        {"folders",         checkFolders},
        {"application",     checkApplicationFolder},
        {"space",           checkSpace},
        {"links",           checkLinks},
        {"stick",           checkStick},
        {"runtime script",  checkScript},
        {"version files",   checkVersionFiles},
        {"settings file",   checkSettingsFile},
        {"settings",        checkSettings},
        {"guard",           checkGuard},
    };
    // clang-format on
    return checks;
}

Findings runChecks(const Facts &facts)
{
    Findings all;
    for (const Check &check : allChecks()) {
        for (Finding &finding : check.check(facts)) {
            if (finding.subject.isEmpty()) {
                finding.subject = QLatin1String(check.subject);
            }
            all += finding;
        }
    }
    return all;
}
} // namespace Doctor
