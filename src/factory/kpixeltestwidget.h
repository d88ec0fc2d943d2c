#pragma once

#include <QWidget>

/// Fills the screen with one plain colour after another to make dead and stuck pixels visible. Each
/// release of the finger shows the next colour. After the last colour the widget deletes itself.
class KPixelTestWidget : public QWidget
{
    Q_OBJECT
public:
    /// Covers the available area of the primary screen.
    explicit KPixelTestWidget(QWidget *parent = nullptr);

    /// Shows the first colour above all other windows.
    void run();

protected:
    void paintEvent(QPaintEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;

private:
    int m_colorIndex = 0;
};
