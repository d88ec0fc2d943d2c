#include "verify.h"

#include "gzipreader.h"
#include "membercheck.h"
#include "packages/packagecheck.h"
#include "packages/packagetypes.h"
#include "system/run/toollimits.h"
#include "system/textcodec.h"
#include "tarreader.h"

#include <QIODevice>

#include <algorithm>
#include <cmath>

namespace MkPackage {
namespace {
constexpr qint64 megabyte = 1'000'000;
constexpr qint64 memberCost = 2000; // bytes; creating a file takes as long as writing them
constexpr double slowShare = 0.5;   // of the time limit; a warning is due above it

// No panel can unpack more than this within the time limit, so reading stops here.
constexpr qint64 largestSize = 4096 * megabyte;
constexpr qint64 highestCount = 1'000'000;

// Real projects shrink to a tenth and many empty files to a hundredth; gzip can reach a thousandth.
constexpr qint64 highestRatio = 200;
constexpr qint64 smallSize = 20 * megabyte; // bytes; harmless at any ratio

constexpr char versionFile[] = "bios.version";
constexpr qsizetype versionFileSize = 32; // bytes; no number is longer

/// Verifies one package.
class Verifier
{
public:
    Verifier(QIODevice &file, const VerifyTask &task)
        : m_file(file)
        , m_task(task)
    {
    }

    Verification run();

private:
    using GzipState = GzipReader::State;

    void readArchive(const PackageHeader &header);
    void readMembers(TarReader &tar, const PackageHeader &header);
    void addSize(const TarMember &member);
    void checkVersionFile(TarReader &tar, const PackageHeader &header);
    void judgeGzip(const GzipReader &gzip);
    void judgeTar(const TarReader &tar);
    void judgeSize();
    void judgeTime();
    void say(Check check, Level level, const QString &text)
    {
        m_result.findings.add(check, level, text);
    }

    QIODevice &m_file;
    const VerifyTask &m_task;
    Verification m_result;
    MemberCheck m_members{m_result.findings};
    qint64 m_contentSize = 0; ///< of all files, holes included
    bool m_isTooMuch = false;
    bool m_hasVersionFile = false;
};

Verification Verifier::run()
{
    const QByteArray bytes = m_file.read(packageHeaderSize);
    m_result.header = parsePackageHeader(bytes);
    if (m_result.header) {
        checkHeader(bytes, *m_result.header, m_result.findings);
        checkPanel(*m_result.header, m_task.name, m_task.panel, m_result.findings);
        readArchive(*m_result.header);
    } else {
        m_result.readable = isAtEnd(m_file);
        checkShortFile(bytes.size(), m_task.name, m_result.findings);
    }
    return m_result;
}

void Verifier::readArchive(const PackageHeader &header)
{
    GzipReader gzip(m_file, largestSize);
    TarReader tar(gzip);
    readMembers(tar, header);
    if (!m_isTooMuch) {
        gzip.skipRest(); // what tar ignores must be whole as well
    }
    m_isTooMuch = m_isTooMuch || gzip.state() == GzipState::TooLarge;
    m_result.readable = gzip.state() != GzipState::Unreadable;
    m_result.packedSize = gzip.packedSize();
    m_result.unpackedSize = gzip.unpackedSize();
    m_result.count = m_members.count();
    judgeGzip(gzip);
    if (gzip.state() == GzipState::Whole && !m_isTooMuch) {
        judgeTar(tar);
    }
    judgeSize();
    judgeTime();
}

void Verifier::readMembers(TarReader &tar, const PackageHeader &header)
{
    TarMember member;
    while (!m_isTooMuch && tar.next(member) == TarReader::Step::Member) {
        m_members.add(member);
        addSize(member);
        if (header.kind == PackageKind::BiosImage && member.type == TarMember::Type::File
            && (member.name == versionFile || member.name == QByteArray("./") + versionFile)) {
            checkVersionFile(tar, header);
        }
    }
    if (header.kind == PackageKind::BiosImage && !m_hasVersionFile
        && !isListedAs(PackageType::AddOn, m_task.name)) {
        say(Check::Panel, Level::Warning,
            "it has no file bios.version: the panel will not know that it is installed");
    }
}

void Verifier::addSize(const TarMember &member)
{
    m_isTooMuch = m_isTooMuch || m_members.count() > highestCount
        || member.size > largestSize - m_contentSize;
    m_contentSize += m_isTooMuch ? 0 : member.size;
}

void Verifier::checkVersionFile(TarReader &tar, const PackageHeader &header)
{
    m_hasVersionFile = true;
    const QByteArray line = tar.content(versionFileSize).split('\n').first();
    if (versionNumber(textFromBytes(line)) != header.version) {
        say(Check::Panel, Level::Warning,
            QString("its bios.version is %1, its header says %2: the panel goes by the file")
                .arg(shownName(line))
                .arg(header.version));
    }
}

void Verifier::judgeGzip(const GzipReader &gzip)
{
    if (gzip.state() == GzipState::Whole) {
        say(Check::Gzip, Level::Ok, QString("whole, %1 bytes").arg(m_result.packedSize));
    } else if (gzip.state() == GzipState::Damaged) {
        say(Check::Gzip, Level::Error,
            QString("damaged: %1; a panel unpacks what it can and says nothing").arg(gzip.error()));
    }
}

void Verifier::judgeTar(const TarReader &tar)
{
    const QString error = tar.findError();
    if (!error.isEmpty()) {
        say(Check::Tar, Level::Error, error);
    } else if (m_members.count() == 0) {
        say(Check::Tar, Level::Error, "it holds nothing that a panel could unpack");
    } else {
        say(Check::Tar, Level::Ok, QString("whole, files and folders: %1").arg(m_result.count));
        say(Check::Names, Level::Ok, "all inside the panel's folder");
        say(Check::Links, Level::Ok, "none");
        say(Check::Rights, Level::Ok, "no special bits, no devices, everything owned by root");
    }
}

void Verifier::judgeSize()
{
    const qint64 ratio = m_result.unpackedSize / std::max<qint64>(m_result.packedSize, 1);
    if (m_isTooMuch) {
        say(Check::Size, Level::Error,
            QString("more than %1 MB or %2 files: not read to the end")
                .arg(largestSize / megabyte)
                .arg(highestCount));
    } else if (m_result.unpackedSize > smallSize && ratio > highestRatio) {
        say(Check::Size, Level::Error,
            QString("%1 bytes unpacked, %2 times the packed size: made to fill a disk")
                .arg(m_result.unpackedSize)
                .arg(ratio));
    } else {
        say(Check::Size, Level::Ok, QString("%1 bytes unpacked").arg(m_result.unpackedSize));
    }
}

void Verifier::judgeTime()
{
    const qint64 bytes = m_result.unpackedSize + m_result.count * memberCost;
    const double limit = std::chrono::duration<double>(unpackLimit).count();
    m_result.seconds = std::ceil(10 * double(bytes) / double(m_task.rate * megabyte)) / 10;
    const QString text = QString("up to %1 s at %2 MB/s; a panel allows %3 s")
                             .arg(m_result.seconds, 0, 'f', 1)
                             .arg(m_task.rate)
                             .arg(limit);
    const bool isSlow = m_result.seconds > limit * slowShare;
    const bool isTooSlow = m_result.seconds > limit;
    say(Check::Time, isTooSlow ? Level::Error : isSlow ? Level::Warning : Level::Ok, text);
}
} // namespace

Verification verifyPackage(QIODevice &file, const VerifyTask &task)
{
    return Verifier(file, task).run();
}
} // namespace MkPackage
