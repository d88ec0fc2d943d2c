#pragma once

#include <QRect>

/// A second screen, plugged in during the lifetime of this object. Only Qt in this process knows of
/// it, through the interface that its platform plugin uses; the X server does not.
class FakeScreen
{
public:
    explicit FakeScreen(const QRect &geometry);
    ~FakeScreen();
    Q_DISABLE_COPY_MOVE(FakeScreen)

    /// Changes the size or place of the screen, like a change of its mode.
    void setGeometry(const QRect &geometry) const;

private:
    class PlatformScreen;
    PlatformScreen *m_screen; ///< owned by Qt
};

/// Changes the size of the primary screen, like a change of its mode.
void setPrimaryScreenSize(QSize size);
