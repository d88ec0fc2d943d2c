#include "filecare.h"

#include "guardedfiles.h"
#include "ifupdown.h"
#include "judge.h"
#include "storage.h"
#include "system/paths.h"

#include <QFileInfo>

#include <algorithm>

namespace Guard {
namespace {
using namespace std::chrono_literals;

constexpr auto writingTime = 500ms; // for a writer that does not close its file
constexpr auto retryTime = 5s;      // after a copy that could not be written
constexpr auto longTime = 1h;

bool isGood(const GuardedFile &file, const QByteArray &content)
{
    return faultOf(file.kind, content) == Fault::None
        && (file.kind != Kind::Interfaces || !isRefused(file.path));
}
} // namespace

void FileCare::findFiles()
{
    m_files.clear();
    for (int index = 0; index < int(guardedFiles().size()); ++index) {
        const QString path = guardedFiles().at(index).path;
        m_files.insert(path, index);
        if (const QString real = QFileInfo(path).canonicalFilePath(); !real.isEmpty()) {
            m_files.insert(real, index);
        }
    }
}

QStringList FileCare::folders() const
{
    QSet<QString> folders;
    for (auto file = m_files.keyBegin(); file != m_files.keyEnd(); ++file) {
        folders += file->section('/', 0, -2);
    }
    return folders.values();
}

void FileCare::noteStart(const QString &path)
{
    // Not at once: a file that was just emptied would be made durable before its new text arrives.
    note(m_files.value(path, -1), writingTime);
}

void FileCare::noteEnd(const QString &path)
{
    note(m_files.value(path, -1), 0ms);
}

void FileCare::noteFolder(const QString &folder)
{
    for (auto file = m_files.cbegin(); file != m_files.cend(); ++file) {
        if (file.key().section('/', 0, -2) == folder) {
            note(file.value(), 0ms);
        }
    }
}

void FileCare::noteAll()
{
    for (auto file = m_files.cbegin(); file != m_files.cend(); ++file) {
        note(file.value(), 0ms);
    }
}

void FileCare::careForDueFiles()
{
    for (auto due = m_due.begin(); due != m_due.end();) {
        if (!due->second.hasExpired()) {
            ++due;
            continue;
        }
        const int file = due->first;
        due = m_due.erase(due);
        care(file);
    }
}

std::chrono::milliseconds FileCare::timeToNext() const
{
    std::chrono::milliseconds time = longTime;
    for (const auto &due : m_due) {
        time = std::min(time, std::chrono::milliseconds(due.second.remainingTime()));
    }
    return time;
}

/// An earlier time that was noted before stays.
void FileCare::note(int file, std::chrono::milliseconds delay)
{
    if (file < 0) {
        return;
    }
    const QDeadlineTimer due(delay);
    const auto [known, isNew] = m_due.try_emplace(file, due);
    known->second = isNew ? due : std::min(known->second, due);
}

void FileCare::care(int file)
{
    const GuardedFile &guarded = guardedFiles().at(file);
    const auto content = contentOf(guarded.path);
    if (!content) {
        return;
    }
    if (faultOf(guarded.kind, *content) != Fault::None) {
        say(QString("%1 is empty or cut off: its last good copy stays").arg(guarded.path));
        return; // nor is this made durable
    }
    if (!makeDurable(guarded.path)) {
        say(QString("%1 cannot be flushed").arg(guarded.path));
    }
    if (guarded.kind == Kind::NoCopy) {
        return;
    }
    if (!isGood(guarded, *content)) {
        say(QString("ifupdown refuses %1: its last good copy stays").arg(guarded.path));
        return;
    }
    copy(file, *content);
    notePairIfEqual();
}

void FileCare::copy(int file, const QByteArray &content)
{
    const QString path = copyPath(nameOf(guardedFiles().at(file).path));
    if (contentOf(path) == content || storeSafely(path, content)) {
        m_uncopied.remove(file);
        return;
    }
    if (!m_uncopied.contains(file)) { // said once
        say(QString("%1 cannot be copied to %2").arg(guardedFiles().at(file).path, path));
        m_uncopied.insert(file);
    }
    note(file, retryTime);
}

void FileCare::notePairIfEqual() const
{
    const SettingsMap settings = settingsIn(contentOf(Paths::settingsFile).value_or(QByteArray()));
    const QByteArray interfaces = contentOf(Paths::interfacesFile).value_or(QByteArray());
    if (hasPortKeys(settings) && comparePair(interfaces, settings) == Pairing::Equal) {
        notePairing();
    }
}
} // namespace Guard
