#include "disksnapshot.h"

#include "diskfiles.h"

#include <QCryptographicHash>
#include <QRegularExpression>

#include <filesystem>

#include <sys/stat.h>

namespace {
constexpr qint64 largestRead = 1 << 20; // bytes; of a larger file only the size is compared
constexpr mode_t specialBits = 07000;

QByteArray parentOf(const QByteArray &path)
{
    return path.left(path.lastIndexOf('/'));
}

/// The path with escaped special bytes, and with "*" for the name of a temporary file.
QByteArray shownPath(const QByteArray &path)
{
    static const QRegularExpression temporary("^/tmp/[^/]+\\.[A-Za-z]{6}$");
    if (temporary.match(QString::fromLatin1(path)).hasMatch()) {
        return "/tmp/*";
    }
    QByteArray shown;
    for (const char byte : path) {
        if (byte > ' ' && byte < 0x7f && byte != '\\') {
            shown += byte;
        } else {
            shown += "\\x" + QByteArray(1, byte).toHex();
        }
    }
    return shown;
}

QByteArray typeMark(mode_t mode)
{
    switch (mode & S_IFMT) {
    case S_IFDIR:
        return "/";
    case S_IFLNK:
        return "@";
    case S_IFIFO:
        return "|";
    case S_IFSOCK:
        return "=";
    case S_IFREG:
        return "";
    default:
        return "%";
    }
}

QByteArray contentOf(const QByteArray &path, const struct stat &status)
{
    if (S_ISLNK(status.st_mode)) {
        return QByteArray::fromStdString(
            std::filesystem::read_symlink(path.toStdString()).string());
    }
    if (!S_ISREG(status.st_mode)) {
        return QByteArray::number(quint64(status.st_rdev));
    }
    // A new hard link counts as a change of the file.
    QByteArray size = QByteArray::number(qint64(status.st_size)) + ' '
        + QByteArray::number(quint64(status.st_nlink));
    if (status.st_size == 0 || status.st_size > largestRead) {
        return size;
    }
    return size + QCryptographicHash::hash(readFile(path), QCryptographicHash::Sha1);
}
} // namespace

DiskSnapshot::DiskSnapshot(const QList<QByteArray> &folders)
{
    for (const auto &entry : std::filesystem::directory_iterator("/")) {
        add(QByteArray::fromStdString(entry.path().string()));
    }
    for (const QByteArray &folder : folders) {
        add(folder);
        addBelow(folder);
    }
}

void DiskSnapshot::addBelow(const QByteArray &folder)
{
    const QByteArray checkout = parentOf(PANEL_SIMULATOR);
    const std::filesystem::path path(folder.toStdString());
    std::error_code missing;
    for (std::filesystem::recursive_directory_iterator entry(path, missing), end; entry != end;
         ++entry) {
        const QByteArray name = QByteArray::fromStdString(entry->path().string());
        // Skips the temporary folders of the test program itself, and the checkout.
        const bool isOwn = name.startsWith("/tmp/tst_") && entry->is_directory();
        if (isOwn || name == checkout) {
            entry.disable_recursion_pending();
        } else {
            add(name);
        }
    }
}

void DiskSnapshot::add(const QByteArray &path)
{
    struct stat status;
    if (lstat(path.constData(), &status) != 0) {
        return;
    }
    QByteArray suffix = typeMark(status.st_mode);
    const bool usual = S_ISLNK(status.st_mode) || (status.st_mode & specialBits) == 0;
    if (!usual) {
        suffix += '[' + QByteArray::number(status.st_mode & 07777, 8) + ']';
    }
    QByteArray content = contentOf(path, status);
    for (const quint64 part :
         {quint64(status.st_mode), quint64(status.st_uid), quint64(status.st_gid)}) {
        content += ' ' + QByteArray::number(part);
    }
    m_entries.insert(path, {suffix, content});
}

QMap<QByteArray, QByteArray> DiskSnapshot::missingIn(const Entries &other, const Entries &entries,
                                                     char sign)
{
    const auto isMissing
        = [&](const QByteArray &path) { return entries.contains(path) && !other.contains(path); };
    QMap<QByteArray, int> below; // by the topmost folder
    for (auto entry = entries.begin(); entry != entries.end(); ++entry) {
        if (!isMissing(entry.key())) {
            continue;
        }
        QByteArray top = entry.key();
        while (isMissing(parentOf(top))) {
            top = parentOf(top);
        }
        below[top] += top == entry.key() ? 0 : 1;
    }
    QMap<QByteArray, QByteArray> texts;
    for (auto top = below.begin(); top != below.end(); ++top) {
        texts[top.key()] = sign + shownPath(top.key()) + entries[top.key()].suffix;
        if (top.value() > 0) {
            texts[top.key()] += '(' + QByteArray::number(top.value()) + ')';
        }
    }
    return texts;
}

QList<QByteArray> DiskSnapshot::changesTo(const DiskSnapshot &later) const
{
    QMap<QByteArray, QByteArray> texts = missingIn(later.m_entries, m_entries, '-');
    texts.insert(missingIn(m_entries, later.m_entries, '+'));
    for (auto entry = m_entries.begin(); entry != m_entries.end(); ++entry) {
        const auto now = later.m_entries.find(entry.key());
        if (now != later.m_entries.end() && *now != *entry) {
            texts[entry.key()] = '~' + shownPath(entry.key()) + now->suffix;
        }
    }
    return texts.values();
}
