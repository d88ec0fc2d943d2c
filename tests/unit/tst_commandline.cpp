#include "system/run/commandline.h"

#include "commandtext.h"
#include "system/run/toollimits.h"

#include <QTest>

class TestCommandLine : public QObject
{
    Q_OBJECT
private slots:
    void fixedCommands();
    void toolLimits();
    void screenSaving_data();
    void screenSaving();
    void orientation_data();
    void orientation();
    void brightness_data();
    void brightness();
    void clock_data();
    void clock();
};

void TestCommandLine::fixedCommands()
{
    QCOMPARE(startPauseCommand(), (Command{"sleep", {"1"}}));
    QCOMPARE(outputQueryCommand(), (Command{"xrandr", {"-q"}}));
    QCOMPARE(runtimeCommand(), (Command{"/bin/sh", {"/opt/talmero/bios/runapp.sh"}}));
    QCOMPARE(deviceListCommand(), (Command{"xinput", {"--list", "--name-only"}}));
    QCOMPARE(deviceStateCommand("a \"b\""), (Command{"xinput", {"query-state", "a \"b\""}}));
    QCOMPARE(hardwareClockCommand(), (Command{"hwclock", {"-w"}}));
    QCOMPARE(calibrationCommand(), Command{"xCal"});
}

/// The limits on a real panel. Tests of hanging tools pass shorter ones.
void TestCommandLine::toolLimits()
{
    constexpr ToolLimits limits;
    QCOMPARE(limits.tool.count(), 30000);
    QCOMPARE(limits.address.count(), 10000);
    QCOMPARE(limits.lease.count(), 10000);
    QCOMPARE(limits.hardwareAddress.count(), 3000);
    QCOMPARE(limits.interfaceList.count(), 10000);
    QCOMPARE(unpackLimit.count(), 30000);
}

void TestCommandLine::screenSaving_data()
{
    QTest::addColumn<QString>("minutes");
    QTest::addColumn<Command>("command");
    const Command off{"xset", {"-dpms", "s", "noexpose"}};
    QTest::newRow("absent") << "" << off;
    QTest::newRow("0") << "0" << off;
    QTest::newRow("not a number") << "ten" << off;
    QTest::newRow("number with a unit") << "10 min" << off;
    QTest::newRow("beyond 32 bits") << "99999999999" << off;
    QTest::newRow("5") << "5" << Command{"xset", {"s", "300"}};
    QTest::newRow("10") << "10" << Command{"xset", {"s", "600"}};
    QTest::newRow("60") << "60" << Command{"xset", {"s", "3600"}};
    QTest::newRow("15, not offered") << "15" << Command{"xset", {"s", "900"}};
    QTest::newRow("largest") << "2147483647" << Command{"xset", {"s", "128849018820"}};
}

void TestCommandLine::screenSaving()
{
    QFETCH(QString, minutes);
    QFETCH(Command, command);
    QCOMPARE(screenSavingCommand(minutes), command);
}

void TestCommandLine::orientation_data()
{
    QTest::addColumn<QString>("stored");
    QTest::addColumn<QString>("rotation");
    QTest::newRow("absent") << ""
                            << "normal";
    QTest::newRow("horizontal") << "horizontal"
                                << "normal";
    QTest::newRow("capital and blanks") << "  Horizontal "
                                        << "normal";
    QTest::newRow("blanks alone") << "  "
                                  << "normal";
    QTest::newRow("vertical") << "vertical"
                              << "left";
    QTest::newRow("VERTICAL") << "VERTICAL"
                              << "left";
    QTest::newRow("any other text") << "portrait"
                                    << "left";
    QTest::newRow("landscape counts as any other text") << "landscape"
                                                        << "left";
}

void TestCommandLine::orientation()
{
    QFETCH(QString, stored);
    QFETCH(QString, rotation);
    QCOMPARE(orientationCommand("LVDS1", stored),
             (Command{"xrandr", {"--output", "LVDS1", "--rotate", rotation}}));
    QCOMPARE(orientationCommand("", stored),
             (Command{"xrandr", {"--output", "", "--rotate", rotation}})); // an empty argument
}

void TestCommandLine::brightness_data()
{
    QTest::addColumn<QString>("stored");
    QTest::addColumn<QString>("factor");
    QTest::newRow("absent") << ""
                            << "1";
    QTest::newRow("blanks alone") << "   "
                                  << "1";
    QTest::newRow("full") << "1"
                          << "1";
    QTest::newRow("half") << "0.5"
                          << "0.5";
    QTest::newRow("dark, no minimum") << "0"
                                      << "0";
    QTest::newRow("surrounding blanks") << " 0.5 "
                                        << "0.5";
    QTest::newRow("any text, in lower case") << "Very Bright"
                                             << "very bright";
    QTest::newRow("not a number") << "1e400"
                                  << "1e400";
    QTest::newRow("from rescue mode") << QString(QChar(1)) << QString(QChar(1));
}

void TestCommandLine::brightness()
{
    QFETCH(QString, stored);
    QFETCH(QString, factor);
    QCOMPARE(brightnessCommand("a b", stored),
             (Command{"xrandr", {"--output", "a b", "--brightness", factor}}));
}

void TestCommandLine::clock_data()
{
    QTest::addColumn<QDateTime>("time");
    QTest::addColumn<QString>("text");
    const auto at = [](int year, int month, int day, int hour, int minute, int second) {
        return QDateTime(QDate(year, month, day), QTime(hour, minute, second));
    };
    QTest::newRow("afternoon") << at(2026, 11, 15, 13, 16, 0) << "111513162026";
    QTest::newRow("seconds are dropped") << at(2026, 11, 15, 13, 16, 59) << "111513162026";
    QTest::newRow("leading zeros") << at(2026, 1, 2, 3, 4, 5) << "010203042026";
    QTest::newRow("midnight") << at(2026, 12, 31, 0, 0, 0) << "123100002026";
    QTest::newRow("2038 and later") << at(2038, 1, 19, 3, 14, 8) << "011903142038";
    QTest::newRow("2106 and later") << at(2106, 2, 7, 6, 28, 16) << "020706282106";
    QTest::newRow("leap day") << at(2028, 2, 29, 23, 59, 0) << "022923592028";
}

void TestCommandLine::clock()
{
    QFETCH(QDateTime, time);
    QFETCH(QString, text);
    QCOMPARE(clockCommand(time), (Command{"date", {text}}));
}

QTEST_GUILESS_MAIN(TestCommandLine)
#include "tst_commandline.moc"
