#include "memberpath.h"

#include <QHashFunctions>

#include <algorithm>

namespace MkPackage {
namespace {
// FNV-1a; each name continues the number of its folder.
constexpr quint64 firstNumber = 14695981039346656037ULL;
constexpr quint64 prime = 1099511628211ULL;

quint64 numberBelow(quint64 folder, QByteArrayView name)
{
    quint64 number = (folder ^ quint64('/')) * prime;
    for (const char c : name) {
        number = (number ^ quint8(c)) * prime;
    }
    return number;
}
} // namespace

MemberPath::MemberPath(QByteArrayView path)
    : isAbsolute(path.startsWith('/'))
    , asksForFolder(path.endsWith('/') || path.endsWith(QByteArrayView("/."))
                    || path == QByteArrayView("."))
{
    quint64 number = firstNumber ^ quint64(QHashSeed::globalSeed());
    while (!path.isEmpty()) {
        const qsizetype slash = path.indexOf('/');
        const QByteArrayView name = slash < 0 ? path : path.first(slash);
        path = path.sliced(slash < 0 ? path.size() : slash + 1);
        longestName = std::max(longestName, name.size());
        if (name == QByteArrayView("..")) {
            ups += numbers.isEmpty() ? 1 : 0;
            turnsBack = turnsBack || !numbers.isEmpty();
        } else if (!name.isEmpty() && name != QByteArrayView(".")) {
            number = numberBelow(number, name);
            numbers += number;
        }
    }
}
} // namespace MkPackage
