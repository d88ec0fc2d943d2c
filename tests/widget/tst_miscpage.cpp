#include "shell/biosinterface.h"

#include "fakescreen.h"
#include "faketools.h"
#include "panelfiles.h"
#include "panelmain.h"
#include "settingspage.h"
#include "widgets/radiobutton.h"

#include <QAbstractItemView>
#include <QButtonGroup>
#include <QComboBox>
#include <QDateTimeEdit>
#include <QGridLayout>
#include <QLabel>
#include <QStackedWidget>

#include <memory>

namespace {
const QStringList displayTools{"xrandr", "xset", "xinput", "date", "hwclock"};

/// The settings window with its miscellaneous page. Tests operate it by clicks.
class Page : public SettingsPage
{
public:
    explicit Page(const QByteArray &settings = {})
        : SettingsPage("Miscellaneous:6", settings, StaysClosed)
    {
        window()->goToSettingsPage();
    }

    RadioButton *choice(int row, int index) const
    {
        return page()->findChildren<RadioButton *>().at(row * 2 + index);
    }
    QComboBox *delay() const { return page()->findChildren<QComboBox *>().at(0); }
    QComboBox *brightness() const { return page()->findChildren<QComboBox *>().at(1); }
    QDateTimeEdit *time() const { return page()->findChild<QDateTimeEdit *>(); }

    /// The current choices: mouse, orientation, buzzer, delay, brightness.
    QString shown() const
    {
        QStringList texts;
        for (int row = 0; row < 3; ++row) {
            for (int index = 0; index < 2; ++index) {
                if (choice(row, index)->isChecked()) {
                    texts += choice(row, index)->text();
                }
            }
        }
        texts << delay()->currentText() << brightness()->currentText();
        return texts.join(", ");
    }

    static void click(QWidget *widget) { QTest::mouseClick(widget, Qt::LeftButton); }
};
} // namespace

class TestMiscPage : public QObject
{
    Q_OBJECT
private slots:
    void init();
    void cleanup();
    void builtPage();
    void layout();
    void followsANarrowScreen();
    void listRowsAreTallEnough();
    void shows_data();
    void shows();
    void unknownValuesLeaveTheControls();
    void clockRunsWhileThePageIsOpen();
    void stepButtonsChangeTheTime();
    void saves_data();
    void saves();
    void toolsRunInOrder();
    void cancelChangesNothing();
    void unwritableSettingsAreApplied();
    void startAppliesTheSettings_data();
    void startAppliesTheSettings();
    void activationTurnsTheScreen();
    void toolsThatFail_data();
    void toolsThatFail();

private:
    QStringList callsSince(qsizetype before) const;

    std::unique_ptr<FakeTools> m_tools;
};

void TestMiscPage::init()
{
    m_tools = std::make_unique<FakeTools>(displayTools);
    m_tools->setBody("xrandr", "[ \"$1\" != -q ] || echo 'LVDS1 connected 800x600+0+0'");
}

void TestMiscPage::cleanup()
{
    m_tools.reset();
}

/// The recorded runs without those of the rescue poll, which a timer starts.
QStringList TestMiscPage::callsSince(qsizetype before) const
{
    return m_tools->calls().mid(before).filter(QRegularExpression("^(?!xinput)"));
}

void TestMiscPage::builtPage()
{
    const Page page;
    QStringList texts;
    for (const QLabel *label :
         page.page()->findChildren<QLabel *>(QString(), Qt::FindDirectChildrenOnly)) {
        texts += label->text();
        QVERIFY((label->alignment() & Qt::AlignRight) != 0);
        QCOMPARE(label->palette().color(QPalette::WindowText), QColor(Qt::white));
    }
    QCOMPARE(texts,
             (QStringList{"Mouse : ", "Display Orientation : ", "Buzzer : ", "Screen Saving : ",
                          "Back Light Brightness : ", "Time : "}));
    QCOMPARE(page.shown(), QString("Enable, Landscape, Enable, Close, Full Light"));
    const QStringList delays{"Close", "5 Mins", "10 Mins", "20 Mins", "30 Mins", "60 Mins"};
    const QList<int> minutes{0, 5, 10, 20, 30, 60};
    QCOMPARE(page.delay()->count(), delays.size());
    for (int index = 0; index < delays.size(); ++index) {
        QCOMPARE(page.delay()->itemText(index), delays.at(index));
        QCOMPARE(page.delay()->itemData(index, Qt::UserRole), QVariant(minutes.at(index)));
    }
    const QStringList lights{"Full Light", "90%", "80%", "70%", "60%", "50%",
                             "40%",        "30%", "20%", "10%", "0%"};
    const QStringList factors{"1",   "0.9", "0.8", "0.7", "0.6", "0.5",
                              "0.4", "0.3", "0.2", "0.1", "0"};
    QCOMPARE(page.brightness()->count(), lights.size());
    for (int index = 0; index < lights.size(); ++index) {
        QCOMPARE(page.brightness()->itemText(index), lights.at(index));
        QCOMPARE(page.brightness()->itemData(index, Qt::UserRole), QVariant(factors.at(index)));
    }
    QVERIFY(qAbs(page.time()->dateTime().secsTo(QDateTime::currentDateTime())) < 10);
}

void TestMiscPage::layout()
{
    const Page page;
    page.open();
    const QLayout *content = page.page()->layout()->itemAt(1)->layout();
    QCOMPARE(content->contentsMargins(), QMargins(19, 19, 19, 19));
    QVERIFY(content->itemAt(1)->spacerItem() != nullptr); // the rows stay at the top
    const auto *grid = qobject_cast<QGridLayout *>(content->itemAt(0)->layout());
    QVERIFY(grid != nullptr);
    QCOMPARE(grid->horizontalSpacing(), 40);
    QCOMPARE(grid->verticalSpacing(), 40);
    QCOMPARE(grid->rowCount(), 6);
    const auto captions = page.page()->findChildren<QLabel *>(Qt::FindDirectChildrenOnly);
    for (int row = 0; row < grid->rowCount(); ++row) {
        QCOMPARE(grid->itemAtPosition(row, 0)->widget(), captions.at(row));
        QCOMPARE(captions.at(row)->font().pixelSize(), 24);
    }
    for (int row = 0; row < 3; ++row) {
        QCOMPARE(grid->itemAtPosition(row, 1)->widget(), page.choice(row, 0));
        QCOMPARE(grid->itemAtPosition(row, 2)->widget(), page.choice(row, 1));
        const QButtonGroup *group = page.choice(row, 0)->group();
        QCOMPARE(group->buttons().size(), 2);
        QCOMPARE(group->id(page.choice(row, 0)), 0);
        QCOMPARE(group->id(page.choice(row, 1)), 1);
    }
    const QWidget *const fields[] = {page.delay(), page.brightness(), page.time()};
    for (int row = 3; row < 6; ++row) {
        for (const int column : {1, 2}) { // one field spans both
            QCOMPARE(grid->itemAtPosition(row, column)->widget(), fields[row - 3]);
        }
    }
}

void TestMiscPage::followsANarrowScreen()
{
    const Page page;
    page.open();
    const FakeScreen screen(QRect(2000, 0, 800, 600));
    for (const QSize size : {QSize(600, 800), QSize(480, 800), QSize(800, 600)}) {
        screen.setGeometry(QRect(QPoint(2000, 0), size));
        QCOMPARE(page.window()->size(), size);
    }
}

void TestMiscPage::listRowsAreTallEnough()
{
    const Page page;
    page.open();
    for (QComboBox *box : {page.delay(), page.brightness()}) {
        box->showPopup();
        QAbstractItemView *list = box->view();
        QVERIFY(QTest::qWaitForWindowExposed(list->window()));
        const QRect first = list->visualRect(list->model()->index(0, 0));
        const QRect last = list->visualRect(list->model()->index(box->count() - 1, 0));
        QVERIFY(box->height() >= 44);
        QVERIFY2(first.height() >= 44, qPrintable(QString::number(first.height())));
        QVERIFY(first.top() >= 0); // visible without scrolling
        QVERIFY2(last.bottom() < list->viewport()->height(),
                 qPrintable(QString("%1, %2").arg(last.bottom()).arg(list->viewport()->height())));
        QVERIFY(QRect(0, 0, 800, 600).contains(list->window()->geometry()));
        box->hidePopup();
    }
    QVERIFY(page.time()->height() >= 44);
    for (const RadioButton *choice : page.page()->findChildren<RadioButton *>()) {
        QVERIFY(choice->height() >= 44);
    }
}

void TestMiscPage::shows_data()
{
    QTest::addColumn<QByteArray>("settings");
    QTest::addColumn<QString>("shown");
    QTest::newRow("nothing set") << QByteArray()
                                 << "Disable, Landscape, Disable, Close, Full Light";
    QTest::newRow("all set") << QByteArray("app.mouse=1\napp.buzzer=1\napp.orientation=vertical\n"
                                           "app.screensaving=20\nbios.brightness=0.3\n")
                             << "Enable, Portrait, Enable, 20 Mins, 30%";
    QTest::newRow("any text enables") << QByteArray("app.mouse=no\napp.buzzer=no\n")
                                      << "Enable, Landscape, Enable, Close, Full Light";
    QTest::newRow("capitals") << QByteArray("app.orientation=VERTICAL\n")
                              << "Disable, Portrait, Disable, Close, Full Light";
    QTest::newRow("other orientation") << QByteArray("app.orientation=portrait\n")
                                       << "Disable, Landscape, Disable, Close, Full Light";
    QTest::newRow("delay not offered")
        << QByteArray("app.screensaving=15\n") << "Disable, Landscape, Disable, Close, Full Light";
    QTest::newRow("brightness not offered")
        << QByteArray("bios.brightness=0.55\n") << "Disable, Landscape, Disable, Close, Full Light";
    QTest::newRow("full light") << QByteArray("bios.brightness=1\n")
                                << "Disable, Landscape, Disable, Close, Full Light";
    QTest::newRow("dark") << QByteArray("bios.brightness=0\n")
                          << "Disable, Landscape, Disable, Close, 0%";
    QTest::newRow("from rescue mode")
        << QByteArray("bios.brightness=\x01\n") << "Disable, Landscape, Disable, Close, Full Light";
}

void TestMiscPage::shows()
{
    QFETCH(QByteArray, settings);
    QFETCH(QString, shown);
    const Page page(settings);
    page.open();
    QCOMPARE(page.shown(), shown);
}

void TestMiscPage::unknownValuesLeaveTheControls()
{
    const Page page("app.buzzer=1\napp.screensaving=15\nbios.brightness=1\n");
    page.open();
    Page::click(page.choice(2, 1));
    page.delay()->setCurrentIndex(3);
    page.brightness()->setCurrentIndex(4);
    page.leave("cancel");
    page.open();
    // The page cannot show these three stored values, so it leaves their controls alone.
    QCOMPARE(page.shown(), QString("Disable, Landscape, Disable, 20 Mins, 60%"));
}

void TestMiscPage::clockRunsWhileThePageIsOpen()
{
    const Page page;
    page.time()->setDateTime(QDateTime(QDate(2000, 1, 1), QTime(0, 0)));
    page.open();
    QVERIFY(qAbs(page.time()->dateTime().secsTo(QDateTime::currentDateTime())) <= 1);
    const QDateTime set(QDate(2030, 12, 31), QTime(23, 59, 58));
    page.time()->setDateTime(set); // the clock continues from the time that was set
    QTRY_COMPARE_WITH_TIMEOUT(page.time()->dateTime(), set.addSecs(3), 5000);
    page.leave("cancel");
    const QDateTime left = page.time()->dateTime();
    QTest::qWait(1200); // over one tick: the clock must stand still
    QCOMPARE(page.time()->dateTime(), left);
}

void TestMiscPage::stepButtonsChangeTheTime()
{
    const Page page;
    page.open();
    QDateTimeEdit *time = page.time();
    const QDateTime set(QDate(2030, 6, 15), QTime(12, 0, 30));
    time->setDateTime(set);
    time->setCurrentSection(QDateTimeEdit::YearSection);
    const int right = time->width() - 22;
    const int middle = time->height() / 2;
    QTest::mouseClick(time, Qt::LeftButton, {}, QPoint(right, middle));
    QCOMPARE(time->date().year(), 2031);
    time->setCurrentSection(QDateTimeEdit::HourSection);
    QTest::mouseClick(time, Qt::LeftButton, {}, QPoint(right - 44, middle));
    QCOMPARE(time->time().hour(), 11);
}

void TestMiscPage::saves_data()
{
    QTest::addColumn<int>("mouse");
    QTest::addColumn<int>("orientation");
    QTest::addColumn<int>("buzzer");
    QTest::addColumn<int>("delay");
    QTest::addColumn<int>("brightness");
    QTest::addColumn<QByteArray>("stored");
    QTest::newRow("first of each") << 0 << 0 << 0 << 0 << 0
                                   << QByteArray("app.buzzer=1\napp.mouse=1\n"
                                                 "app.orientation=horizontal\nbios.brightness=1\n");
    QTest::newRow("second of each")
        << 1 << 1 << 1 << 1 << 1
        << QByteArray("app.orientation=vertical\napp.screensaving=5\nbios.brightness=0.9\n");
    QTest::newRow("last of each")
        << 1 << 1 << 0 << 5 << 10
        << QByteArray("app.buzzer=1\napp.orientation=vertical\napp.screensaving=60\n"
                      "bios.brightness=0\n");
}

void TestMiscPage::saves()
{
    QFETCH(int, mouse);
    QFETCH(int, orientation);
    QFETCH(int, buzzer);
    QFETCH(int, delay);
    QFETCH(int, brightness);
    QFETCH(QByteArray, stored);
    const Page page("app.mouse=1\napp.buzzer=1\napp.screensaving=30\nzzz=kept\n");
    page.open();
    Page::click(page.choice(0, mouse));
    Page::click(page.choice(1, orientation));
    Page::click(page.choice(2, buzzer));
    page.delay()->setCurrentIndex(delay);
    page.brightness()->setCurrentIndex(brightness);
    page.leave("ok");
    QCOMPARE(readPanelFile("bios.ini"), stored + "zzz=kept\n");
    QCOMPARE(page.window()->findChild<QStackedWidget *>()->currentIndex(), 1);
}

void TestMiscPage::toolsRunInOrder()
{
    const Page page;
    page.open();
    Page::click(page.choice(1, 1));
    page.delay()->setCurrentIndex(2);
    page.brightness()->setCurrentIndex(5);
    page.time()->setDateTime(QDateTime(QDate(2038, 1, 19), QTime(3, 14, 59)));
    const qsizetype before = m_tools->calls().size();
    page.leave("ok");
    QCOMPARE(callsSince(before),
             (QStringList{"xset [s] [600]", "xrandr [--output] [LVDS1] [--rotate] [left]",
                          "xrandr [--output] [LVDS1] [--brightness] [0.5]", "date [011903142038]",
                          "hwclock [-w]"}));
}

void TestMiscPage::cancelChangesNothing()
{
    const Page page("# by hand\napp.mouse=1\n");
    page.open();
    const qsizetype before = m_tools->calls().size();
    Page::click(page.choice(0, 1));
    page.brightness()->setCurrentIndex(10);
    page.leave("cancel");
    QCOMPARE(callsSince(before), QStringList());
    QCOMPARE(readPanelFile("bios.ini"), QByteArray("# by hand\napp.mouse=1\n"));
}

void TestMiscPage::unwritableSettingsAreApplied()
{
    const Page page;
    page.open();
    putFolderAtPanelFile("bios.ini");
    page.brightness()->setCurrentIndex(5);
    const qsizetype before = m_tools->calls().size();
    page.leave("ok");
    removePanelFile("bios.ini");
    QVERIFY(callsSince(before).contains("xrandr [--output] [LVDS1] [--brightness] [0.5]"));
    page.open();
    QVERIFY(page.shown().endsWith("50%"));
}

void TestMiscPage::startAppliesTheSettings_data()
{
    QTest::addColumn<QString>("xrandr"); // what "xrandr -q" prints
    QTest::addColumn<QByteArray>("settings");
    QTest::addColumn<QStringList>("calls");
    const QString one = "echo 'LVDS1 connected 800x600+0+0'";
    QTest::newRow("nothing set") << one << QByteArray()
                                 << QStringList{"xset [-dpms] [s] [noexpose]",
                                                "xrandr [--output] [LVDS1] [--brightness] [1]",
                                                "xrandr [--output] [LVDS1] [--rotate] [normal]"};
    QTest::newRow("all set")
        << one << QByteArray("app.screensaving=60\nbios.brightness=0\napp.orientation=vertical\n")
        << QStringList{"xset [s] [3600]", "xrandr [--output] [LVDS1] [--brightness] [0]",
                       "xrandr [--output] [LVDS1] [--rotate] [left]"};
    QTest::newRow("from rescue mode")
        << one << QByteArray("bios.brightness=\x01\n")
        << QStringList{"xset [-dpms] [s] [noexpose]",
                       "xrandr [--output] [LVDS1] [--brightness] [\x01]",
                       "xrandr [--output] [LVDS1] [--rotate] [normal]"};
    QTest::newRow("no display") << "true" << QByteArray()
                                << QStringList{"xset [-dpms] [s] [noexpose]",
                                               "xrandr [--output] [] [--brightness] [1]",
                                               "xrandr [--output] [] [--rotate] [normal]"};
    QTest::newRow("ten displays: the last one")
        << "for n in 0 1 2 3 4 5 6 7 8 9; do echo \"D$n connected 1\"; done" << QByteArray()
        << QStringList{"xset [-dpms] [s] [noexpose]", "xrandr [--output] [D9] [--brightness] [1]",
                       "xrandr [--output] [D9] [--rotate] [normal]"};
    QTest::newRow("name with odd characters")
        << "echo '\"$(x)\";* connected 1'" << QByteArray()
        << QStringList{"xset [-dpms] [s] [noexpose]",
                       "xrandr [--output] [\"$(x)\";*] [--brightness] [1]",
                       "xrandr [--output] [\"$(x)\";*] [--rotate] [normal]"};
}

void TestMiscPage::startAppliesTheSettings()
{
    QFETCH(QString, xrandr);
    QFETCH(QByteArray, settings);
    QFETCH(QStringList, calls);
    m_tools->setBody("xrandr", "[ \"$1\" != -q ] || { " + xrandr + "; }");
    writePanelFile("bios.ini", settings);
    const BiosInterface window;
    QCOMPARE(m_tools->calls(), QStringList{"xrandr [-q]"} + calls);
}

void TestMiscPage::activationTurnsTheScreen()
{
    const Page page("app.orientation=vertical\n");
    QVERIFY(QTest::qWaitForWindowExposed(page.window()));
    const qsizetype before = m_tools->calls().size();
    page.window()->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(page.window()));
    QCOMPARE(callsSince(before), QStringList{"xrandr [--output] [LVDS1] [--rotate] [left]"});
    QWidget other;
    other.show();
    other.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&other));
    QCOMPARE(callsSince(before).size(), 1); // losing the focus runs no tool
}

void TestMiscPage::toolsThatFail_data()
{
    QTest::addColumn<QString>("body");
    QTest::newRow("exit status") << "exit 1";
    QTest::newRow("killed") << "kill -KILL $$";
}

void TestMiscPage::toolsThatFail()
{
    QFETCH(QString, body);
    for (const QString &tool : displayTools) {
        m_tools->setBody(tool, body);
    }
    const Page page;
    page.open();
    page.leave("ok");
    QCOMPARE(page.window()->findChild<QStackedWidget *>()->currentIndex(), 1);
    QCOMPARE(readPanelFile("bios.ini"),
             QByteArray("app.orientation=horizontal\nbios.brightness=1\n"));
    const QByteArray path = qgetenv("PATH");
    qputenv("PATH", "/nonexistent"); // now there is no tool at all
    page.open();
    page.leave("ok");
    const BiosInterface another;
    qputenv("PATH", path);
    QCOMPARE(page.window()->findChild<QStackedWidget *>()->currentIndex(), 1);
}

PANEL_QTEST_MAIN(TestMiscPage)
#include "tst_miscpage.moc"
