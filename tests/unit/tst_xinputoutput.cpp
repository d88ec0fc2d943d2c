#include "system/output/tooloutput.h"

#include <QTest>

Q_DECLARE_METATYPE(TouchState)

class TestXinputOutput : public QObject
{
    Q_OBJECT
private slots:
    void findsDevice_data();
    void findsDevice();
    void readsState_data();
    void readsState();
};

void TestXinputOutput::findsDevice_data()
{
    QTest::addColumn<QString>("list");
    QTest::addColumn<QString>("name");
    QTest::newRow("nothing") << ""
                             << "";
    QTest::newRow("real list") << "Virtual core pointer\nVirtual core XTEST pointer\n"
                                  "PenMount USB Touchscreen\nVirtual core keyboard\n"
                               << "PenMount USB Touchscreen";
    QTest::newRow("none") << "Virtual core pointer\nVirtual core keyboard\n"
                          << "";
    QTest::newRow("other case") << "penmount USB\n"
                                << "";
    QTest::newRow("the first of several") << "A PenMount 1\nB PenMount 2\n"
                                          << "A PenMount 1";
    QTest::newRow("untrimmed") << "x\n  PenMount \t\n"
                               << "  PenMount \t";
    QTest::newRow("quotes") << "The \"PenMount\" $(x) 'y'\n"
                            << "The \"PenMount\" $(x) 'y'";
    QTest::newRow("no line end") << "PenMount"
                                 << "PenMount";
    QTest::newRow("CRLF") << "PenMount\r\n"
                          << "PenMount";
    QTest::newRow("after an empty line") << "\nPenMount\n"
                                         << "PenMount";
    QTest::newRow("UTF-8") << QString::fromUtf8("PenMount für Kälte\n")
                           << QString::fromUtf8("PenMount für Kälte");
}

void TestXinputOutput::findsDevice()
{
    QFETCH(QString, list);
    QFETCH(QString, name);
    QCOMPARE(touchDeviceName(list), name);
}

void TestXinputOutput::readsState_data()
{
    QTest::addColumn<QString>("output");
    QTest::addColumn<TouchState>("state");
    const QString head = "2 classes :\nButtonClass\n";
    QTest::newRow("nothing") << "" << TouchState::Unknown;
    QTest::newRow("up") << head + "\tbutton[1]=up\n\tbutton[2]=up\nValuatorClass Mode=Absolute\n"
                        << TouchState::Up;
    QTest::newRow("down") << head + "\tbutton[1]=down\n\tbutton[2]=up\n" << TouchState::Down;
    QTest::newRow("second button alone") << head + "\tbutton[2]=down\n" << TouchState::Unknown;
    QTest::newRow("eleventh button") << "\tbutton[11]=down\n" << TouchState::Unknown;
    QTest::newRow("surrounding blanks") << "button[1]=  up \n" << TouchState::Up;
    QTest::newRow("any other text is down") << "button[1]=UP\n" << TouchState::Down;
    QTest::newRow("no text is down") << "button[1]=\n" << TouchState::Down;
    QTest::newRow("the second part counts") << "button[1]=up=down\n" << TouchState::Up;
    QTest::newRow("= before the name") << "a=up button[1]=down\n" << TouchState::Down;
    QTest::newRow("the first line counts") << "button[1]=up\nbutton[1]=down\n" << TouchState::Up;
    QTest::newRow("failure") << "unable to find device 'null'\n" << TouchState::Unknown;
    QTest::newRow("garbage") << QString(QChar(0)) + "button[1]" << TouchState::Unknown;
}

void TestXinputOutput::readsState()
{
    QFETCH(QString, output);
    QFETCH(TouchState, state);
    QCOMPARE(firstButtonState(output), state);
}

QTEST_GUILESS_MAIN(TestXinputOutput)
#include "tst_xinputoutput.moc"
