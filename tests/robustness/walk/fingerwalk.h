#pragma once

#include "fickletools.h"

#include <QElapsedTimer>
#include <QMap>
#include <QObject>
#include <QRandomGenerator>

class QWidget;

/// Touches the program's windows at random: buttons, fields, rows, the keypad, dialogs and empty
/// space. A seed determines the order.
class FingerWalk : public QObject
{
    Q_OBJECT
public:
    /// @p steps is the total number of touches.
    FingerWalk(quint32 seed, int steps);

    /// Whether all steps are done.
    bool isDone() const { return m_step >= m_steps; }

    int step() const { return m_step; }

    /// The longest time in ms between two steps, and the number of the first of the two.
    qint64 longestPause() const { return m_longestPause; }
    int longestPauseStep() const { return m_longestPauseStep; }

    /// How often each kind of widget was touched.
    const QMap<QString, int> &touched() const { return m_touched; }

    /// Runs the event loop and touches the windows, for @p steps steps or until the program quits.
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
    int m_lastStep = 0; ///< at which runFor() returns
    qint64 m_longestPause = 0;
    int m_longestPauseStep = 0;
    bool m_isTouching = false; ///< between press and release
};
