#include "packages/filewalk.h"

#include "failinglistings.h"
#include "panelguard.h"
#include "system/textcodec.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <dirent.h>
#include <fcntl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

namespace {
constexpr ExtensionCase smallLetters = ExtensionCase::SmallLetters;
constexpr ExtensionCase anyCase = ExtensionCase::AnyCase;

/// A folder tree. File names are bytes and need not be UTF-8.
class Tree
{
public:
    QString path() const { return m_folder.path() + '/'; }
    QByteArray bytes(const QByteArray &name) const { return path().toUtf8() + name; }

    void addFile(const QByteArray &name) const
    {
        const int file = open(bytes(name).constData(), O_WRONLY | O_CREAT | O_CLOEXEC, 0644);
        check(file >= 0, name);
        close(file);
    }
    void addFolder(const QByteArray &name) const
    {
        check(mkdir(bytes(name).constData(), 0755) == 0, name);
    }
    void addLink(const QByteArray &target, const QByteArray &name) const
    {
        check(symlink(target.constData(), bytes(name).constData()) == 0, name);
    }
    void addPipe(const QByteArray &name) const
    {
        check(mkfifo(bytes(name).constData(), 0644) == 0, name);
    }
    void addSocket(const QByteArray &name) const
    {
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        qstrncpy(address.sun_path, bytes(name).constData(), sizeof(address.sun_path));
        const int made = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
        check(bind(made, reinterpret_cast<sockaddr *>(&address), sizeof(address)) == 0, name);
        close(made);
    }

    QStringList find(const QStringList &extensions, ExtensionCase extensionCase) const
    {
        return findFilesBelow(path(), extensions, extensionCase);
    }
    QStringList sorted(const QStringList &extensions, ExtensionCase extensionCase) const
    {
        QStringList found = find(extensions, extensionCase);
        found.sort();
        return found;
    }

private:
    static void check(bool done, const QByteArray &name)
    {
        if (!done) {
            qFatal("cannot make %s", name.constData());
        }
    }

    QTemporaryDir m_folder;
};
} // namespace

class TestFileWalk : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void folderOfSetting_data();
    void folderOfSetting();
    void listsUpperLevelsFirst();
    void keepsTheOrderOfTheFileSystem();
    void caseOfExtensions();
    void severalExtensions();
    void plainFilesOnly();
    void anyNames();
    void emptyAndMissingFolders();
    void skipsUnreadableFolders();
    void folderMayBeALink();
    void foldersWithTheExtensionAreWalked();
    void deepFolders();
    void manyOtherFiles();
    void stickPulledDuringTheWalk();
    void fileSystemWithoutEntryTypes();
};

void TestFileWalk::initTestCase()
{
    requirePanel();
}

void TestFileWalk::folderOfSetting_data()
{
    QTest::addColumn<QString>("setting");
    QTest::addColumn<QString>("folder");
    QTest::newRow("not set") << ""
                             << "/media/";
    QTest::newRow("with slash") << "/media/usb0/"
                                << "/media/usb0/";
    QTest::newRow("without slash") << "/media"
                                   << "/media/";
    QTest::newRow("root") << "/"
                          << "/";
    QTest::newRow("relative") << "stick"
                              << "stick/";
    QTest::newRow("blank") << " "
                           << " /";
}

void TestFileWalk::folderOfSetting()
{
    QFETCH(QString, setting);
    QTEST(searchFolder(setting), "folder");
}

void TestFileWalk::listsUpperLevelsFirst()
{
    const Tree tree;
    tree.addFolder("A");
    tree.addFile("A/b.PKG");
    tree.addFolder("A/deeper");
    tree.addFile("A/deeper/d.pkg");
    tree.addFolder("B");
    tree.addFile("B/e.pkg");
    tree.addFile("c.pkg");
    const QStringList found = tree.find({".pkg"}, anyCase);
    QCOMPARE(found.size(), 4);
    QCOMPARE(found.first(), QString("c.pkg"));
    QCOMPARE(QSet<QString>(found.begin() + 1, found.begin() + 3),
             (QSet<QString>{"A/b.PKG", "B/e.pkg"}));
    QCOMPARE(found.last(), QString("A/deeper/d.pkg"));
}

void TestFileWalk::keepsTheOrderOfTheFileSystem()
{
    const Tree tree;
    for (const char *name : {"m.mo", "a.mo", "z.mo", "b.mo", "0.mo"}) {
        tree.addFile(name);
    }
    QStringList expected;
    DIR *folder = opendir(tree.path().toUtf8().constData());
    while (const dirent *entry = readdir(folder)) {
        if (entry->d_name[0] != '.') {
            expected += entry->d_name;
        }
    }
    closedir(folder);
    QCOMPARE(tree.find({".mo"}, smallLetters), expected);
    QStringList byName = expected;
    byName.sort();
    QVERIFY2(byName != expected, "this file system sorts its entries, so the test proves nothing");
}

void TestFileWalk::caseOfExtensions()
{
    const Tree tree;
    for (const char *name : {"a.kpc", "b.KPC", "c.Kpc", "d.kpc.bak", "kpc", "ekpc", "f.kp"}) {
        tree.addFile(name);
    }
    QCOMPARE(tree.sorted({".kpc"}, smallLetters), QStringList{"a.kpc"});
    QCOMPARE(tree.sorted({".kpc"}, anyCase), (QStringList{"a.kpc", "b.KPC", "c.Kpc"}));
}

void TestFileWalk::severalExtensions()
{
    const Tree tree;
    for (const char *name : {"a.ttf", "b.TTC", "c.otf", "d.ttf.ttc"}) {
        tree.addFile(name);
    }
    QCOMPARE(tree.sorted({".ttf", ".ttc"}, anyCase), (QStringList{"a.ttf", "b.TTC", "d.ttf.ttc"}));
    QCOMPARE(tree.find({}, anyCase), QStringList());
}

void TestFileWalk::plainFilesOnly()
{
    const Tree tree;
    tree.addFile("plain.kpc");
    tree.addFile(".hidden.kpc");
    tree.addFile(".kpc");
    tree.addFolder(".hidden");
    tree.addFile(".hidden/in.kpc");
    tree.addPipe("pipe.kpc");
    tree.addSocket("socket.kpc");
    tree.addLink("plain.kpc", "link.kpc");
    tree.addLink("nowhere", "dangling.kpc");
    tree.addFolder("folder");
    tree.addFile("folder/in.kpc");
    tree.addLink("folder", "linked");
    tree.addLink(".", "cycle");
    tree.addLink("..", "folder/up");
    QCOMPARE(tree.sorted({".kpc"}, anyCase), (QStringList{"folder/in.kpc", "plain.kpc"}));
}

void TestFileWalk::anyNames()
{
    const Tree tree;
    const QByteArrayList names{"with blank.kpc", "\"quotes'.kpc", "line\nfeed.kpc", "\xC3\xBC.kpc",
                               "\xFC\xFF.kpc",   "-rf.kpc",       "<b>.kpc",        "\\.kpc",
                               "%s.kpc",         "tab\t.kpc"};
    tree.addFolder("\xE9t\xE9");
    QStringList expected;
    for (const QByteArray &name : names) {
        tree.addFile(name);
        tree.addFile("\xE9t\xE9/" + name);
        expected << textFromBytes(name) << textFromBytes("\xE9t\xE9/" + name);
    }
    expected.sort();
    const QStringList found = tree.sorted({".kpc"}, smallLetters);
    QCOMPARE(found, expected);
    for (const QString &name : found) {
        QCOMPARE(access(bytesFromText(tree.path() + name).constData(), R_OK), 0);
    }
}

void TestFileWalk::emptyAndMissingFolders()
{
    const Tree tree;
    tree.addFile("file");
    QCOMPARE(tree.find({".kpc"}, anyCase), QStringList());
    QCOMPARE(findFilesBelow("/no/such/folder/", {".kpc"}, anyCase), QStringList());
    QCOMPARE(findFilesBelow(tree.path() + "file/", {".kpc"}, anyCase), QStringList());
}

void TestFileWalk::skipsUnreadableFolders()
{
    const Tree tree;
    tree.addFolder("closed");
    tree.addFile("closed/a.kpc");
    tree.addFolder("open");
    tree.addFile("open/b.kpc");
    QCOMPARE(chmod(tree.bytes("closed").constData(), 0), 0);
    QCOMPARE(chmod(tree.path().toUtf8().constData(), 0755), 0);
    QCOMPARE(seteuid(65534), 0); // root could read it
    const QStringList found = tree.find({".kpc"}, anyCase);
    QCOMPARE(seteuid(0), 0);
    QCOMPARE(found, QStringList{"open/b.kpc"});
}

void TestFileWalk::folderMayBeALink()
{
    const Tree tree;
    tree.addFolder("stick");
    tree.addFile("stick/a.kpc");
    tree.addLink("stick", "media");
    QCOMPARE(findFilesBelow(tree.path() + "media/", {".kpc"}, anyCase), QStringList{"a.kpc"});
}

void TestFileWalk::foldersWithTheExtensionAreWalked()
{
    const Tree tree;
    tree.addFolder("folder.kpc");
    tree.addFile("folder.kpc/a.kpc");
    QCOMPARE(tree.find({".kpc"}, smallLetters), QStringList{"folder.kpc/a.kpc"});
}

void TestFileWalk::deepFolders()
{
    const Tree tree;
    QByteArray folder;
    const int depth = 1000;
    for (int level = 0; level < depth; ++level) {
        folder += "d/";
        tree.addFolder(folder);
    }
    tree.addFile(folder + "deep.kpc");
    QCOMPARE(tree.find({".kpc"}, anyCase), QStringList{QString("d/").repeated(depth) + "deep.kpc"});
}

void TestFileWalk::manyOtherFiles()
{
    const Tree tree;
    const int folders = 200;
    const int files = 500;
    for (int folder = 0; folder < folders; ++folder) {
        const QByteArray name = QByteArray::number(folder);
        tree.addFolder(name);
        for (int file = 0; file < files; ++file) {
            tree.addFile(name + '/' + QByteArray::number(file) + ".txt");
        }
    }
    tree.addFile("199/package.kpc");
    QCOMPARE(tree.find({".kpc"}, anyCase), QStringList{"199/package.kpc"});
    QCOMPARE(tree.find({".txt"}, anyCase).size(), qsizetype{folders} * files);
}

void TestFileWalk::stickPulledDuringTheWalk()
{
    const Tree tree;
    tree.addFolder("folder");
    for (const char *name : {"a.kpc", "b.kpc", "c.kpc", "folder/d.kpc"}) {
        tree.addFile(name);
    }
    for (int entries = 0; entries < 13; ++entries) {
        const FailingListings pulled(entries);
        const QStringList found = tree.find({".kpc"}, anyCase);
        QVERIFY(found.size() <= qMin(entries, 4));
        // All files need seven reads at the top (".", "..", the folder, three files, the end) and
        // three in the folder (".", "..", a file).
        QCOMPARE(found.size() == 4, entries >= 10);
    }
    QCOMPARE(tree.find({".kpc"}, anyCase).size(), 4);
}

void TestFileWalk::fileSystemWithoutEntryTypes()
{
    const Tree tree;
    tree.addFolder("folder");
    tree.addFolder("folder.kpc");
    for (const char *name : {"a.kpc", "folder/b.kpc", "folder.kpc/c.kpc"}) {
        tree.addFile(name);
    }
    const QStringList found = tree.find({".kpc"}, anyCase);
    const UntypedListings untyped;
    QCOMPARE(tree.find({".kpc"}, anyCase), found);
    QVERIFY(found.contains("folder.kpc/c.kpc"));
}

QTEST_GUILESS_MAIN(TestFileWalk)
#include "tst_filewalk.moc"
