#pragma once

#include <QDialog>
#include <QPoint>

#include <array>

/// Frame of a full-screen calibration dialog of the program's own. Nothing creates it: panels are
/// calibrated by the tool that the calibration page runs.
class Calibration : public QDialog
{
    Q_OBJECT
public:
    Calibration();

    /// Covers the desktop, takes the focus, becomes modal and starts at the first point.
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
