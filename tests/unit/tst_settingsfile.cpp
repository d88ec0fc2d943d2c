#include "system/settings/settingsfile.h"

#include "faultfiles.h"
#include "manualpage.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <utility>

class TestSettingsFile : public QObject
{
    Q_OBJECT
private slots:
    void parsesLine_data();
    void parsesLine();
    void appliesText_data();
    void appliesText();
    void formatsInKeyOrder();
    void writtenTextReadsBackTheSame();
    void keyWithAByteOrderMark();
    void survivesHugeInput_data();
    void survivesHugeInput();
    void unreadableFileLeavesTheMap_data();
    void unreadableFileLeavesTheMap();
    void writesAndReads();
    void overwritesLongerFile();
    void unwritableFileIsReported_data();
    void unwritableFileIsReported();
    void documentedExample();
};

void TestSettingsFile::parsesLine_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<bool>("isEntry");
    QTest::addColumn<QString>("key");
    QTest::addColumn<QString>("value");
    const auto none = [](const char *name, const QByteArray &line) {
        QTest::newRow(name) << line << false << QString() << QString();
    };
    const auto entry
        = [](const char *name, const QByteArray &line, const QString &key, const QString &value) {
              QTest::newRow(name) << line << true << key << value;
          };
    none("empty", "");
    none("blanks", " \t ");
    none("comment", "# a=1");
    none("indented comment", "  \t# a=1");
    none("begins with =", "=x");
    none("begins with blank and =", "  =x");
    none("no =", "novalue");
    none("binary garbage", QByteArray("\x00\x01\xFE\xFF", 4));
    entry("plain", "a=1", "a", "1");
    entry("line feed", "a=1\n", "a", "1");
    entry("CRLF", "a=1\r\n", "a", "1");
    entry("empty value asks for removal", "a=", "a", "");
    entry("value with =", "k=a=b", "k", "a=b");
    entry("value begins with =", "k==b", "k", "=b");
    entry("hash inside", "a#=1#", "a#", "1#");
    entry("white space collapses", "  a \t b=c \v\f d  ", "a b", "c d");
    entry("blanks around =", "ethernet.eth0 = dhcp", "ethernet.eth0 ", " dhcp");
    entry("UTF-8 that holds the byte A0", "name=\xC3\xA0 la carte", "name",
          QString::fromUtf8("à la carte"));
    entry("no-break space is no white space", "a=\xC2\xA0", "a", QString(QChar::Nbsp));
    entry("control character", "bios.brightness=\x01", "bios.brightness", QString(QChar(1)));
    entry("zero byte", QByteArray("a\0b=1\0", 6), QString::fromUtf8("a\0b", 3),
          QString::fromUtf8("1\0", 2));
}

void TestSettingsFile::parsesLine()
{
    QFETCH(QByteArray, line);
    QFETCH(bool, isEntry);
    QFETCH(QString, key);
    QFETCH(QString, value);
    const auto entry = parseSettingsLine(line);
    QCOMPARE(entry.has_value(), isEntry);
    if (isEntry) {
        QCOMPARE(entry->key, key);
        QCOMPARE(entry->value, value);
    }
}

void TestSettingsFile::appliesText_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<SettingsMap>("expected");
    const SettingsMap before{{"kept", "0"}};
    const auto with = [&before](std::initializer_list<std::pair<QString, QString>> entries) {
        SettingsMap map = before;
        for (const auto &[key, value] : entries) {
            map.insert(key, value);
        }
        return map;
    };
    QTest::newRow("empty") << QByteArray() << before;
    QTest::newRow("skipped lines")
        << QByteArray("# comment\n\n=x\nnovalue\na=1\n") << with({{"a", "1"}});
    QTest::newRow("removed later") << QByteArray("a=1\na=\n") << before;
    QTest::newRow("removed, then set") << QByteArray("a=\na=1\n") << with({{"a", "1"}});
    QTest::newRow("the later line wins") << QByteArray("a=1\na=2\n") << with({{"a", "2"}});
    QTest::newRow("removes an earlier key") << QByteArray("kept=\n") << SettingsMap();
    QTest::newRow("no line end at the end")
        << QByteArray("a=1\nb=2") << with({{"a", "1"}, {"b", "2"}});
    QTest::newRow("CRLF") << QByteArray("a=1\r\nb=2\r\n") << with({{"a", "1"}, {"b", "2"}});
    QTest::newRow("keys differ in case")
        << QByteArray("a=1\nA=2\n") << with({{"a", "1"}, {"A", "2"}});
    QTest::newRow("byte order mark") << QByteArray("\xEF\xBB\xBF"
                                                   "a=1\n")
                                     << with({{"a", "1"}});
    QTest::newRow("binary garbage")
        << QByteArray("\x7F"
                      "ELF\x00\xFF\n\n\r\x80=\x81\n",
                      13)
        << with({{QString(QChar(char16_t(0xDC80))), QString(QChar(char16_t(0xDC81)))}});
}

void TestSettingsFile::appliesText()
{
    QFETCH(QByteArray, text);
    QFETCH(SettingsMap, expected);
    SettingsMap settings{{"kept", "0"}};
    applySettingsText(text, settings);
    QCOMPARE(settings, expected);
}

void TestSettingsFile::formatsInKeyOrder()
{
    const SettingsMap settings{{"b", "2"}, {"a", "1"}, {"app.mouse", "1"}};
    QCOMPARE(formatSettings(settings), QByteArray("a=1\napp.mouse=1\nb=2\n"));
    QCOMPARE(formatSettings({}), QByteArray());
}

void TestSettingsFile::writtenTextReadsBackTheSame()
{
    const QByteArray text("k=a=b\nlatin=caf\xE9\nname=gr\xC3\xB6\xC3\x9F"
                          "e \xC3\xA0\nzero=\x01\n");
    SettingsMap settings;
    applySettingsText(text, settings);
    QCOMPARE(settings.size(), 4);
    QCOMPARE(formatSettings(settings), text);
}

void TestSettingsFile::keyWithAByteOrderMark()
{
    SettingsMap settings;
    applySettingsText("# found in the middle of a file\n\xEF\xBB\xBFkey=1\n", settings);
    const QByteArray written = formatSettings(settings);
    QCOMPARE(written, QByteArray("\xEF\xBB\xBF\xEF\xBB\xBFkey=1\n"));
    SettingsMap again;
    applySettingsText(written, again);
    QCOMPARE(again, settings);
}

void TestSettingsFile::survivesHugeInput_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<qsizetype>("entries");
    constexpr int tenMegabytes = 10'000'000;
    QTest::newRow("value of 10 MB") << "a=" + QByteArray(tenMegabytes, 'x') + "\nb=1\n"
                                    << qsizetype(2);
    QTest::newRow("10 MB of blanks") << QByteArray(tenMegabytes, ' ') + "\nb=1\n" << qsizetype(1);
    QTest::newRow("10 MB without a line end") << QByteArray(tenMegabytes, 'x') << qsizetype(0);
    QByteArray lines;
    for (int line = 0; line < 100'000; ++line) {
        lines += "key" + QByteArray::number(line) + "=" + QByteArray::number(line) + '\n';
    }
    QTest::newRow("100,000 lines") << lines << qsizetype(100'000);
}

void TestSettingsFile::survivesHugeInput()
{
    QFETCH(QByteArray, text);
    QFETCH(qsizetype, entries);
    SettingsMap settings;
    applySettingsText(text, settings);
    QCOMPARE(settings.size(), entries);
    SettingsMap again;
    applySettingsText(formatSettings(settings), again);
    QCOMPARE(again, settings);
}

void TestSettingsFile::unreadableFileLeavesTheMap_data()
{
    addUnreadablePathRows();
}

void TestSettingsFile::unreadableFileLeavesTheMap()
{
    QFETCH(QString, kind);
    const FaultFile fault(kind);
    SettingsMap settings{{"a", "1"}};
    readSettingsFile(fault.path(), settings);
    QCOMPARE(settings, (SettingsMap{{"a", "1"}}));
}

void TestSettingsFile::writesAndReads()
{
    const QTemporaryDir folder;
    const QString path = folder.filePath("bios.ini");
    const SettingsMap settings{{"app.mouse", "1"}, {"name", QString::fromUtf8("größe")}};
    QVERIFY(writeSettingsFile(path, settings));
    SettingsMap read;
    readSettingsFile(path, read);
    QCOMPARE(read, settings);
}

void TestSettingsFile::overwritesLongerFile()
{
    const QTemporaryDir folder;
    const QString path = folder.filePath("bios.ini");
    QVERIFY(writeSettingsFile(path, {{"a", QString(1000, 'x')}}));
    QVERIFY(writeSettingsFile(path, {{"b", "1"}}));
    QFile file(path);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll(), QByteArray("b=1\n"));
}

void TestSettingsFile::unwritableFileIsReported_data()
{
    addUnwritablePathRows();
}

void TestSettingsFile::unwritableFileIsReported()
{
    QFETCH(QString, kind);
    const FaultFile fault(kind);
    QVERIFY(!writeSettingsFile(fault.path(), {{"a", "1"}}));
}

/// A save keeps all lines of the example in place, except the comment.
void TestSettingsFile::documentedExample()
{
    const QByteArrayList examples = examplesOfManualPage("src/bios.ini.5");
    QCOMPARE(examples.size(), 1);
    const QByteArray &example = examples.first();
    QVERIFY(example.startsWith("# comment, lost at the first save\n"));
    SettingsMap settings;
    applySettingsText(example, settings);
    QCOMPARE(settings.value("ethernet.eth1"), QString("192.168.0.20"));
    QCOMPARE(formatSettings(settings), example.mid(example.indexOf('\n') + 1));
}

QTEST_GUILESS_MAIN(TestSettingsFile)
#include "tst_settingsfile.moc"
