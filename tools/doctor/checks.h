#pragma once

#include "facts.h"
#include "finding.h"

namespace Doctor {
/// One thing to check. The function decides from values alone and always returns a finding.
struct Check
{
    const char *subject;
    Findings (*check)(const Facts &);
};

/// Every check, in the order of the report.
const QList<Check> &allChecks();

/// Runs all checks on @p facts. Every finding has a subject.
Findings runChecks(const Facts &facts);

// By file. toolchecks.cpp:
Findings checkUser(const Facts &facts);
Findings checkTools(const Facts &facts);
Findings checkTar(const Facts &facts);
Findings checkDu(const Facts &facts);
Findings checkDate(const Facts &facts);
Findings checkSleep(const Facts &facts);

// displaychecks.cpp
Findings checkDisplay(const Facts &facts);
Findings checkOutput(const Facts &facts);
Findings checkScreen(const Facts &facts);
Findings checkFonts(const Facts &facts);
Findings checkRotation(const Facts &facts);
Findings checkBrightness(const Facts &facts);
Findings checkTouch(const Facts &facts);

// networkchecks.cpp
Findings checkPorts(const Facts &facts);
Findings checkIfconfig(const Facts &facts);
Findings checkInterfaceList(const Facts &facts);
Findings checkDhclient(const Facts &facts);
Findings checkNamingRules(const Facts &facts);

// interfacescheck.cpp
Findings checkInterfacesFile(const Facts &facts);

// filechecks.cpp
Findings checkFolders(const Facts &facts);
Findings checkApplicationFolder(const Facts &facts);
Findings checkSpace(const Facts &facts);
Findings checkLinks(const Facts &facts);
Findings checkVersionFiles(const Facts &facts);
Findings checkScript(const Facts &facts);
Findings checkStick(const Facts &facts);
Findings checkSerialPorts(const Facts &facts);

// guardcheck.cpp
Findings checkGuard(const Facts &facts);

// settingschecks.cpp
Findings checkSettingsFile(const Facts &facts);
Findings checkSettings(const Facts &facts);
} // namespace Doctor
