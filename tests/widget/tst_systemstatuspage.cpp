#include "debuglog.h"
#include "dialogdriver.h"
#include "diskfiles.h"
#include "faketools.h"
#include "packages/packagepicker.h"
#include "panelfiles.h"
#include "panelguard.h"
#include "panelmain.h"
#include "panelprogram.h"
#include "settingspage.h"
#include "system/textcodec.h"

#include <QElapsedTimer>
#include <QGridLayout>
#include <QLabel>
#include <QToolButton>

using namespace std::chrono_literals;

namespace {
const QStringList displayTools{"xrandr", "xset", "xinput"};
constexpr int rowCount = 7;
constexpr int updateRow = 6;
constexpr char busyboxOutput[]
    = "cat <<END\n"
      "$1      Link encap:Ethernet  HWaddr 00:1C:42:AB:CD:0${1#eth}  \n"
      "          inet addr:192.168.0.20  Bcast:192.168.0.255  Mask:255.255.255.0\n"
      "          UP BROADCAST RUNNING MULTICAST  MTU:1500  Metric:1\n\nEND";

class Page : public SettingsPage
{
public:
    explicit Page(const QByteArray &settings = {}, const ToolLimits &limits = {})
        : SettingsPage("System Status:9", settings, OpensPage, limits)
    {
    }

    QGridLayout *grid() const
    {
        return qobject_cast<QGridLayout *>(
            page()->layout()->itemAt(1)->layout()->itemAt(0)->layout());
    }
    QLabel *caption(int row) const { return labelIn(grid()->itemAtPosition(row, 0)); }
    QLabel *value(int row) const
    {
        QLayoutItem *cell = grid()->itemAtPosition(row, 1);
        return labelIn(row == updateRow ? cell->layout()->itemAt(0) : cell);
    }
    QToolButton *updateButton() const { return page()->findChild<QToolButton *>(); }

    QStringList values() const
    {
        QStringList texts;
        for (int row = 0; row < rowCount; ++row) {
            texts += value(row)->text();
        }
        return texts;
    }
    QString size() const { return value(0)->text(); }
    QString model() const { return value(1)->text(); }
    QString firmware() const { return value(2)->text(); }
    QString firstAddress() const { return value(4)->text(); }
    QString secondAddress() const { return value(5)->text(); }

private:
    static QLabel *labelIn(QLayoutItem *item) { return qobject_cast<QLabel *>(item->widget()); }
};

void writeVersions(const QByteArray &firmware, const QByteArray &oem, const QByteArray &model,
                   const QByteArray &bios)
{
    writePanelFile("fwver", firmware);
    writePanelFile("oem", oem);
    writePanelFile("model", model);
    writePanelFile("bios.version", bios);
}
} // namespace

class TestSystemStatusPage : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void init();
    void cleanup();
    void builtPage();
    void labelPair();
    void updateButtonOpensThePicker();
    void captionsOfASmallModel();
    void modelRow_data();
    void modelRow();
    void someRowsAreRefreshed();
    void missingVersionFiles();
    void textsAreShownAsTheyAre();
    void longTextsStayOnTheScreen_data();
    void longTextsStayOnTheScreen();
    void hardwareAddress_data();
    void hardwareAddress();
    void hangingIfconfigIsCutOff();
    void applicationSize_data();
    void applicationSize();
    void toolsMissing();
    void realTools();
    void pageWithoutLabels();

private:
    std::unique_ptr<FakeTools> m_tools;
};

void TestSystemStatusPage::initTestCase()
{
    requirePanel();
}

void TestSystemStatusPage::init()
{
    m_tools = std::make_unique<FakeTools>(displayTools + QStringList{"ifconfig", "du"});
    m_tools->setBody("ifconfig", busyboxOutput);
    m_tools->setBody("du", "printf '4.0K\\t/home/dest/compile\\n12M\\t/home/dest/\\n'");
    writeVersions("12\n", "TALMERO\n", "RV-K21T\n", "3\n");
}

void TestSystemStatusPage::cleanup()
{
    m_tools.reset();
}

void TestSystemStatusPage::builtPage()
{
    const Page page;
    QVERIFY(page.hasTitle("System Status"));
    QCOMPARE(page.page()->layout()->itemAt(1)->layout()->contentsMargins(),
             QMargins(19, 19, 19, 19));
    QCOMPARE(page.grid()->horizontalSpacing(), 40);
    QCOMPARE(page.grid()->verticalSpacing(), 40);
    QCOMPARE(page.grid()->rowCount(), rowCount);
    QCOMPARE(page.page()->findChildren<QLabel *>().size(), 2 * rowCount);
    const QStringList captions{"Application Size", "BIOS Version",     "Firmware Version",
                               "Manufacturer",     "Lan1 MAC Address", "Lan2 MAC Address",
                               "BIOS Version"};
    for (int row = 0; row < rowCount; ++row) {
        QCOMPARE(page.caption(row)->text(), captions.at(row) + "          :     ");
        QCOMPARE(page.caption(row)->objectName(), QString());
        QVERIFY((page.caption(row)->alignment() & Qt::AlignRight) != 0);
        QCOMPARE(page.value(row)->objectName(), "show " + captions.at(row));
        for (const QLabel *label : {page.caption(row), page.value(row)}) {
            QCOMPARE(label->palette().color(QPalette::WindowText), QColor(Qt::white));
            QCOMPARE(label->font().pixelSize(), 24);
        }
    }
    QCOMPARE(page.values(),
             (QStringList{"12M/16384M", "RV-K21T", "12", "TALMERO Industrial Panels",
                          "00:1C:42:AB:CD:00", "00:1C:42:AB:CD:01", "3"}));
}

void TestSystemStatusPage::labelPair()
{
    const Page page;
    const auto [caption, value] = page.window()->createSystemStatusLabel("Wind & <rain>");
    QCOMPARE(caption->text(), QString("Wind & <rain>          :     "));
    QVERIFY((caption->alignment() & Qt::AlignRight) != 0);
    QCOMPARE(caption->objectName(), QString());
    QCOMPARE(value->text(), QString());
    QCOMPARE(value->objectName(), QString("show Wind & <rain>"));
    for (const QLabel *label : {caption, value}) {
        QCOMPARE(label->palette().color(QPalette::WindowText), QColor(Qt::white));
        QCOMPARE(label->font().pixelSize(), 24);
    }
}

void TestSystemStatusPage::updateButtonOpensThePicker()
{
    const Page page;
    QToolButton *button = page.updateButton();
    QCOMPARE(button->text(), QString("Update BIOS"));
    QCOMPARE(button->sizePolicy(), QSizePolicy(QSizePolicy::Minimum, QSizePolicy::Minimum));
    QCOMPARE(button->palette().color(QPalette::WindowText), QColor(Qt::white));
    QCOMPARE(button->font().pixelSize(), 24);
    QVERIFY(button->height() >= 40); // large enough for a finger
    QCOMPARE(page.grid()->itemAtPosition(updateRow, 1)->layout()->itemAt(1)->widget(), button);
    bool picks = false;
    const DialogDriver user([&](QDialog &dialog) {
        picks = qobject_cast<BIOSUpdateDialog *>(&dialog) != nullptr;
        dialog.reject();
    });
    QTest::mouseClick(button, Qt::LeftButton);
    QCOMPARE(user.count(), 1);
    QVERIFY(picks);
}

void TestSystemStatusPage::captionsOfASmallModel()
{
    writePanelFile("model", "K21\n"); // the windows of this model have a font of 20 px
    const Page page;
    for (int row = 0; row < rowCount; ++row) {
        QCOMPARE(page.caption(row)->font().pixelSize(), 24);
        QCOMPARE(page.value(row)->font().pixelSize(), 24);
    }
}

void TestSystemStatusPage::modelRow_data()
{
    QTest::addColumn<QByteArray>("oem");
    QTest::addColumn<QByteArray>("model");
    QTest::addColumn<QString>("shown");
    QTest::newRow("of the series")
        << QByteArray("TALMEROQZP\n") << QByteArray("RV-K25T\n") << "TALMERO EK Series:RV-K25T";
    QTest::newRow("small letters")
        << QByteArray("talmeroqzp\n") << QByteArray("RV-K25T\n") << "RV-K25T";
    QTest::newRow("trailing text")
        << QByteArray("TALMEROQZP2\n") << QByteArray("RV-K25T\n") << "RV-K25T";
    QTest::newRow("trailing blank")
        << QByteArray("TALMEROQZP \n") << QByteArray("RV-K25T\n") << "RV-K25T";
    QTest::newRow("another OEM") << QByteArray("TALMERO\n") << QByteArray("RV-K21T\n") << "RV-K21T";
    QTest::newRow("no OEM") << QByteArray() << QByteArray("X") << "X";
    QTest::newRow("no model") << QByteArray("TALMEROQZP") << QByteArray() << "TALMERO EK Series:";
    QTest::newRow("not UTF-8") << QByteArray() << QByteArray("R\xFF\n") << textFromBytes("R\xFF");
}

void TestSystemStatusPage::modelRow()
{
    QFETCH(QByteArray, oem);
    QFETCH(QByteArray, model);
    QFETCH(QString, shown);
    writePanelFile("oem", oem);
    writePanelFile("model", model);
    QCOMPARE(Page().model(), shown);
}

void TestSystemStatusPage::someRowsAreRefreshed()
{
    const Page page;
    page.leave("ok"); // the page saves nothing
    writeVersions("13\n", "TALMEROQZP\n", "RV-K25T\n", "4\n");
    m_tools->setBody("ifconfig", QString(busyboxOutput).replace("00:1C", "00:AA"));
    m_tools->setBody("du", "printf '1.1G\\t/home/dest/\\n'");
    m_tools->forgetCalls();
    page.open();
    QCOMPARE(page.values(),
             (QStringList{"1.1G/16384M", "RV-K21T", "13", "TALMERO Industrial Panels",
                          "00:AA:42:AB:CD:00", "00:AA:42:AB:CD:01", "3"}));
    QCOMPARE(m_tools->calls().filter(QRegularExpression("^(ifconfig|du)")),
             (QStringList{"ifconfig [eth0]", "ifconfig [eth1]", "du [-h] [/home/dest/]"}));
}

void TestSystemStatusPage::missingVersionFiles()
{
    for (const char *name : {"fwver", "oem", "model", "bios.version"}) {
        removePanelFile(name);
    }
    const Page page;
    QCOMPARE(page.model(), QString());
    QCOMPARE(page.firmware(), QString(" "));
    QCOMPARE(page.value(updateRow)->text(), QString());
    writePanelFile("fwver", "\n"); // an empty line counts as no version
    QVERIFY(page.window()->loadSystemStatusSettings());
    QCOMPARE(page.firmware(), QString(" "));
}

void TestSystemStatusPage::textsAreShownAsTheyAre()
{
    const QByteArray markup = "<h1>1</h1>&amp;";
    writeVersions(markup, {}, markup, markup);
    m_tools->setBody("ifconfig", "echo 'HWaddr <i>1</i>'");
    m_tools->setBody("du", "printf '<b>2</b>\\t/\\n'");
    const Page page;
    QCOMPARE(page.values(),
             (QStringList{"<b>2</b>/16384M", markup, markup, "TALMERO Industrial Panels",
                          "<i>1</i>", "<i>1</i>", markup}));
    for (int row = 0; row < rowCount; ++row) {
        QCOMPARE(page.value(row)->textFormat(), Qt::PlainText);
        QCOMPARE(page.caption(row)->textFormat(), Qt::PlainText);
    }
}

void TestSystemStatusPage::longTextsStayOnTheScreen_data()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<QByteArray>("text");
    for (const QSize size : {QSize(800, 600), QSize(480, 800)}) {
        const QString name = QString("%1x%2, ").arg(size.width()).arg(size.height());
        QTest::newRow(qPrintable(name + "one word")) << size << QByteArray(5000, 'W');
        QTest::newRow(qPrintable(name + "many words"))
            << size << QByteArray("words ").repeated(900);
        QTest::newRow(qPrintable(name + "usual")) << size << QByteArray("12");
    }
}

void TestSystemStatusPage::longTextsStayOnTheScreen()
{
    QFETCH(QSize, size);
    QFETCH(QByteArray, text);
    const QByteArray settings = QByteArray("bios.screen.size=") + QByteArray::number(size.width())
        + 'x' + QByteArray::number(size.height()) + '\n';
    writeVersions(text, "TALMEROQZP", text, text);
    m_tools->setBody("du", QString("printf '%1\\t/home/dest/\\n'").arg(QString(text)));
    const Page page(settings);
    QCOMPARE(page.window()->size(), size);
    QVERIFY(page.page()->rect().contains(page.updateButton()->geometry()));
    if (text.size() < 10) { // texts of normal length are not cut
        const QLabel *model = page.value(1);
        const QRect needed
            = model->fontMetrics().boundingRect(model->rect(), Qt::TextWordWrap, model->text());
        QVERIFY(model->wordWrap());
        QVERIFY(model->rect().size().expandedTo(needed.size()) == model->size());
    }
}

void TestSystemStatusPage::hardwareAddress_data()
{
    QTest::addColumn<QString>("ifconfig");
    QTest::addColumn<QString>("shown");
    QTest::newRow("BusyBox") << busyboxOutput << "00:1C:42:AB:CD:00";
    QTest::newRow("two blanks at its end") << "echo 'eth0 HWaddr 00:11:22:33:44:55  '"
                                           << "00:11:22:33:44:55";
    QTest::newRow("30 characters") << "echo 'HWaddr 123456789012345678901234567890'"
                                   << "123456789012345678901234567890";
    QTest::newRow("31 characters") << "echo 'HWaddr 1234567890123456789012345678901'"
                                   << "";
    QTest::newRow("31 with blanks") << "echo 'HWaddr 1                              '"
                                    << "";
    QTest::newRow("nothing after it") << "echo 'HWaddr '"
                                      << "";
    QTest::newRow("no HWaddr") << "echo 'eth0 Link encap:Local Loopback'"
                               << "NULL";
    QTest::newRow("no blank after it") << "echo HWaddr"
                                       << "NULL";
    QTest::newRow("small letters") << "echo 'hwaddr 00:11:22:33:44:55'"
                                   << "NULL";
    QTest::newRow("current net-tools") << "echo '        ether 00:11:22:33:44:55  txqueuelen 1000'"
                                       << "NULL";
    QTest::newRow("no output") << "exit 1"
                               << "NULL";
    QTest::newRow("error text alone") << "echo 'HWaddr 00:11:22:33:44:55' >&2"
                                      << "NULL";
    QTest::newRow("error text too") << "echo oops >&2; echo 'HWaddr 1:2'"
                                    << "1:2";
}

void TestSystemStatusPage::hardwareAddress()
{
    QFETCH(QString, ifconfig);
    QFETCH(QString, shown);
    m_tools->setBody("ifconfig",
                     "if [ $1 = eth0 ]; then\n" + ifconfig + "\nelse echo HWaddr 5; fi");
    const Page page;
    QCOMPARE(page.firstAddress(), shown);
    QCOMPARE(page.secondAddress(), QString("5"));
    m_tools->setBody("ifconfig",
                     "if [ $1 = eth1 ]; then\nset eth0\n" + ifconfig + "\nelse echo HWaddr 5; fi");
    page.open();
    QCOMPARE(page.firstAddress(), QString("5"));
    QCOMPARE(page.secondAddress(), shown);
}

void TestSystemStatusPage::hangingIfconfigIsCutOff()
{
    const Page page({}, {.hardwareAddress = 1000ms});
    m_tools->setBody("ifconfig", "echo \"HWaddr 1:2:$1\"; [ $1 = eth1 ] || exec sleep 60");
    QElapsedTimer timer;
    timer.start();
    page.open();
    QVERIFY2(timer.elapsed() >= 1000 && timer.elapsed() < 20000,
             qPrintable(QString::number(timer.elapsed())));
    QCOMPARE(page.firstAddress(), QString("1:2:eth0")); // its output before the limit is used
    QCOMPARE(page.secondAddress(), QString("1:2:eth1"));
    QCOMPARE(page.size(), QString("12M/16384M"));
}

void TestSystemStatusPage::applicationSize_data()
{
    QTest::addColumn<QString>("du");
    QTest::addColumn<QString>("shown");
    QTest::newRow("one line") << "printf '12M\\t/home/dest/\\n'"
                              << "12M/16384M";
    QTest::newRow("two lines") << "printf '4.0K\\ta\\n12M\\tb\\n'"
                               << "12M/16384M";
    QTest::newRow("error text") << "echo 'cannot access' >&2; exit 1"
                                << "/16384M";
    QTest::newRow("size and error text")
        << "printf '12M\\t/home/dest/\\n'; echo 'cannot read x' >&2"
        << "/16384M";
    QTest::newRow("empty") << "exit 0"
                           << "/16384M";
    QTest::newRow("exit status alone") << "printf '12M\\tb\\n'; exit 1"
                                       << "12M/16384M";
    QTest::newRow("no line end") << "printf '12M\\t/home/dest/'"
                                 << "/16384M";
    QTest::newRow("last line not ended") << "printf '4.0K\\ta\\n12M\\tb'"
                                         << "4.0K/16384M";
    QTest::newRow("no tab") << "echo 12M"
                            << "12M/16384M";
    QTest::newRow("name with a line feed") << "printf '8K\\ta\\nb\\n12M\\t/home/dest/\\n'"
                                           << "12M/16384M";
}

void TestSystemStatusPage::applicationSize()
{
    QFETCH(QString, du);
    QFETCH(QString, shown);
    m_tools->setBody("du", du);
    QCOMPARE(Page().size(), shown);
}

void TestSystemStatusPage::toolsMissing()
{
    m_tools = nullptr;
    const FakeTools tools(displayTools);
    const QByteArray path = qgetenv("PATH");
    qputenv("PATH", path.split(':').first()); // only the folder of the stand-ins
    const Page page;
    qputenv("PATH", path);
    QCOMPARE(page.firstAddress(), QString("NULL"));
    QCOMPARE(page.secondAddress(), QString("NULL"));
    QCOMPARE(page.size(), QString("/16384M"));
    QCOMPARE(page.firmware(), QString("12"));
}

void TestSystemStatusPage::realTools()
{
    m_tools = nullptr;
    const FakeTools tools(displayTools);
    emptyFolder("/home/dest");
    writeFile("/home/dest/a/project", QByteArray(3 << 20, 'x'));
    const Page page;
    for (const QString &port : {QString("eth0"), QString("eth1")}) {
        const QByteArray path = "/sys/class/net/" + port.toUtf8() + "/address";
        QCOMPARE(port == "eth0" ? page.firstAddress() : page.secondAddress(),
                 QString(readFile(path).trimmed().toUpper()));
    }
    QCOMPARE(page.size(), toolOutput({"du", "-hs", "/home/dest"}).section('\t', 0, 0) + "/16384M");
    QVERIFY(page.size().startsWith("3."));
    shellBytes("rm -r /home/dest");
    page.open();
    emptyFolder("/home/dest");
    QCOMPARE(page.size(), QString("/16384M")); // du prints no size for a missing folder
}

void TestSystemStatusPage::pageWithoutLabels()
{
    const Page page;
    qDeleteAll(page.page()->findChildren<QLabel *>());
    m_tools->forgetCalls();
    QVERIFY(!page.window()->loadSystemStatusSettings());
    const DebugLog log;
    page.open();
    QCOMPARE(log.lines().filter("Load settings at page 9 error.").size(), 1);
    QCOMPARE(m_tools->calls().filter("ifconfig"), QStringList());
}

PANEL_QTEST_MAIN(TestSystemStatusPage)
#include "tst_systemstatuspage.moc"
