#include "system/run/factorycommand.h"

#include "commandtext.h"
#include "system/formats/networkfiles.h"

#include <QTest>

class TestFactoryCommand : public QObject
{
    Q_OBJECT
private slots:
    void fixedCommands();
    void presetTone_data();
    void presetTone();
    void namingRules_data();
    void namingRules();
};

void TestFactoryCommand::fixedCommands()
{
    QCOMPARE(calibrationPauseCommand(), (Command{"sleep", {"2"}}));
    QCOMPARE(echoPauseCommand(), (Command{"sleep", {"0.2"}}));
    QCOMPARE(sessionAsideCommand(), (Command{"mv", {"/root/.xinitrc", "/root/xinitrc"}}));
    QCOMPARE(removeFileCommand("/a b"), (Command{"rm", {"/a b"}}));
    QCOMPARE(interfaceListCommand(), Command{"ifconfig"});
    QCOMPARE(beepCommand(), Command{"beep"});
    QCOMPARE(toneCommand("100", "30"), (Command{"beep", {"-f", "100", "-l", "30"}}));
}

void TestFactoryCommand::presetTone_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("frequency");
    QTest::addColumn<QString>("duration");
    QTest::newRow("long") << "Beep f:2900 t:1000"
                          << "2900"
                          << "1000";
    QTest::newRow("low") << "Beep f:2700 t:100"
                         << "2700"
                         << "100";
    QTest::newRow("short") << "Beep f:2900 t:100"
                           << "2900"
                           << "100";
    QTest::newRow("no numbers") << "Beep f: t:"
                                << ""
                                << "";
    QTest::newRow("cut off") << "Beep"
                             << ""
                             << "";
}

void TestFactoryCommand::presetTone()
{
    QFETCH(QString, text);
    QFETCH(QString, frequency);
    QFETCH(QString, duration);
    QCOMPARE(presetToneCommand(text), (Command{"beep", {"-f", frequency, "-l", duration}}));
}

void TestFactoryCommand::namingRules_data()
{
    QTest::addColumn<QStringList>("addresses");
    QTest::addColumn<QStringList>("rules"); // MAC address and number of each rule
    QTest::newRow("none") << QStringList() << QStringList();
    QTest::newRow("one") << QStringList{"02:00:00:00:00:01"}
                         << QStringList{"02:00:00:00:00:01", "0"};
    QTest::newRow("two in reverse order")
        << QStringList{"02:00:00:00:00:02", "02:00:00:00:00:01"}
        << QStringList{"02:00:00:00:00:01", "0", "02:00:00:00:00:02", "1"};
    QTest::newRow("capitals and digits first")
        << QStringList{"00:aa:00:00:00:00", "00:1B:00:00:00:00", "00:AA:00:00:00:01"}
        << QStringList{"00:1B:00:00:00:00", "0", "00:AA:00:00:00:01", "1",
                       "00:aa:00:00:00:00", "2"};
    QTest::newRow("equal") << QStringList{"00:01", "00:01"}
                           << QStringList{"00:01", "0", "00:01", "1"};
    QTest::newRow("placeholder as trailing text")
        << QStringList{"00:02 %1 %2", "00:01 up"}
        << QStringList{"00:01 up", "0", "00:02 %1 %2", "1"};
    QTest::newRow("five") << QStringList{"e", "d", "c", "b", "a"}
                          << QStringList{"a", "0", "b", "1", "c", "2", "d", "3", "e", "4"};
}

void TestFactoryCommand::namingRules()
{
    QFETCH(QStringList, addresses);
    QFETCH(QStringList, rules);
    QString expected;
    for (qsizetype index = 0; index + 1 < rules.size(); index += 2) {
        expected += "SUBSYSTEM==\"net\", ACTION==\"add\", DRIVERS==\"?*\", ATTR{address}==\""
            + rules.at(index)
            + "\", ATTR{dev_id}==\"0x0\", ATTR{type}==\"1\", KERNEL==\"eth*\", NAME=\"eth"
            + rules.at(index + 1) + "\" \n   ";
    }
    QCOMPARE(interfaceNamingRules(addresses), expected);
}

QTEST_GUILESS_MAIN(TestFactoryCommand)
#include "tst_factorycommand.moc"
