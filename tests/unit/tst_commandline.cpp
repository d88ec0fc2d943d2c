#include "system/commandline.h"


#include <QDirIterator>
#include <QRegularExpression>
#include <QTest>

class TestCommandLine : public QObject
{
    Q_OBJECT
private slots:
    void fixedCommands();
    void toolsAreNamedInOnePlace();
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
    QCOMPARE(startPauseCommand(), (QStringList{"sleep", "1"}));
    QCOMPARE(outputQueryCommand(), (QStringList{"xrandr", "-q"}));
    QCOMPARE(runtimeCommand(), (QStringList{"/bin/sh", "/opt/talmero/bios/runapp.sh"}));
    QCOMPARE(deviceListCommand(), (QStringList{"xinput", "--list", "--name-only"}));
    QCOMPARE(deviceStateCommand("a \"b\""), (QStringList{"xinput", "query-state", "a \"b\""}));
    QCOMPARE(hardwareClockCommand(), (QStringList{"hwclock", "-w"}));
    QCOMPARE(calibrationCommand(), QStringList{"xCal"});
}

/// A name anywhere else would be a tool of which the list of tools does not know.
void TestCommandLine::toolsAreNamedInOnePlace()
{
    static const QRegularExpression command(
        "(return|runAndWait\\(|runInFolder\\(|runLimited\\(|readOutput\\(|startDetached\\(|"
        "doProcess\\()\\s*\\{?\\s*\"[a-zA-Z/]+\"\\s*[,}]");
    int files = 0;
    QDirIterator sources(PANEL_SOURCE "/src", {"*.cpp"}, QDir::Files, QDirIterator::Subdirectories);
    for (; sources.hasNext(); ++files) {
        QFile file(sources.next());
        QVERIFY(file.open(QIODevice::ReadOnly));
        const auto found = command.match(QString::fromUtf8(file.readAll()));
        QVERIFY2(!found.hasMatch(), qPrintable(file.fileName() + ": " + found.captured()));
    }
    QVERIFY(files > 50);
}

void TestCommandLine::screenSaving_data()
{
    QTest::addColumn<QString>("minutes");
    QTest::addColumn<QStringList>("command");
    const QStringList off{"xset", "-dpms", "s", "noexpose"};
    QTest::newRow("absent") << "" << off;
    QTest::newRow("0") << "0" << off;
    QTest::newRow("no number") << "ten" << off;
    QTest::newRow("number with a unit") << "10 min" << off;
    QTest::newRow("beyond 32 bits") << "99999999999" << off;
    QTest::newRow("5") << "5" << QStringList{"xset", "s", "300"};
    QTest::newRow("10") << "10" << QStringList{"xset", "s", "600"};
    QTest::newRow("60") << "60" << QStringList{"xset", "s", "3600"};
    QTest::newRow("15, not offered") << "15" << QStringList{"xset", "s", "900"};
    QTest::newRow("largest") << "2147483647" << QStringList{"xset", "s", "128849018820"};
}

void TestCommandLine::screenSaving()
{
    QFETCH(QString, minutes);
    QFETCH(QStringList, command);
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
    QTest::newRow("landscape is another text") << "landscape"
                                               << "left";
}

void TestCommandLine::orientation()
{
    QFETCH(QString, stored);
    QFETCH(QString, rotation);
    QCOMPARE(orientationCommand("LVDS1", stored),
             (QStringList{"xrandr", "--output", "LVDS1", "--rotate", rotation}));
    QCOMPARE(orientationCommand("", stored),
             (QStringList{"xrandr", "--output", "", "--rotate", rotation})); // one empty argument
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
    QTest::newRow("dark: no minimum") << "0"
                                      << "0";
    QTest::newRow("blanks around") << " 0.5 "
                                   << "0.5";
    QTest::newRow("text goes as it is, in small letters") << "Very Bright"
                                                          << "very bright";
    QTest::newRow("no number") << "1e400"
                               << "1e400";
    QTest::newRow("from rescue mode") << QString(QChar(1)) << QString(QChar(1));
}

void TestCommandLine::brightness()
{
    QFETCH(QString, stored);
    QFETCH(QString, factor);
    QCOMPARE(brightnessCommand("a b", stored),
             (QStringList{"xrandr", "--output", "a b", "--brightness", factor}));
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
    QTest::newRow("zeros in front") << at(2026, 1, 2, 3, 4, 5) << "010203042026";
    QTest::newRow("midnight") << at(2026, 12, 31, 0, 0, 0) << "123100002026";
    QTest::newRow("2038 and later") << at(2038, 1, 19, 3, 14, 8) << "011903142038";
    QTest::newRow("2106 and later") << at(2106, 2, 7, 6, 28, 16) << "020706282106";
    QTest::newRow("leap day") << at(2028, 2, 29, 23, 59, 0) << "022923592028";
}

void TestCommandLine::clock()
{
    QFETCH(QDateTime, time);
    QFETCH(QString, text);
    QCOMPARE(clockCommand(time), (QStringList{"date", text}));
}

QTEST_GUILESS_MAIN(TestCommandLine)
#include "tst_commandline.moc"
