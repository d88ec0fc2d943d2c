#include "factory/softwaresetup.h"

#include "factory/linktest.h"
#include "factory/resultview.h"
#include "system/run/process.h"

#include <QLineEdit>
#include <QTcpSocket>
#include <QTextEdit>

namespace {
constexpr int connectLimit = 30000; // ms
} // namespace

void SoftwareSetup::slotEtherTest()
{
    const int number = tappedLink("ethtest");
    const std::optional<PeerAddress> peer = parsePeerAddress(m_peerAddressEdit->text());
    if (!peer) {
        return;
    }
    m_tcpSocket = new QTcpSocket(this);
    connect(m_tcpSocket, &QTcpSocket::readyRead, this, &SoftwareSetup::slotEtherEcho);
    m_tcpSocket->connectToHost(peer->host, peer->port, QIODevice::ReadWrite);
    m_tcpSocket->waitForConnected(connectLimit);
    m_resultView->clear();
    m_expectedEcho = etherPayload(number, m_testCharacters);
    if (m_tcpSocket->isOpen()) {
        m_tcpSocket->write(m_expectedEcho.toLatin1());
    }
    if (m_tcpSocket->state() == QAbstractSocket::UnconnectedState) {
        delete m_tcpSocket; // no echo will arrive
        m_tcpSocket = nullptr;
    }
}

void SoftwareSetup::slotEtherEcho()
{
    QTcpSocket *socket = m_tcpSocket;
    if (socket == nullptr || socket->bytesAvailable() == 0) {
        return; // echo of a connection from an earlier test
    }
    do {
        addParagraph(m_resultView, byteText(socket->read(longestChunk)));
    } while (!socket->atEnd());
    addVerdict(m_resultView, m_expectedEcho);
    m_tcpSocket = nullptr;
    socket->deleteLater(); // not delete: its own signal called this slot
}
