#include "healthypanel.h"

#include "checks.h"
#include "questions.h"

#include <QTest>

namespace Doctor {
namespace {
constexpr char outputs[]
    = "Screen 0: minimum 64 x 64, current 800 x 600, maximum 32767 x 32767\n"
      "LVDS1 connected primary 800x600+0+0 (normal left inverted right x axis y axis) 0mm x 0mm\n"
      "   800x600       60.00*+\n"
      "VGA1 disconnected (normal left inverted right x axis y axis)\n";
constexpr char firstPort[]
    = "eth0      Link encap:Ethernet  HWaddr 02:00:00:00:00:01  \n"
      "          inet addr:192.168.0.5  Bcast:192.168.0.255  Mask:255.255.255.0\n";
constexpr char secondPort[] = "eth1      Link encap:Ethernet  HWaddr 02:00:00:00:00:02  \n"
                              "          UP BROADCAST MULTICAST  MTU:1500  Metric:1\n";
constexpr char interfaces[] = "auto lo \niface lo inet loopback\n\n"
                              "auto eth0\niface eth0 inet dhcp\n\n"
                              "auto eth1\niface eth1 inet static\naddress 10.0.0.9\n"
                              "netmask 255.0.0.0\n\n";

void putFolders(Facts &facts)
{
    PathFacts folder;
    folder.kind = PathFacts::Kind::Folder;
    folder.isReadable = true;
    folder.isWritable = true;
    folder.freeSpace = qint64(1) << 30;
    folder.fileSystem = "ext4";
    for (const char *path : {Paths::biosFolder, Paths::mediaFolder, Paths::applicationFolder,
                             Paths::firmwareFolder, Paths::fontFolder, Paths::lockFolder}) {
        facts.paths.insert(path, folder);
    }
    for (const char *file : {Paths::interfacesFile, Paths::namingRulesFile, Paths::factoryMarker}) {
        facts.paths.insert(folderOf(file), folder);
    }
    facts.temporaryFolder = "/tmp";
    facts.paths.insert("/tmp", folder);
}

void putFiles(Facts &facts)
{
    putFile(facts, Paths::settingsFile, "app.mouse=1\n");
    putFile(facts, Paths::runtimeVersionFile, "12\n");
    putFile(facts, Paths::runtimeOemFile, "TALMERO");
    putFile(facts, Paths::biosVersionFile, "3");
    putFile(facts, Paths::modelFile, "RV-K21T");
    putFile(facts, Paths::runtimeScript, "exec /opt/runtime\n");
    putFile(facts, Paths::interfacesFile, interfaces);
}

void answerAll(Facts &facts)
{
    answer(facts, Question::Outputs, outputs);
    answer(facts, Question::OutputDetails, QByteArray(outputs) + "\tBrightness: 1.0\n");
    answer(facts, Question::Devices, "Virtual core pointer\nPenMount USB\n");
    answer(facts, Question::DeviceState, "1 class :\nButtonClass\n\tbutton[1]=up\n");
    answer(facts, Question::Server, "Screen Saver:\n  timeout:  600    cycle:  600\n");
    answer(facts, Question::FirstPort, firstPort);
    answer(facts, Question::SecondPort, secondPort);
    answer(facts, Question::Interfaces, QByteArray(firstPort) + '\n' + secondPort);
    answer(facts, Question::ApplicationSize, "4.0K\t/home/dest/compile\n12M\t/home/dest/\n");
    answer(facts, Question::Time, "1000000000\n");
    answer(facts, Question::TarVersion, "tar (GNU tar) 1.34\n");
    answer(facts, Question::Unpack, "sample\n");
    answer(facts, Question::DhcpVersion, "", "isc-dhclient-4.4.3-P1\n");
    answer(facts, Question::InterfacesFile, "lo\neth0\neth1\n");
    answer(facts, Question::Fonts, "Helvetica\nWeblySleek UI\n");
    answer(facts, Question::ScriptSyntax, "");
    answer(facts, Question::ShortPause, "");
    answer(facts, Question::GuardStatus, "watch=yes\n");
}
} // namespace

Facts healthyFacts()
{
    Facts facts;
    facts.display = ":0";
    facts.time = 1000000000;
    facts.limit = 5000;
    facts.tools.fill("/usr/bin/tool");
    facts.gzip = "/usr/bin/gzip";
    facts.guard = "/usr/bin/talmero-guard";
    facts.ifquery = "/usr/sbin/ifquery";
    facts.fontList = "/usr/bin/fc-list";
    facts.sample = "sample";
    facts.unpacked = "sample";
    facts.interfaces = {{"eth0", "02:00:00:00:00:01", false},
                        {"eth1", "02:00:00:00:00:02", false},
                        {"lo", "00:00:00:00:00:00", true}};
    facts.serialPorts.fill(SerialPort::Ready);
    putFolders(facts);
    putFiles(facts);
    answerAll(facts);
    return facts;
}

void answer(Facts &facts, Question question, const QByteArray &output, const QByteArray &errors,
            int status)
{
    facts.answers[size_t(question)]
        = Answered{{"tool", {"-x"}}, {ToolResult::End::Ended, status, output, errors}};
}

void fail(Facts &facts, Question question, ToolResult::End end)
{
    facts.answers[size_t(question)] = Answered{{"tool", {"-x"}}, {end, -1, {}, {}}};
}

void removeTool(Facts &facts, Tool tool)
{
    facts.tools[size_t(tool)].clear();
    for (const AskedTool &asked : firstQuestions(facts, "archive", "folder")) {
        if (asked.tool.isEmpty()) {
            facts.answers[size_t(asked.question)].reset();
        }
    }
    if (stateQuestion(facts).tool.isEmpty()) {
        facts.answers[size_t(Question::DeviceState)].reset();
    }
}

void putFile(Facts &facts, const QString &path, const QByteArray &content)
{
    PathFacts file;
    file.kind = PathFacts::Kind::File;
    file.isReadable = true;
    file.isWritable = true;
    file.content = content;
    file.size = content.size();
    facts.paths.insert(path, file);
}

void addBrokenThings(const QList<BrokenThing> &things)
{
    QTest::addColumn<qsizetype>("index");
    for (qsizetype index = 0; index < things.size(); ++index) {
        QTest::newRow(things.at(index).name) << index;
    }
}

QStringList complaints(const Facts &facts)
{
    QStringList all;
    for (const Finding &finding : runChecks(facts)) {
        if (finding.level != Level::Ok) {
            all += QString("%1 %2: %3")
                       .arg(finding.level == Level::Error ? "error" : "warning", finding.subject,
                            finding.text);
        }
    }
    return all;
}

QString judgeBrokenThing(const BrokenThing &thing)
{
    Facts facts = healthyFacts();
    thing.breakIt(facts);
    for (const Finding &finding : runChecks(facts)) {
        if (finding.advice.isEmpty() != (finding.level == Level::Ok)) {
            return "advice is for complaints, and each has one: " + finding.text;
        }
    }
    const QStringList said = complaints(facts);
    return said == thing.complaints ? QString() : "said:\n" + said.join('\n');
}
} // namespace Doctor
