#include "paxrecords.h"

#include <QByteArray>

#include <algorithm>

namespace MkPackage {
namespace {
constexpr char malformed[] = "a malformed extended header";

bool isNumber(QByteArrayView text)
{
    return !text.isEmpty()
        && std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
}

/// Seconds since 1970, possibly negative or with a fraction.
bool isTime(QByteArrayView text)
{
    const QByteArrayView number = text.startsWith('-') ? text.sliced(1) : text;
    const qsizetype point = number.indexOf('.');
    return point < 0 ? isNumber(number)
                     : isNumber(number.first(point)) && isNumber(number.sliced(point + 1));
}

const char *findRecordError(QByteArrayView key, QByteArrayView value, bool forAll)
{
    if (forAll && key != QByteArrayView("comment")) { // git writes one
        return "a global extended header";
    }
    if (key.startsWith(QByteArrayView("GNU.sparse."))) {
        return "a sparse file";
    }
    const bool isCount = key == QByteArrayView("size") || key == QByteArrayView("uid")
        || key == QByteArrayView("gid");
    const bool isSeconds = key == QByteArrayView("mtime") || key == QByteArrayView("atime")
        || key == QByteArrayView("ctime");
    const bool isWrong = key.isEmpty() || (isCount && !isNumber(value))
        || (isSeconds && !isTime(value)) || value.contains('\0');
    return isWrong ? malformed : nullptr;
}
} // namespace

const char *findPaxError(QByteArrayView records, bool forAll)
{
    while (!records.isEmpty()) {
        const qsizetype blank = records.indexOf(' ');
        const QByteArrayView digits = records.first(std::max<qsizetype>(blank, 0));
        const qint64 length = isNumber(digits) ? digits.toByteArray().toLongLong() : 0;
        if (blank < 0 || length <= blank || length > records.size()) {
            return malformed;
        }
        const auto size = qsizetype(length);
        if (records.at(size - 1) != '\n') {
            return malformed;
        }
        const QByteArrayView record = records.sliced(blank + 1, size - blank - 1).chopped(1);
        const qsizetype equals = record.indexOf('=');
        const char *error = equals < 0
            ? malformed
            : findRecordError(record.first(equals), record.sliced(equals + 1), forAll);
        if (error != nullptr) {
            return error;
        }
        records = records.sliced(size);
    }
    return nullptr;
}
} // namespace MkPackage
