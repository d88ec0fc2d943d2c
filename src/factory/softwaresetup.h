#pragma once

#include "system/run/toollimits.h"

#include <QHash>
#include <QWidget>

class QAbstractButton;
class QComboBox;
class QDateTimeEdit;
class QHBoxLayout;
class QLineEdit;
class QPushButton;
class QSerialPort;
class QSpinBox;
class QStackedWidget;
class QTcpSocket;
class QTextEdit;
class QVBoxLayout;

/// The factory window. Its first page sets up a unit, its second page tests the unit's hardware.
class SoftwareSetup : public QWidget
{
    Q_OBJECT
public:
    /// Runs the calibration tool to its end, then builds the window. The caller shows it.
    /// @p limits are the time limits of the other tools.
    explicit SoftwareSetup(QWidget *parent = nullptr, const ToolLimits &limits = {});
    ~SoftwareSetup() override;

public slots:
    // The order is part of the interface: the meta-object numbers the slots by it.

    /// "Save": renames the session script if the unit has no session, stores the model, sets the
    /// clock and names the network interfaces.
    void slotAccept();
    /// "Close": ends the program.
    void slotReject();
    /// Called for every button on the right side; handles only "Test".
    void slotAction(QAbstractButton *button);
    /// Shows the test page. The window has no way back.
    void slotTest();
    /// Plays the buzzer's standard tone and waits for its end.
    void slotBuzzerTest();
    /// Starts the tone that is set in the spin boxes.
    void slotBuzzerTest2();
    /// Starts the tone that is named in the tapped button's text.
    void slotBuzzerTest3();
    /// Sets the brightness to @p index times 20 %. It rises although the shown percentage falls.
    void slotBrightnessTest(int index);
    /// Opens the serial port of the tapped button and sends the payload.
    void slotCOM232Test();
    /// Reads the echo from the serial port and shows the verdict.
    void slotCOMEcho();
    /// Connects to the echo peer and sends the payload for the tapped button.
    void slotEtherTest();
    /// Reads the echo of the peer and shows the verdict.
    void slotEtherEcho();
    /// Shows the colours of the pixel test.
    void slotPixelTest();

private:
    void init();
    QVBoxLayout *addPage();
    QHBoxLayout *addRow(QVBoxLayout *page, const QString &caption);
    void initSetupPage();
    void initTestPage();
    void addBuzzerRows(QVBoxLayout *page);
    void addDisplayRows(QVBoxLayout *page);
    void addLinkRows(QVBoxLayout *page);
    QPushButton *createButton(const QString &text, void (SoftwareSetup::*slot)());
    QPushButton *addButton(QHBoxLayout *row, const QString &text, void (SoftwareSetup::*slot)());

    void nameInterfaces();

    int tappedLink(const char *property) const;
    void openSerialPort(const QString &device);
    void closeWhenUnplugged(QSerialPort *port);
    qint64 sendSerialPayload();
    void giveSerialVerdict();

    ToolLimits m_limits;
    QStackedWidget *m_pages = nullptr;
    QComboBox *m_model = nullptr;
    QComboBox *m_type = nullptr;
    QDateTimeEdit *m_time = nullptr;
    QSpinBox *m_frequency = nullptr;
    QSpinBox *m_duration = nullptr;
    QTextEdit *m_resultView = nullptr;
    QLineEdit *m_peerAddressEdit = nullptr;
    QString m_testCharacters;
    QString m_expectedEcho;
    QTcpSocket *m_tcpSocket = nullptr;     ///< of the running test; null after its verdict
    QSerialPort *m_serialPort = nullptr;   ///< of the running test; null after its verdict
    QHash<QString, QSerialPort *> m_ports; ///< by name; only ports without a verdict
};
