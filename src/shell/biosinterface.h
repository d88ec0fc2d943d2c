#pragma once

#include "system/formats/networkfiles.h"
#include "system/presstimer.h"
#include "system/run/commandline.h"
#include "system/run/toollimits.h"
#include "system/settings/settingsfile.h"
#include "widgets/pagefit.h"

#include <QList>
#include <QPair>
#include <QPointer>
#include <QSize>
#include <QString>
#include <QStringList>
#include <QTimer>
#include <QWidget>

#include <array>
#include <chrono>
#include <memory>
#include <optional>

class LineEditWithKeyPad;
class MyInputPanelContext;
class QBoxLayout;
class QComboBox;
class QDateTimeEdit;
class QDir;
class QGridLayout;
class QHBoxLayout;
class QLabel;
class QLayout;
class QScreen;
class QStackedWidget;
class QTableWidget;
class QToolButton;
class QVBoxLayout;
class RadioButton;
class SettingsButton;
class ShiftingLayout;
class StackWidgetPage;
class StartingApplicationAniationButton;
struct Command;

/// The settings window: reads and applies the stored settings, counts down, starts the HMI
/// runtime and holds all settings pages. It owns the settings, the page stack and every page.
/// Each page is a trio of members, a builder (init...), a loader (load...) and a saver
/// (save...), implemented in the file of the page.
class BiosInterface : public QWidget
{
    Q_OBJECT
public:
    /// Indices of the pages in the page stack.
    enum Page : int {
        CountDownPage,
        MainSettingsPage,
        ComPortPage,
        EthernetPage,
        FileTransferPage,
        BacklightPage, ///< stays empty: its builder is not called
        MiscPage,
        CalibrationPage,
        VolumePage, ///< stays empty: its builder is not called
        SystemStatusPage,
        HomeKeyPage,
        FontPage,
        TimeSettingPage, ///< stays empty
        SparePage1,      ///< stays empty
        SparePage2,      ///< stays empty
        PageCount
    };

    /// Reads the settings, applies the display settings and builds all pages. Blocks while the
    /// tools run that this takes. A tool or file that is missing is passed over. @p limits says
    /// how long tools are waited for.
    explicit BiosInterface(QWidget *parent = nullptr, const ToolLimits &limits = {});
    ~BiosInterface() override;

    /// Debug level from the settings, 0 if not set. Above 0 adds the "Home Key" button.
    int getDebugLevel() const;

    /// Runs a tool, waits for it for at most @p timeout milliseconds (-1: without limit) and logs
    /// the run. With empty @p arguments @p program is a whole command line, split at blanks with
    /// double quotes for grouping.
    /// Result: the text on standard output, then the text on standard error or "not finished"
    /// if the tool could not be started or did not end in time. Both texts are 8-bit characters
    /// up to the first zero byte. The exit code is not looked at.
    QPair<QString, QString> doProcess(const QString &program, const QStringList &arguments,
                                      int timeout);

    /// Writes the program's environment to the debug channel; the argument is not used. Nothing
    /// calls it: it is there for diagnosis, under a name that is misspelt for good.
    void echoEnviromentProcess(const QString &unused);

    /// Adds the entries of the settings file to the settings. A missing or unreadable file adds
    /// none.
    void readINI();

    /// Writes all settings over the settings file. A failure is a debug line; the settings keep
    /// their values.
    void writeINI();

    /// Gives a caption of a page its look: white text in a font 24 pixels high.
    static void setWidgetWithStyle(QWidget *widget);

    /// Gives back the DHCP lease of "eth0", whichever port is being set. Waits without limit.
    /// Result: as doProcess().
    QPair<QString, QString> releaseCurrenEthernetProcess();

    /// Stores a fixed address for a port (0: "eth0", otherwise "eth1") and sets it at once. Texts
    /// are taken as typed. Waits without limit. Result: as doProcess().
    QPair<QString, QString> manualSetIPProcess(const QString &ip, const QString &mask, int lan);

    /// Stores DHCP for a port (0: "eth0", otherwise "eth1") and obtains a lease within 10 s.
    /// Result: as doProcess(), with the second text of the release in front of the second.
    QPair<QString, QString> autoDetectIPProcess(int lan);

    /// Looks for @p text, with case, in the lines of the files @p names of @p directory. A dialog
    /// shows how far it is and can end it. Files that cannot be read are passed over.
    /// Result: the names of the files that hold it, in their order, as far as the search went.
    QStringList findFiles(const QDir &directory, const QStringList &names, const QString &text);

    /// Does nothing. Kept for the interface's sake.
    void scanDrives(QString &drives);

    /// Makes the two labels of a row of the status page: the caption, then the value, still empty
    /// and named "show " and the caption.
    QPair<QLabel *, QLabel *> createSystemStatusLabel(const QString &caption);

    /// Writes the interfaces file for the modes that the Ethernet page shows and these texts. If
    /// that fails the old file stays.
    void writeEthInterface(const QString &ip0, const QString &ip1, const QString &mask0,
                           const QString &mask1);

    // The order of the slots is part of the interface: the meta-object numbers them by it.
public slots:
    /// Shows the main settings page.
    void goToSettingsPage();

    /// Starts the HMI runtime and blocks until it ends; the main settings page is shown then.
    void runApplication();

    /// Opens the page whose index is in the sender's object name ("label:index").
    void runSettingsUI();

    /// Leaves a page: saves it if the sender's object name contains "ok".
    void titleBarButtonPressed();

    /// Calls the loader of the page, if it has one. A failure is a debug line.
    void loadSettings(int pageIndex);

    // Each fills the widgets of its page from the settings. Result: whether that worked.
    virtual bool loadEthernetSettings();
    virtual bool loadFiletransferSettings();
    virtual bool loadMiscSettings();
    virtual bool loadCalibrationSettings();
    virtual bool loadSystemStatusSettings();
    virtual bool loadFontSettings();
    virtual bool loadTimeSettings();

    /// Calls the saver of the page, if it has one. A failure is a debug line.
    void saveSettings(int pageIndex);

    // Each stores what its page shows and applies it, which blocks while the tools run. Result:
    // whether that worked; a tool that fails is not noticed.
    virtual bool saveEthernetSettings();
    virtual bool saveFiletransferSettings();
    virtual bool saveMiscSettings();
    virtual bool saveCalibrationSettings();
    virtual bool saveFontSettings();
    virtual bool saveTimeSettings();

    /// Installs the BIOS image package @p filename; without a name the user picks one. Blocks
    /// meanwhile. Whether it was installed is not shown.
    void updateBIOSDialog(const QString &filename = QString());

    /// Lets the user pick an add-on package and installs it as updateBIOSDialog() does. No button
    /// leads here: it is for callers through the meta-object. Result: always false.
    bool installPackages();

    /// Moves the time that the miscellaneous page shows on by a second.
    void slotTimerEdit();

    /// Resizes the window to the screen with the index @p screen; another index does nothing.
    void slotresize(int screen);

    /// Turns the display as stored. Blocks for at most 30 s.
    void setScreenOrientation();

    /// One poll of the touch controller: looks for it while it is not known, and starts rescue
    /// mode once a finger was held for two seconds. Blocks for at most 30 s for each of its tools.
    void slotRescueTimesup();

protected:
    void changeEvent(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    struct PageActions
    {
        Page page;
        bool (BiosInterface::*load)();
        bool (BiosInterface::*save)();
    };
    struct PageButton
    {
        SettingsButton *BiosInterface::*button;
        const char *label;
        Page page;
    };
    /// The widgets of one LAN port.
    struct EthernetPort
    {
        RadioButton *disable = nullptr;
        RadioButton *dhcp = nullptr;
        RadioButton *manual = nullptr;
        LineEditWithKeyPad *address = nullptr;
        LineEditWithKeyPad *mask = nullptr;
    };
    /// The widgets of the miscellaneous page.
    struct MiscWidgets
    {
        RadioButton *mouseEnable = nullptr;
        RadioButton *mouseDisable = nullptr;
        RadioButton *landscape = nullptr;
        RadioButton *portrait = nullptr;
        RadioButton *buzzerEnable = nullptr;
        RadioButton *buzzerDisable = nullptr;
        QComboBox *screenSaving = nullptr;
        QComboBox *brightness = nullptr;
        QDateTimeEdit *time = nullptr;
    };
    /// The widgets of the file transfer page.
    struct TransferWidgets
    {
        QPointer<RadioButton> application;
        QPointer<QTableWidget> files;
    };
    /// The labels of the status page whose texts change.
    struct StatusLabels
    {
        QPointer<QLabel> applicationSize;
        QPointer<QLabel> firmwareVersion;
        QPointer<QLabel> firstAddress;
        QPointer<QLabel> secondAddress;
    };
    /// The widgets of the font page.
    struct FontWidgets
    {
        QPointer<QTableWidget> files;
    };
    static const PageActions s_pageActions[];
    static const PageButton s_pageButtons[];

    QPair<QString, QString> doProcess(const Command &command, std::chrono::milliseconds limit);

    void preAction();
    void readDebugLevel();
    void readScreenSize();
    void findDisplayOutput();
    void watchScreens();
    void watchScreen(QScreen *screen);
    void setScreenSaving();
    void setBackLighting();

    void init();
    void setUpWindow();
    void setUpFont();
    void createPageStack();
    void buildPages();

    void initCountDownPage();
    void initMainSettingsButtonsPage();
    void initCOMPortPage();
    void initEthernetPage();
    void initFileTransferPage();
    void initBacklightPage();
    void initMiscPage();
    void initCalibrationPage();
    void initVolumePage();
    void initSystemStatusPage();
    void initHomeKeyPage();
    void initFontSettingPage();
    void initTimeSettingPage();
    void initEmptyPage(Page page, const QString &title);

    QHBoxLayout *createTitleBar(const QString &title, bool withOk, bool withCancel);
    SettingsButton *createTitleBarButton(const QString &text, const QString &name);
    static QVBoxLayout *createContent(int margin);
    static void setPageLayout(QLayout *titleBar, QLayout *content, QWidget *page);

    void fitShownPage();
    bool keypadFitsAtEachEdit(const QWidget *page) const;
    void makeRoomForKeypad(const QWidget *field);
    void takeRoomBack();

    bool findTouchDevice();
    void rescueMode();

    void createMiscRows(QGridLayout *grid);
    void storeFlag(const QString &key, bool on);
    void storeOrRemove(const QString &key, const QString &value);
    void setSystemTime();

    void createEthernetPort(int lan, QBoxLayout *layout);
    void loadEthernetPort(int lan);
    void showLiveAddress(int lan);
    void setEthernetEditsEnabled(int lan, bool enabled);
    PortSetup shownPort(int lan) const;
    void applyPort(int lan, const PortSetup &port);
    static void writeInterfaces(const PortSetups &ports);

    QTableWidget *createFileTable(Page page, int columns);

    QList<QLabel *> createStatusRows(QGridLayout *grid);
    QToolButton *createUpdateButton();
    QString hardwareAddress(const QString &interface);
    QString applicationSize();

    void createPageButtons();
    void deletePageButtons();
    QLayout *createPageButtonGrid();

    void runPageAction(int pageIndex, bool (BiosInterface::*PageActions::*action)());

    ToolLimits m_limits;
    SettingsMap m_settings;
    int m_screenWidth = -1;  ///< px, -1: not configured
    int m_screenHeight = -1; ///< px, -1: not configured
    int m_debugLevel = 0;
    QTimer m_clockTick;      ///< runs while the miscellaneous page shows the time
    QString m_displayOutput; ///< name for xrandr, empty if none is connected
    QTimer *m_rescuePoll = nullptr;
    QString m_touchDevice{"null"}; ///< "null": not found yet
    PressTimer m_pressTimer;

    std::unique_ptr<MyInputPanelContext> m_inputContext;

    MiscWidgets m_misc;
    std::array<EthernetPort, 2> m_ports;
    TransferWidgets m_transfer;
    StatusLabels m_status;
    FontWidgets m_fonts;

    ShiftingLayout *m_windowLayout = nullptr; ///< holds the page stack alone
    QStackedWidget *m_pages = nullptr;
    std::array<std::optional<PageFit>, PageCount> m_fits; ///< of the pages that were open
    StartingApplicationAniationButton *m_countDown = nullptr;
    SettingsButton *m_runApplication = nullptr;
    SettingsButton *m_comPort = nullptr;
    SettingsButton *m_ethernet = nullptr;
    SettingsButton *m_fileTransfer = nullptr;
    SettingsButton *m_backlight = nullptr;
    SettingsButton *m_miscellaneous = nullptr;
    SettingsButton *m_calibration = nullptr;
    SettingsButton *m_volume = nullptr;
    SettingsButton *m_systemStatus = nullptr;
    SettingsButton *m_homeKey = nullptr; ///< only with a debug level above 0
    SettingsButton *m_installFonts = nullptr;
};
