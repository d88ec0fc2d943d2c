#include "questions.h"

#include "system/output/tooloutput.h"
#include "system/run/commandline.h"
#include "system/run/factorycommand.h"
#include "system/settings/settingskeys.h"

namespace Doctor {
namespace {
/// As the program reads what such a tool prints.
QString answerText(const std::optional<Answered> &answered)
{
    return answered ? QString::fromLocal8Bit(answered->answer.output) : QString();
}
} // namespace

QList<AskedTool> firstQuestions(const Facts &facts, const QString &archive, const QString &folder)
{
    const auto ask = [&facts](Question question, Tool tool, const Command &command) {
        return AskedTool{question, facts.tool(tool), command};
    };
    const auto port = [](int lan) { return addressQueryCommand(ethernetKeys(lan).interface); };
    // clang-format off
    QList<AskedTool> questions{
        ask(Question::Outputs,         Tool::Xrandr,   outputQueryCommand()),
        ask(Question::OutputDetails,   Tool::Xrandr,   toolCommand(Tool::Xrandr, {"--verbose"})),
        ask(Question::Devices,         Tool::Xinput,   deviceListCommand()),
        ask(Question::Server,          Tool::Xset,     toolCommand(Tool::Xset, {"q"})),
        ask(Question::FirstPort,       Tool::Ifconfig, port(0)),
        ask(Question::SecondPort,      Tool::Ifconfig, port(1)),
        ask(Question::Interfaces,      Tool::Ifconfig, interfaceListCommand()),
        ask(Question::ApplicationSize, Tool::Du,       applicationSizeCommand()),
        ask(Question::Time,            Tool::Date,     toolCommand(Tool::Date, {"+%s"})),
        ask(Question::TarVersion,      Tool::Tar,      toolCommand(Tool::Tar, {"--version"})),
        ask(Question::DhcpVersion,     Tool::Dhclient, toolCommand(Tool::Dhclient, {"--version"})),
        ask(Question::ShortPause,      Tool::Sleep,    echoPauseCommand()),
        {Question::GuardStatus,        facts.guard,    {guardName, {"status"}}},
        {Question::InterfacesFile,     facts.ifquery,  {ifqueryName, {"--list"}}},
        {Question::Fonts,              facts.fontList, {fontListName, {":", "family"}}},
    };
    // clang-format on
    if (facts.path(Paths::runtimeScript).kind == PathFacts::Kind::File) {
        questions += ask(Question::ScriptSyntax, Tool::Shell,
                         toolCommand(Tool::Shell, {"-n", Paths::runtimeScript}));
    }
    if (!archive.isEmpty()) {
        questions += {Question::Unpack, facts.tool(Tool::Tar), unpackCommand(archive), folder};
    }
    return questions;
}

AskedTool stateQuestion(const Facts &facts)
{
    const QString device = touchDeviceName(answerText(facts.answer(Question::Devices)));
    return {Question::DeviceState, device.isEmpty() ? QString() : facts.tool(Tool::Xinput),
            deviceStateCommand(device)};
}
} // namespace Doctor
