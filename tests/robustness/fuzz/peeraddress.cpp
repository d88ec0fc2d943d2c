#include "fuzz.h"

#include "factory/linktest.h"

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QString text = QString::fromUtf8(inputBytes(data, size));
    const auto peer = parsePeerAddress(text);
    require(!peer || text.contains(':'));
    if (peer) {
        require(!peer->host.isEmpty() && peer->host == peer->host.trimmed());
        const auto again = parsePeerAddress(peer->host + ':' + QString::number(peer->port));
        require(again && again->host == peer->host && again->port == peer->port);
    }
    linkNumber(text); // accepts any text; must only return
    return 0;
}
