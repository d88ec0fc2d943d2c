// What the guard takes for a file that a power cut has damaged.

#include "judge.h"

#include <QTest>

using namespace Guard;

Q_DECLARE_METATYPE(Guard::Fault)
Q_DECLARE_METATYPE(Guard::Kind)
Q_DECLARE_METATYPE(Guard::Pairing)

namespace {
const QByteArray loopback = "auto lo \niface lo inet loopback\n\n";
const QByteArray dhcp0 = "auto eth0\niface eth0 inet dhcp\n\n";
const QByteArray fixed1
    = "auto eth1\niface eth1 inet static\naddress 10.0.0.9\nnetmask 255.0.0.0\n\n";
const QByteArray fixedSettings = "ethernet.eth1=10.0.0.9\nethernet.eth1.mask=255.0.0.0\n";
const QByteArray bothPorts = "app.mouse=1\nethernet.eth0=dhcp\n" + fixedSettings;

/// What the settings pages store one after the other.
const QByteArray saves[] = {
    "app.orientation=horizontal\nbios.brightness=1\n",
    "app.mouse=1\napp.orientation=vertical\napp.screensaving=10\nbios.brightness=0.8\n",
    "app.mouse=1\napp.orientation=vertical\napp.screensaving=10\nbios.brightness=\x01\n",
    bothPorts,
    "app.mouse=1\nethernet.eth0=dhcp\n",
    "app.mouse=1\nethernet.eth0=10.0.0.8\nethernet.eth0.mask=255.255.255.0\n" + fixedSettings,
    "app.mouse=1\nethernet.eth0=\nethernet.eth0.mask=255.255.255.0\n" + fixedSettings,
    "app.mouse=1\nethernet.eth0=dhcp\n" + fixedSettings + "zz.makers.own=kept\n",
};

/// Whether @p text has each key of @p old that @p next has too.
bool losesNothing(const QByteArray &text, const QByteArray &old, const QByteArray &next)
{
    const SettingsMap left = settingsIn(text);
    const SettingsMap known = settingsIn(old);
    const SettingsMap wanted = settingsIn(next);
    return std::all_of(known.keyBegin(), known.keyEnd(), [&](const QString &key) {
        return left.contains(key) || !wanted.contains(key);
    });
}
} // namespace

class TestGuardJudge : public QObject
{
    Q_OBJECT
private slots:
    void file_data();
    void file();
    void settings_data();
    void settings();
    void cutSaveIsSeen();
    void wholeSaveIsGood();
    void interfaces_data();
    void interfaces();
    void pair_data();
    void pair();
};

void TestGuardJudge::file_data()
{
    QTest::addColumn<Kind>("kind");
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<Fault>("fault");
    const auto row = [](const char *name, Kind kind, const QByteArray &text, Fault fault) {
        QTest::newRow(name) << kind << text << fault;
    };
    const QByteArray zeros(4096, '\0');
    row("settings", Kind::Settings, bothPorts, Fault::None);
    row("no settings", Kind::Settings, "", Fault::Empty);
    row("blank settings", Kind::Settings, " \r\n\n", Fault::Empty);
    row("settings of zero bytes", Kind::Settings, zeros, Fault::Empty);
    row("zero bytes behind settings", Kind::Settings, bothPorts + zeros, Fault::Cut);
    row("cut in a value", Kind::Settings, "app.mouse=1\nbios.brightness=0", Fault::Cut);
    row("cut in a key", Kind::Settings, "app.mouse=1\nbios.bri", Fault::Cut);
    row("only a line end is missing", Kind::Settings, "app.mouse=1", Fault::Cut);
    row("cut in a key, with comments", Kind::Settings, "# mine\napp.mouse=1\nbios", Fault::Cut);
    row("hand-written without a last line end", Kind::Settings, "# mine\napp.mouse=1", Fault::None);
    row("unsorted without a last line end", Kind::Settings, "b=1\na=1", Fault::None);
    row("last line is a comment", Kind::Settings, "a=1\n# the end", Fault::None);
    row("blanks behind the last line", Kind::Settings, "a=1\n  ", Fault::None);
    row("only a comment", Kind::Settings, "# defaults\n", Fault::None);
    row("lines of another system", Kind::Settings, "a=1\r\nb=2\r\n", Fault::None);
    row("not UTF-8", Kind::Settings, "a=\xff\n", Fault::None);
    row("version", Kind::Line, "12", Fault::None);
    row("version with line end", Kind::Line, "12\n", Fault::None);
    row("version in words", Kind::Line, "three", Fault::None);
    row("no version", Kind::Line, "", Fault::Empty);
    row("version in the second line", Kind::Line, "\n12\n", Fault::Empty);
    row("version of zero bytes", Kind::Line, zeros, Fault::Empty);
    row("version with a zero byte", Kind::Line, QByteArray("1\0", 2), Fault::Cut);
    row("interfaces", Kind::Interfaces, loopback, Fault::None);
    row("no interfaces", Kind::Interfaces, "\n", Fault::Empty);
    row("no naming rules", Kind::NoCopy, "", Fault::None);
}

void TestGuardJudge::file()
{
    QFETCH(Kind, kind);
    QFETCH(QByteArray, text);
    QTEST(faultOf(kind, text), "fault");
}

void TestGuardJudge::settings_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QByteArray>("copy");
    QTest::addColumn<QByteArray>("interfaces");
    QTest::addColumn<Fault>("fault");
    const auto row = [](const char *name, const QByteArray &text, const QByteArray &copy,
                        const QByteArray &interfaces, Fault fault) {
        QTest::newRow(name) << text << copy << interfaces << fault;
    };
    const QByteArray onlyEth0 = "app.mouse=1\nethernet.eth0=dhcp\n";
    row("no copy", "a=1\n", "", "", Fault::None);
    row("no copy, empty", "", "", "", Fault::Empty);
    row("as the copy", "a=1\n", "a=1\n", "", Fault::None);
    row("the same settings in other lines", "b=2\na=1", "a=1\nb=2\n", "", Fault::None);
    row("only the last line end is missing", "a=1\nb=2", "a=1\nb=2\n", "", Fault::None);
    row("the same settings and zero bytes", QByteArray("a=1\n\0", 5), "a=1\n", "", Fault::Cut);
    row("empty", "", "a=1\n", "", Fault::Empty);
    row("new value", "a=2\nb=1\n", "a=1\nb=1\n", "", Fault::None);
    row("removed in the middle", "a=1\nc=1\n", "a=1\nb=1\nc=1\n", "", Fault::None);
    row("last key is missing", "a=1\n", "a=1\nb=1\n", "", Fault::Cut);
    row("last key is missing, others are new", "a=2\n", "a=1\nb=1\n", "", Fault::Cut);
    row("last key is missing, by hand", "# mine\na=1\n", "a=1\nb=1\n", "", Fault::None);
    row("only a comment is left, by hand", "# defaults\n", "a=1\nb=1\n", "", Fault::None);
    row("port disabled", onlyEth0, bothPorts, loopback + dhcp0, Fault::None);
    row("port disabled, interfaces old", onlyEth0, bothPorts, loopback + dhcp0 + fixed1,
        Fault::Cut);
    row("port disabled, interfaces foreign", onlyEth0, bothPorts, dhcp0, Fault::Cut);
    row("mask is missing", "ethernet.eth1=10.0.0.9\n", fixedSettings, loopback + fixed1,
        Fault::Cut);
    row("port disabled, last key missing too", "a=1\n", "a=1\nethernet.eth0=dhcp\nz=1\n", loopback,
        Fault::Cut);
    row("last ports disabled, nothing else stored", "", "ethernet.eth0=dhcp\n", loopback,
        Fault::None);
    row("empty, interfaces old", "", "ethernet.eth0=dhcp\n", loopback + dhcp0, Fault::Empty);
}

void TestGuardJudge::settings()
{
    QFETCH(QByteArray, text);
    QFETCH(QByteArray, copy);
    QFETCH(QByteArray, interfaces);
    QTEST(settingsFault(text, copy, interfaces), "fault");
}

/// Every save cut at every byte, after every other: the guard puts the copy back, or nothing that
/// was stored before is lost.
void TestGuardJudge::cutSaveIsSeen()
{
    for (const QByteArray &old : saves) {
        for (const QByteArray &next : saves) {
            const QByteArray interfaces = interfacesFor(settingsIn(old)); // not yet written anew
            for (qsizetype size = 0; size < next.size(); ++size) {
                const QByteArray text = next.left(size);
                const bool isSeen = settingsFault(text, old, interfaces) != Fault::None;
                QVERIFY2(isSeen || losesNothing(text, old, next),
                         (old + "then\n" + text).constData());
            }
        }
    }
}

/// Saves of the Ethernet page survive even if the copy is older, once the interfaces file is
/// written.
void TestGuardJudge::wholeSaveIsGood()
{
    for (const QByteArray &next : saves) {
        QCOMPARE(faultOf(Kind::Settings, next), Fault::None);
    }
    const QByteArray ports[]
        = {"", "ethernet.eth0=dhcp\n", fixedSettings, "ethernet.eth0=dhcp\n" + fixedSettings};
    for (const QByteArray &old : ports) {
        for (const QByteArray &next : ports) {
            const QByteArray interfaces = interfacesFor(settingsIn(next));
            QCOMPARE(settingsFault("app.mouse=1\n" + next, "app.mouse=1\n" + old, interfaces),
                     Fault::None);
        }
    }
}

void TestGuardJudge::interfaces_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QByteArray>("copy");
    QTest::addColumn<QByteArray>("settings");
    QTest::addColumn<Fault>("fault");
    const QByteArray both = loopback + dhcp0 + fixed1;
    QTest::newRow("as the copy") << both << both << bothPorts << Fault::None;
    QTest::newRow("no copy") << both << QByteArray() << bothPorts << Fault::None;
    QTest::newRow("cut in an address")
        << both.left(both.indexOf(".9")) << both << bothPorts << Fault::Cut;
    QTest::newRow("cut in the first line")
        << QByteArray("auto lo") << both << bothPorts << Fault::Cut;
    QTest::newRow("port disabled")
        << loopback + dhcp0 << both << QByteArray("ethernet.eth0=dhcp\n") << Fault::None;
    QTest::newRow("longer") << both << loopback << bothPorts << Fault::None;
    QTest::newRow("empty") << QByteArray() << both << bothPorts << Fault::Empty;
}

void TestGuardJudge::interfaces()
{
    QFETCH(QByteArray, text);
    QFETCH(QByteArray, copy);
    QFETCH(QByteArray, settings);
    QTEST(interfacesFault(text, copy, settingsIn(settings)), "fault");
}

void TestGuardJudge::pair_data()
{
    QTest::addColumn<QByteArray>("interfaces");
    QTest::addColumn<QByteArray>("settings");
    QTest::addColumn<Pairing>("pairing");
    const auto row
        = [](const char *name, const QByteArray &interfaces, const QByteArray &settings,
             Pairing pairing) { QTest::newRow(name) << interfaces << settings << pairing; };
    row("both ports", loopback + dhcp0 + fixed1, bothPorts, Pairing::Equal);
    row("no ports", loopback, "app.mouse=1\n", Pairing::Equal);
    row("port is missing", loopback + dhcp0, bothPorts, Pairing::Differs);
    row("port was disabled", loopback + dhcp0, "", Pairing::Differs);
    row("cut in an address", loopback + dhcp0 + fixed1.left(60), bothPorts, Pairing::Differs);
    row("mixture of two saves", loopback + fixed1 + fixed1, bothPorts, Pairing::Differs);
    row("netmask of a page that was on DHCP",
        loopback
            + "auto eth0\niface eth0 inet static\naddress 10.0.0.8\n"
              "netmask 255.0.0.0\n     \n\n",
        "ethernet.eth0=10.0.0.8\nethernet.eth0.mask=255.0.0.0\n", Pairing::Equal);
    row("the page's netmask",
        loopback
            + "auto eth0\niface eth0 inet static\naddress 10.0.0.8\n"
              "netmask 255.255.255.0\n\n",
        "ethernet.eth0=10.0.0.8\n", Pairing::Equal);
    row("empty address", loopback + "auto eth0\niface eth0 inet static\naddress \nnetmask 1\n\n",
        "ethernet.eth0=\n", Pairing::Differs);
    row("Debian's own", "auto lo\niface lo inet loopback\n", bothPorts, Pairing::Foreign);
    row("the maker's own", "auto lo\niface lo inet loopback\n\n" + dhcp0, "", Pairing::Foreign);
    row("another port", loopback + "auto eth2\niface eth2 inet dhcp\n", bothPorts,
        Pairing::Foreign);
    row("gateway", loopback + dhcp0 + fixed1 + "gateway 10.0.0.1\n", bothPorts, Pairing::Foreign);
    row("comment", loopback + "# mine\n", "", Pairing::Foreign);
    row("include", "source /etc/network/interfaces.d/*\n" + loopback, "", Pairing::Foreign);
    row("empty", "", bothPorts, Pairing::Foreign);
}

void TestGuardJudge::pair()
{
    QFETCH(QByteArray, interfaces);
    QFETCH(QByteArray, settings);
    QTEST(comparePair(interfaces, settingsIn(settings)), "pairing");
}

QTEST_GUILESS_MAIN(TestGuardJudge)
#include "tst_guardjudge.moc"
