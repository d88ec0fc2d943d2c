#include "common/addresses.h"

#include <QString>

#include <arpa/inet.h>

namespace ToolReport {
namespace {
bool parse(const QString &text, in_addr &address)
{
    return inet_pton(AF_INET, text.toLatin1().constData(), &address) == 1;
}
} // namespace

bool isAddress(const QString &text)
{
    in_addr address;
    return parse(text, address);
}

bool isMask(const QString &text)
{
    in_addr address;
    if (!parse(text, address)) {
        return false;
    }
    const auto zeros = ~ntohl(address.s_addr);
    return (zeros & (zeros + 1)) == 0; // all ones are on the left
}
} // namespace ToolReport
