#pragma once

#include <QWidget>

/// The factory window. It has no contents yet.
class SoftwareSetup : public QWidget
{
    Q_OBJECT
public:
    explicit SoftwareSetup(QWidget *parent = nullptr);
};
