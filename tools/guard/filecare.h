#pragma once

#include <QDeadlineTimer>
#include <QHash>
#include <QSet>
#include <QStringList>

#include <chrono>
#include <map>

namespace Guard {
/// Makes guarded files durable and copies the good ones, soon after they change.
class FileCare
{
public:
    /// Finds out where the files are now; a path may be a link. Call it now and then.
    void findFiles();

    /// The folders in which changes must be noted.
    QStringList folders() const;

    /// Notes that the file at @p path is being written. Its writer may hold it open for long.
    void noteStart(const QString &path);

    /// Notes that the file at @p path is complete.
    void noteEnd(const QString &path);

    /// Notes that any file in @p folder may have changed.
    void noteFolder(const QString &folder);

    /// Notes that any file may have changed.
    void noteAll();

    /// Looks at the files whose time has come.
    void careForDueFiles();

    /// Time until the next file is due; an hour if there is none.
    std::chrono::milliseconds timeToNext() const;

private:
    void note(int file, std::chrono::milliseconds delay);
    void care(int file);
    void copy(int file, const QByteArray &content);
    void notePairIfEqual() const;

    QHash<QString, int> m_files;         ///< path, and where it leads, to the index of the file
    std::map<int, QDeadlineTimer> m_due; ///< by index
    QSet<int> m_uncopied;                ///< those whose copy could not be written
};
} // namespace Guard
