#pragma once

#include "fickletools.h"

#include <QElapsedTimer>
#include <QMap>
#include <QObject>
#include <QRandomGenerator>

class QWidget;

/// A finger that touches whatever it finds: buttons, fields, rows, the keypad, dialogs and bare
/// ground of the program's windows, in an order that a seed determines.
class FingerWalk : public QObject
{
    Q_OBJECT
public:
    /// Touches @p steps times in all, in a walk of this @p seed.
    FingerWalk(quint32 seed, int steps);

    /// Whether all steps are done.
    bool isDone() const { return m_step >= m_steps; }

    int step() const { return m_step; }

    /// The longest time in ms from one step to the next one, and the step behind which it was.
    qint64 longestPause() const { return m_longestPause; }
    int longestPauseStep() const { return m_longestPauseStep; }

    /// How often each kind of thing was touched.
    const QMap<QString, int> &touched() const { return m_touched; }

    /// Runs the program's event loop, and touches its windows meanwhile, for so many steps or until
    /// the program ends itself.
    void runFor(int steps);

private:
    void takeStep();
    void touch();
    void changeMood();
    QWidget *currentWindow();
    QWidget *chooseTarget(QWidget *window);
    void tap(QWidget *target, QPoint at);
    void hold(QWidget *target, QPoint at);
    void drag(QWidget *target, QPoint at);
    bool chance(int percent) { return m_random.bounded(100) < percent; }
    void measurePause();

    FickleTools m_tools;
    QRandomGenerator m_random;
    QElapsedTimer m_sinceStep;
    QMap<QString, int> m_touched;
    const int m_steps;
    int m_step = 0;
    int m_lastStep = 0; ///< of this run of the program
    qint64 m_longestPause = 0;
    int m_longestPauseStep = 0;
    bool m_isTouching = false; ///< between press and release
};
