#include "system/files/versionfiles.h"

#include "faultfiles.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

namespace {
QByteArray content(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("unreadable");
}
} // namespace

class TestVersionFiles : public QObject
{
    Q_OBJECT
private slots:
    void readsFirstLine_data();
    void readsFirstLine();
    void unreadableFileIsEmpty_data();
    void unreadableFileIsEmpty();
    void writesWithoutLineEnd();
    void ignoresAnUnwritableFile_data();
    void ignoresAnUnwritableFile();
    void namesModel_data();
    void namesModel();
};

void TestVersionFiles::readsFirstLine_data()
{
    QTest::addColumn<QByteArray>("file");
    QTest::addColumn<QString>("line");
    QTest::newRow("empty") << QByteArray() << "";
    QTest::newRow("no line end") << QByteArray("12") << "12";
    QTest::newRow("line end") << QByteArray("12\n") << "12";
    QTest::newRow("CRLF") << QByteArray("12\r\n") << "12";
    QTest::newRow("several lines") << QByteArray("12\n13\n") << "12";
    QTest::newRow("first line empty") << QByteArray("\n13\n") << "";
    QTest::newRow("blanks are kept") << QByteArray(" RV-K25T \n") << " RV-K25T ";
    QTest::newRow("UTF-8") << QByteArray("M\xC3\xBCller\n") << QString::fromUtf8("Müller");
}

void TestVersionFiles::readsFirstLine()
{
    QFETCH(QByteArray, file);
    QFETCH(QString, line);
    const QTemporaryDir folder;
    const QString path = folder.filePath("fwver");
    QFile out(path);
    QVERIFY(out.open(QIODevice::WriteOnly));
    out.write(file);
    out.close();
    QCOMPARE(firstLineOfFile(path), line);
}

void TestVersionFiles::unreadableFileIsEmpty_data()
{
    addUnreadablePathRows();
}

void TestVersionFiles::unreadableFileIsEmpty()
{
    QFETCH(QString, kind);
    const FaultFile fault(kind);
    QCOMPARE(firstLineOfFile(fault.path()), QString());
}

void TestVersionFiles::writesWithoutLineEnd()
{
    const QTemporaryDir folder;
    const QString path = folder.filePath("oem");
    writeTextFile(path, "a longer text");
    writeTextFile(path, QString::fromUtf8("Müller"));
    QCOMPARE(content(path), QByteArray("Müller"));
}

void TestVersionFiles::ignoresAnUnwritableFile_data()
{
    addUnwritablePathRows();
}

void TestVersionFiles::ignoresAnUnwritableFile()
{
    QFETCH(QString, kind);
    const FaultFile fault(kind);
    const QByteArray before = fault.content();
    writeTextFile(fault.path(), "x");
    QCOMPARE(fault.content(), before);
}

void TestVersionFiles::namesModel_data()
{
    QTest::addColumn<QString>("model");
    QTest::addColumn<QStringList>("names");
    QTest::newRow("K21T") << "RV-K21T" << QStringList{"RV-K21T", "K21T"};
    QTest::newRow("K25T") << "RV-K25T" << QStringList{"RV-K25T", "K25T"};
    QTest::newRow("trailing blank") << "RV-K25T " << QStringList{"RV-K25T "};
    QTest::newRow("other case") << "rv-k25t" << QStringList{"rv-k25t"};
    QTest::newRow("short code alone") << "K21" << QStringList{"K21"};
    QTest::newRow("none") << QString() << QStringList{QString()};
}

void TestVersionFiles::namesModel()
{
    QFETCH(QString, model);
    QFETCH(QStringList, names);
    QCOMPARE(modelNames(model), names);
}

QTEST_GUILESS_MAIN(TestVersionFiles)
#include "tst_versionfiles.moc"
