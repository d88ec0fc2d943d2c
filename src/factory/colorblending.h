#pragma once

#include <QWidget>

/// A horizontal gradient of colours that makes banding and wrong colours visible.
class ColorBlending : public QWidget
{
    Q_OBJECT
public:
    explicit ColorBlending(QWidget *parent = nullptr);

protected:
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
};
