#include "pages/calibration.h"

#include <QGuiApplication>
#include <QScreen>

Calibration::Calibration()
    : QDialog(nullptr)
{
}

void Calibration::init()
{
    const QRect desktop = QGuiApplication::primaryScreen()->virtualGeometry();
    setGeometry(0, 0, desktop.right() - desktop.left(), desktop.bottom() - desktop.top());
    setFocusPolicy(Qt::StrongFocus);
    setFocus(Qt::OtherFocusReason);
    setModal(true);
    m_currentPoint = 0;
}

void Calibration::saveCalibration()
{
}

void Calibration::paintEvent(QPaintEvent *)
{
}

void Calibration::mouseReleaseEvent(QMouseEvent *)
{
}

void Calibration::showEvent(QShowEvent *event)
{
    init();
    QDialog::showEvent(event);
}
