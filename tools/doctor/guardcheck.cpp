#include "answers.h"
#include "checks.h"

#include "system/settings/settingsfile.h"

namespace Doctor {
namespace {
constexpr char lossWithoutGuard[] = "a power cut can cost settings";
} // namespace

Findings checkGuard(const Facts &facts)
{
    if (facts.guard.isEmpty()) {
        return {fine(QString("not installed; %1").arg(QString(lossWithoutGuard)))};
    }
    if (const auto bad = badAnswer(facts, Question::GuardStatus, lossWithoutGuard)) {
        return {*bad};
    }
    SettingsMap status;
    applySettingsText(facts.answer(Question::GuardStatus)->answer.output, status);
    if (status.value("watch") != QLatin1String("yes")) {
        return {error("installed, but it does not watch",
                      QString("run \"systemctl restart talmero-guard\" and look into its journal; "
                              "until then %1")
                          .arg(QString(lossWithoutGuard)))};
    }
    const QString act = status.value("act");
    if (act.isEmpty()) {
        return {fine("watches; it has repaired nothing so far")};
    }
    return {fine(QString("watches; it last acted at %1: %2").arg(status.value("time"), act))};
}
} // namespace Doctor
