#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

#include <memory>

// The packages and stick folders of the generator beside this file, and the panel for them.

/// Packages that are installed one after the other.
struct HostileCase
{
    QByteArray group;
    QByteArray name;
    QList<QByteArray> paths;
    QList<int> results;
    QByteArray setup;
    QByteArray hazard;  ///< what is dangerous and known; "-" if nothing is
    QByteArray changes; ///< as DiskSnapshot tells them; "*" for anything below the application
};

struct HostileTree
{
    QByteArray name;
    QByteArray path;
    int rows;
};

/// Both are generated once in a test program, from the seed in HOSTILE_SEED, 1 without that.
const QList<HostileCase> &hostileCases();
const QList<HostileTree> &hostileTrees();

/// Whether the volume of the long run is asked for, by HOSTILE_ALL.
bool takesAllCases();

/// Runs the generator. The test program ends if it fails.
void makeSticks(int seed, const QByteArray &folder);

/// What a package may touch and what it must not touch. /etc and other folders that are large are
/// in it on demand.
QList<QByteArray> watchedFolders(bool all = false);

/// Puts the application in place that was there before the first package.
void resetApplication();

/// The panel as a case needs it, for as long as this lives. Around the folders lies a guard tree.
class CasePanel
{
public:
    explicit CasePanel(const HostileCase &hostile);
    ~CasePanel();
    Q_DISABLE_COPY_MOVE(CasePanel)

    /// Compares what was on the disk with what is there now.
    QList<QByteArray> changes() const;

private:
    struct State;
    std::unique_ptr<State> m_state;
};

/// Why @p changes are not those that @p hostile shall make; nothing if they are.
QByteArray wrongChanges(const HostileCase &hostile, const QList<QByteArray> &changes);

/// Removes the temporary file that a package of an unknown kind leaves. Result: what it held;
/// nothing if there is none.
QByteArray takeKeptFile();

/// A line of the table that the long run prints.
void printRow(const QByteArray &name, const QByteArray &result, const QByteArray &changes,
              qint64 milliseconds);

/// Puts a stick's folder into itself several times, for as long as this lives.
class MountRing
{
public:
    explicit MountRing(const QByteArray &folder);
    ~MountRing();
    Q_DISABLE_COPY_MOVE(MountRing)

private:
    QList<QByteArray> m_places;
};
