#pragma once

#include <QByteArray>
#include <QList>
#include <QMap>

/// What is on the panel's disk at a moment, with names of any bytes and files of any kind.
class DiskSnapshot
{
public:
    /// Looks at all that is below @p folders, and at what lies directly in "/".
    explicit DiskSnapshot(const QList<QByteArray> &folders);

    /// What is different in @p later, a text per name in the order of the names: "+" if it is new,
    /// "-" if it is gone, "~" if it is changed; then the path and, as "ls -F" prints it, what it
    /// is, with "%" for a device; then special bits of the mode. Only the topmost of new folders
    /// and of those that are gone are named, with the number of entries below.
    QList<QByteArray> changesTo(const DiskSnapshot &later) const;

private:
    struct Entry
    {
        QByteArray suffix;  ///< what a text of a change ends with
        QByteArray content; ///< all else by which a change is noticed
        bool operator==(const Entry &other) const = default;
    };
    using Entries = QMap<QByteArray, Entry>;

    void add(const QByteArray &path);
    void addBelow(const QByteArray &folder);
    static QMap<QByteArray, QByteArray> missingIn(const Entries &other, const Entries &entries,
                                                  char sign);

    Entries m_entries;
};
