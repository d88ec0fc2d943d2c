#include "headerwalk.h"

#include "paxrecords.h"
#include "zerobytes.h"

#include <algorithm>

namespace MkPackage {
namespace {
constexpr qsizetype blockSize = 512; // bytes
constexpr qsizetype typeOffset = 156;
constexpr qsizetype magicOffset = 257;
constexpr QByteArrayView posixMagic("ustar\00000", 8);
constexpr QByteArrayView gnuMagic("ustar  \0", 8); // has no separate field for the folder
constexpr QByteArrayView describingTypes("gxKL", 4);
constexpr QByteArrayView usualTypes("01234567\0", 9);

// tar itself stays below both.
constexpr int mostDescribing = 8;              // extended headers of one member
constexpr qint64 largestDescription = 1 << 20; // bytes of one extended header

/// A number in a header, in bytes.
struct NumberField
{
    qsizetype offset;
    qsizetype size;
};

constexpr NumberField sizeField{124, 12};

/// Mode, user, group, size, time.
constexpr NumberField numberFields[] = {{100, 8}, {108, 8}, {116, 8}, sizeField, {136, 12}};

QByteArrayView bytesOf(QByteArrayView header, const NumberField &field)
{
    return header.sliced(field.offset, field.size);
}

/// Octal digits between optional blanks, or NUL bytes at the end, as every tar writes them.
bool isOctal(QByteArrayView field)
{
    const auto digits = std::find_if(field.begin(), field.end(), [](char c) { return c != ' '; });
    const auto end = std::find_if(digits, field.end(), [](char c) { return c < '0' || c > '7'; });
    return digits != end
        && std::all_of(end, field.end(), [](char c) { return c == ' ' || c == '\0'; });
}

/// A negative number, or one too large for octal digits: it is binary, in the last eight bytes.
bool isBinary(QByteArrayView field)
{
    const char filler = field.front() == '\xff' ? '\xff' : '\0';
    const QByteArrayView unused = field.sliced(1, std::max<qsizetype>(field.size() - 9, 0));
    return (field.front() == '\x80' || field.front() == '\xff')
        && std::all_of(unused.begin(), unused.end(), [filler](char c) { return c == filler; });
}

bool hasOddNumber(QByteArrayView header)
{
    return std::any_of(std::begin(numberFields), std::end(numberFields),
                       [header](const NumberField &number) {
                           const QByteArrayView field = bytesOf(header, number);
                           return !isOctal(field) && !isBinary(field);
                       });
}

/// The value of a field of octal digits.
qint64 octalNumber(QByteArrayView field)
{
    qint64 number = 0;
    for (const char c : field) {
        number = c >= '0' && c <= '7' ? number * 8 + (c - '0') : number;
    }
    return number;
}
} // namespace

void HeaderWalk::feed(QByteArrayView piece, qint64 pieceStart)
{
    const qint64 pieceEnd = pieceStart + piece.size();
    while (m_error == nullptr && !isDone() && m_next >= pieceStart
           && m_next + blockSize <= pieceEnd) {
        const QByteArrayView block = piece.sliced(qsizetype(m_next - pieceStart), blockSize);
        if (m_descriptionLeft == 0 && isZero(block)) {
            return; // the end of the archive
        }
        m_next += blockSize;
        takeBlock(block);
    }
}

void HeaderWalk::takeBlock(QByteArrayView block)
{
    if (m_descriptionLeft > 0) {
        takeDescription(block);
    } else if (hasOddNumber(block)) {
        m_error = "a malformed number in a header";
    } else {
        takeHeader(block);
    }
}

void HeaderWalk::takeHeader(QByteArrayView header)
{
    const QByteArrayView magic = header.sliced(magicOffset, posixMagic.size());
    const char type = header.at(typeOffset);
    if (magic != posixMagic && magic != gnuMagic) {
        m_error = "a header of an unusual format";
    } else if (usualTypes.contains(type)) {
        m_header = header.toByteArray();
    } else if (describingTypes.contains(type)) {
        startDescription(header);
    } else {
        m_error = "a member of an unusual type";
    }
}

void HeaderWalk::startDescription(QByteArrayView header)
{
    const QByteArrayView size = bytesOf(header, sizeField);
    m_describing = header.at(typeOffset);
    m_description.clear();
    m_descriptionLeft = octalNumber(size);
    if (!isOctal(size) || m_descriptionLeft > largestDescription
        || ++m_described > mostDescribing) {
        m_error = "too many or too large extended headers";
    }
}

void HeaderWalk::takeDescription(QByteArrayView block)
{
    const auto size = qsizetype(std::min<qint64>(m_descriptionLeft, block.size()));
    m_description += block.first(size);
    m_descriptionLeft -= size;
    if (m_descriptionLeft == 0 && (m_describing == 'x' || m_describing == 'g')) {
        m_error = findPaxError(m_description, m_describing == 'g');
    }
}

bool HeaderWalk::hasContents() const
{
    const QByteArrayView field = bytesOf(m_header, sizeField);
    return !isOctal(field) || octalNumber(field) > 0;
}
} // namespace MkPackage
