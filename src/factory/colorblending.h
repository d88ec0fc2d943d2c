#pragma once

#include <QWidget>

/// A run of colours from left to right, on which banding and wrong colours show.
class ColorBlending : public QWidget
{
    Q_OBJECT
public:
    explicit ColorBlending(QWidget *parent = nullptr);

protected:
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
};
