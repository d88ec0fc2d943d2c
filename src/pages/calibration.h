#pragma once

#include <QDialog>
#include <QPoint>

#include <array>

/// Skeleton of a full-screen calibration dialog. It is part of the interface, but the program
/// does not use it: the calibration page runs an external tool instead.
class Calibration : public QDialog
{
    Q_OBJECT
public:
    Calibration();

    /// Covers the desktop, takes the focus, makes the dialog modal and returns to the first point.
    void init();

    /// Does nothing.
    void saveCalibration();

protected:
    void paintEvent(QPaintEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void showEvent(QShowEvent *event) override;

private:
    static constexpr size_t pointCount = 5;

    std::array<QPoint, pointCount> m_wantedPoints;
    std::array<QPoint, pointCount> m_touchedPoints;
    int m_currentPoint = 0;
};
