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
constexpr int writeLimit = 10000; // ms

/// Whether there is more to read, including bytes that the kernel still holds. readyRead() is not
/// emitted for them.
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

/// Closes the port of an earlier test first: it locks the device until it has its verdict.
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

/// QSerialPort ignores a device that is unplugged: it would be notified of data forever and read
/// nothing.
void SoftwareSetup::closeWhenUnplugged(QSerialPort *port)
{
    auto *hangUp = new QSocketNotifier(port->handle(), QSocketNotifier::Exception, port);
    connect(port, &QSerialPort::aboutToClose, hangUp, [hangUp] { hangUp->setEnabled(false); });
    connect(hangUp, &QSocketNotifier::activated, port, [this, port] {
        const bool isRead = port == m_serialPort && port->bytesAvailable() > 0;
        if (!isRead) { // otherwise slotCOMEcho() still needs the port for its verdict
            port->close();
        }
    });
}

/// Result: the number of bytes that the port accepted.
qint64 SoftwareSetup::sendSerialPayload()
{
    QSerialPort *port = m_serialPort; // a verdict during the write resets the member
    const qint64 written = port->write(m_expectedEcho.toLatin1());
    port->flush();
    const QDeadlineTimer limit(writeLimit);
    // Only while bytes are pending; otherwise waitForBytesWritten() blocks until the time limit.
    while (port->bytesToWrite() > 0 && port->waitForBytesWritten(int(limit.remainingTime()))) { }
    return written;
}

void SoftwareSetup::slotCOMEcho()
{
    QSerialPort *port = m_serialPort;
    if (port == nullptr || port->bytesAvailable() == 0) {
        return; // echo of a port from an earlier test
    }
    const QString text = byteText(port->read(longestChunk));
    showText(m_resultView, m_resultView->toPlainText() + text);
    runAndWait(echoPauseCommand());
    if (hasMore(port)) {
        // readyRead() is not emitted again for bytes that hasMore() has read. The call is queued so
        // that the window responds between two chunks, however long the device sends.
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
    m_serialPort->deleteLater(); // not delete: its own signal may have called this
    m_serialPort = nullptr;
}
