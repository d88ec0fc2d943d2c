#pragma once

#include <QByteArray>
#include <QList>
#include <QMap>

/// The contents of the panel's disk at one moment. Handles any names and any types of files.
class DiskSnapshot
{
public:
    /// Records everything below @p folders, and the entries of "/" itself.
    explicit DiskSnapshot(const QList<QByteArray> &folders);

    /// The differences in @p later, one text per path, in the order of the paths: "+" for new, "-"
    /// for removed, "~" for changed; the path; the type as in "ls -F", with "%" for a device;
    /// special bits of the mode. Of new and removed folders, only the topmost is listed, with the
    /// number of entries below it.
    QList<QByteArray> changesTo(const DiskSnapshot &later) const;

private:
    struct Entry
    {
        QByteArray suffix;  ///< type and special bits, as in a change
        QByteArray content; ///< everything else that is compared
        bool operator==(const Entry &other) const = default;
    };
    using Entries = QMap<QByteArray, Entry>;

    void add(const QByteArray &path);
    void addBelow(const QByteArray &folder);
    static QMap<QByteArray, QByteArray> missingIn(const Entries &other, const Entries &entries,
                                                  char sign);

    Entries m_entries;
};
