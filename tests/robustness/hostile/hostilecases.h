#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

#include <memory>

// The packages and stick folders that make-sticks generates, and the panel for them.

/// Packages that are installed in this order.
struct HostileCase
{
    QByteArray group;
    QByteArray name;
    QList<QByteArray> paths;
    QList<int> results;
    QByteArray setup;
    QByteArray hazard;  ///< the known hazard; "-" if there is none
    QByteArray changes; ///< as in DiskSnapshot; "*" for any below the application folder
};

struct HostileTree
{
    QByteArray name;
    QByteArray path;
    int rows;
};

/// Generated once per test program. HOSTILE_SEED sets the seed; the default is 1.
const QList<HostileCase> &hostileCases();
const QList<HostileTree> &hostileTrees();

/// Whether HOSTILE_ALL is set, for the long run with all packages.
bool takesAllCases();

/// The folders that are compared: those that a package may change, and some that it must not. With
/// @p all also large ones, such as /etc.
QList<QByteArray> watchedFolders(bool all = false);

/// Restores the application that was installed before the first package.
void resetApplication();

/// Sets the panel up for a case, while this object lives, with a guard tree outside its folders.
class CasePanel
{
public:
    explicit CasePanel(const HostileCase &hostile);
    ~CasePanel();
    Q_DISABLE_COPY_MOVE(CasePanel)

    /// The changes on the disk since this object was made.
    QList<QByteArray> changes() const;

private:
    struct State;
    std::unique_ptr<State> m_state;
};

/// Compares @p changes with the expected ones. Result: the difference; empty if there is none.
QByteArray wrongChanges(const HostileCase &hostile, const QList<QByteArray> &changes);

/// Removes the temporary file that a package of an unknown kind leaves. Result: its content; empty
/// if there is no such file.
QByteArray takeKeptFile();

/// Prints a row of the table for the long run.
void printRow(const QByteArray &name, const QByteArray &result, const QByteArray &changes,
              qint64 milliseconds);

/// Mounts a stick's folder inside itself several times, while this object lives.
class MountRing
{
public:
    explicit MountRing(const QByteArray &folder);
    ~MountRing();
    Q_DISABLE_COPY_MOVE(MountRing)

private:
    QList<QByteArray> m_places;
};
