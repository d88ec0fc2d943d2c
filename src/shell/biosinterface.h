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

/// The settings window. It reads and applies the stored settings, counts down, starts the HMI
/// runtime and holds all settings pages. It owns the settings, the page stack and every page.
/// Each page has a builder (init...), a loader (load...) and a saver (save...), implemented in
/// the page's own file.
///
/// The program does not call some members that are part of the interface. They are grouped below,
/// except three slots, because the order of slots is fixed: installPackages(),
/// saveCalibrationSettings() and saveTimeSettings(). The program does not use class Calibration
/// (pages/calibration.h) either.
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
        BacklightPage, ///< empty: the builder is not called
        MiscPage,
        CalibrationPage,
        VolumePage, ///< empty: the builder is not called
        SystemStatusPage,
        HomeKeyPage,
        FontPage,
        TimeSettingPage, ///< empty
        SparePage1,      ///< empty
        SparePage2,      ///< empty
        PageCount
    };

    /// Reads the settings, applies the display settings and builds all pages. Blocks while the
    /// tools run, each for no longer than @p limits allows. Skips missing tools and files.
    explicit BiosInterface(QWidget *parent = nullptr, const ToolLimits &limits = {});
    ~BiosInterface() override;

    /// Runs a tool, waits up to @p timeout milliseconds for it to end (-1: no limit) and logs the
    /// run. If @p arguments is empty, @p program is a whole command line: blanks separate the
    /// arguments, double quotes group them.
    /// Returns the text of standard output and the text of standard error. The second text is
    /// "not finished" if the tool could not be started or did not end in time. Each byte becomes
    /// one character; a text ends at its first zero byte. The exit code is ignored.
    QPair<QString, QString> doProcess(const QString &program, const QStringList &arguments,
                                      int timeout);

    /// Adds the entries of the settings file to the settings. Does nothing if the file is missing
    /// or unreadable.
    void readINI();

    /// Replaces the settings file with the current settings. Writes a debug line on failure.
    void writeINI();

    /// Gives @p widget the look of a caption: white text in a font of 24 pixels.
    static void setWidgetWithStyle(QWidget *widget);

    /// Releases the DHCP lease of "eth0", even while the other port is being set. Waits without a
    /// time limit. Returns the same as doProcess().
    QPair<QString, QString> releaseCurrenEthernetProcess();

    /// Stores a static address for port @p lan (0: "eth0", otherwise "eth1") and sets it at once.
    /// Does not check the texts. Waits without a time limit. Returns the same as doProcess().
    QPair<QString, QString> manualSetIPProcess(const QString &ip, const QString &mask, int lan);

    /// Releases the lease of "eth0", stores DHCP for port @p lan (0: "eth0", otherwise "eth1") and
    /// waits up to 10 s for a lease. Returns the same as doProcess(); the second text starts with
    /// that of the release.
    QPair<QString, QString> autoDetectIPProcess(int lan);

    /// Creates the two labels of a row on the status page: the caption and the value. The value
    /// is empty; its object name is "show " followed by the caption.
    QPair<QLabel *, QLabel *> createSystemStatusLabel(const QString &caption);

    // Part of the interface; the program calls none of these.

    /// Returns the debug level from the settings, 0 if not set.
    int getDebugLevel() const;

    /// Writes the program's environment as a debug line. Ignores its argument.
    void echoEnviromentProcess(const QString &unused);

    /// Returns those of the files @p names in @p directory that contain @p text within a line,
    /// case-sensitively and in the order of @p names. Skips unreadable files. Shows a progress
    /// dialog; if the user cancels it, returns the files found so far.
    QStringList findFiles(const QDir &directory, const QStringList &names, const QString &text);

    /// Does nothing.
    void scanDrives(QString &drives);

    /// Writes the interfaces file with these texts and the modes chosen on the Ethernet page.
    /// Keeps the old file on failure.
    void writeEthInterface(const QString &ip0, const QString &ip1, const QString &mask0,
                           const QString &mask1);

    // The order of the slots is part of the interface: their meta-object indices depend on it.
public slots:
    /// Shows the main settings page.
    void goToSettingsPage();

    /// Starts the HMI runtime, blocks until it ends, then shows the main settings page.
    void runApplication();

    /// Opens the page with the index in the sender's object name ("label:index").
    void runSettingsUI();

    /// Returns to the main settings page. Saves the current page first if the sender's object
    /// name contains "ok".
    void titleBarButtonPressed();

    /// Calls the page's loader, if it has one. Writes a debug line if the loader fails.
    void loadSettings(int pageIndex);

    // The loaders. Each fills the widgets of its page and returns whether that worked.
    virtual bool loadEthernetSettings();
    virtual bool loadFiletransferSettings();
    virtual bool loadMiscSettings();
    virtual bool loadCalibrationSettings();
    virtual bool loadSystemStatusSettings();
    virtual bool loadFontSettings();
    virtual bool loadTimeSettings();

    /// Calls the page's saver, if it has one. Writes a debug line if the saver fails.
    void saveSettings(int pageIndex);

    // The savers. Each stores and applies the values of its page and returns whether that worked.
    // They block while their tools run and ignore a tool's failure.
    virtual bool saveEthernetSettings();
    virtual bool saveFiletransferSettings();
    virtual bool saveMiscSettings();
    virtual bool saveCalibrationSettings();
    virtual bool saveFontSettings();
    virtual bool saveTimeSettings();

    /// Installs the BIOS image package @p filename. If the name is empty, the user picks a file.
    /// Blocks until done. Reports neither success nor failure.
    void updateBIOSDialog(const QString &filename = QString());

    /// Lets the user pick an add-on package and installs it as updateBIOSDialog() does. No button
    /// is connected to this slot. Always returns false.
    bool installPackages();

    /// Adds one second to the time on the miscellaneous page.
    void slotTimerEdit();

    /// Resizes the window to the screen with index @p screen. Ignores an invalid index.
    void slotresize(int screen);

    /// Rotates the display to the stored orientation. Blocks for at most 30 s.
    void setScreenOrientation();

    /// Polls the touch controller. Searches for the controller until it is found. Starts rescue
    /// mode after a finger was held on the screen for two seconds. Blocks for at most 30 s per
    /// tool.
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
    /// The labels on the status page whose texts change.
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
    void initMiscPage();
    void initCalibrationPage();
    void initSystemStatusPage();
    void initHomeKeyPage();
    void initFontSettingPage();
    void initEmptyPage(Page page, const QString &title);

    // Part of the interface, never called: builders of pages that stay empty.
    void initBacklightPage();
    void initVolumePage();
    void initTimeSettingPage();

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
    QTimer m_clockTick;      ///< runs while the miscellaneous page is open
    QString m_displayOutput; ///< xrandr's name of the display, empty if none is connected
    QTimer *m_rescuePoll = nullptr;
    QString m_touchDevice{"null"}; ///< "null": not found yet
    PressTimer m_pressTimer;

    std::unique_ptr<MyInputPanelContext> m_inputContext;

    MiscWidgets m_misc;
    std::array<EthernetPort, 2> m_ports;
    TransferWidgets m_transfer;
    StatusLabels m_status;
    FontWidgets m_fonts;

    ShiftingLayout *m_windowLayout = nullptr; ///< holds only the page stack
    QStackedWidget *m_pages = nullptr;
    std::array<std::optional<PageFit>, PageCount> m_fits; ///< empty for pages never opened
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
