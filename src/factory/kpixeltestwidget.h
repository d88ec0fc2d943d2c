#pragma once

#include <QWidget>

/// Fills the screen with one plain colour after another, so that dead and stuck pixels show. Each
/// release of the finger leads to the next colour; the last one ends the test and the widget
/// frees itself.
class KPixelTestWidget : public QWidget
{
    Q_OBJECT
public:
    /// Covers the available area of the first screen.
    explicit KPixelTestWidget(QWidget *parent = nullptr);

    /// Shows the first colour above all other windows.
    void run();

protected:
    void paintEvent(QPaintEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;

private:
    int m_colorIndex = 0;
};
