#include "factory/softwaresetup.h"

#include "factory/linktest.h"
#include "factory/resultview.h"
#include "system/paths.h"
#include "system/run/factorycommand.h"
#include "system/run/process.h"

#include <QDeadlineTimer>
#include <QDebug>
#include <QSerialPort>
#include <QSocketNotifier>
#include <QTextEdit>

namespace {
constexpr int longestChunk = 1024; // bytes shown at a time
constexpr int writeLimit = 10000;  // ms

/// Whether there is more to read, counting what the kernel still holds. No signal is sent for
/// what this takes from the kernel.
bool hasMore(QSerialPort *port)
{
    const QSignalBlocker silence(port);
    port->waitForReadyRead(0);
    return !port->atEnd();
}
} // namespace

void SoftwareSetup::slotCOM232Test()
{
    const int number = tappedLink("comtest");
    const QString device = QString(Paths::serialPort).arg(number - 1);
    openSerialPort(device);
    qDebug() << Q_FUNC_INFO << device << m_serialPort->isOpen();
    connect(m_serialPort, &QSerialPort::readyRead, this, &SoftwareSetup::slotCOMEcho);
    m_resultView->clear();
    m_expectedEcho = serialPayload(device, m_testCharacters);
    if (m_serialPort->isOpen()) {
        qDebug() << Q_FUNC_INFO << sendSerialPayload();
    }
}

/// A port without a verdict keeps its device locked: it is given up for the new one.
void SoftwareSetup::openSerialPort(const QString &device)
{
    m_serialPort = new QSerialPort(device);
    if (QSerialPort *older = m_ports.value(m_serialPort->portName())) {
        older->close();
        older->deleteLater();
    }
    m_ports.insert(m_serialPort->portName(), m_serialPort);
    m_serialPort->setBaudRate(QSerialPort::Baud115200);
    m_serialPort->setFlowControl(QSerialPort::SoftwareControl);
    m_serialPort->setParity(QSerialPort::NoParity);
    m_serialPort->setDataBits(QSerialPort::Data8);
    m_serialPort->setStopBits(QSerialPort::OneStop);
    if (m_serialPort->open(QIODevice::ReadWrite)) {
        closeWhenUnplugged(m_serialPort);
    }
}

/// The port itself takes no notice of an unplugged device: it would be told for ever that there
/// is something to read, and would read nothing.
void SoftwareSetup::closeWhenUnplugged(QSerialPort *port)
{
    auto *hangUp = new QSocketNotifier(port->handle(), QSocketNotifier::Exception, port);
    connect(port, &QSerialPort::aboutToClose, hangUp, [hangUp] { hangUp->setEnabled(false); });
    connect(hangUp, &QSocketNotifier::activated, port, [this, port] {
        const bool isRead = port == m_serialPort && port->bytesAvailable() > 0;
        if (!isRead) { // the verdict is on all that came until then
            port->close();
        }
    });
}

/// Result: the number of bytes that the port took.
qint64 SoftwareSetup::sendSerialPayload()
{
    QSerialPort *port = m_serialPort; // a verdict may come while the bytes are written
    const qint64 written = port->write(m_expectedEcho.toLatin1());
    port->flush();
    const QDeadlineTimer limit(writeLimit);
    // Not without bytes left: what is flushed already would be waited for until the limit.
    while (port->bytesToWrite() > 0 && port->waitForBytesWritten(int(limit.remainingTime()))) { }
    return written;
}

void SoftwareSetup::slotCOMEcho()
{
    QSerialPort *port = m_serialPort;
    if (port == nullptr || port->bytesAvailable() == 0) {
        return; // it was an older port, whose echo says nothing of this one
    }
    const QString text = byteText(port->read(longestChunk));
    showText(m_resultView, m_resultView->toPlainText() + text);
    runAndWait(echoPauseCommand());
    if (hasMore(port)) {
        // No signal comes for bytes that are read from the kernel already. Between two chunks
        // the window stays alive, however long the line talks.
        QMetaObject::invokeMethod(
            port, [this] { slotCOMEcho(); }, Qt::QueuedConnection);
        return;
    }
    giveSerialVerdict();
}

void SoftwareSetup::giveSerialVerdict()
{
    addVerdict(m_resultView, m_expectedEcho);
    m_ports.remove(m_serialPort->portName());
    m_serialPort->deleteLater(); // later: its own signal may have led here
    m_serialPort = nullptr;
}
