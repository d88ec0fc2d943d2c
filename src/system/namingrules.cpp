#include "system/namingrules.h"

namespace {
constexpr char ruleTemplate[]
    = R"(SUBSYSTEM=="net", ACTION=="add", DRIVERS=="?*", ATTR{address}=="%1", ATTR{dev_id}=="0x0", )"
      R"(ATTR{type}=="1", KERNEL=="eth*", NAME="eth%2")";
constexpr char ruleEnd[] = " \n   ";
} // namespace

QString interfaceNamingRules(QStringList hardwareAddresses)
{
    hardwareAddresses.sort();
    QString rules;
    for (qsizetype index = 0; index < hardwareAddresses.size(); ++index) {
        // Both at once: an address may hold anything, a place holder too.
        rules += QString(ruleTemplate).arg(hardwareAddresses.at(index), QString::number(index));
        rules += QLatin1String(ruleEnd);
    }
    return rules;
}
