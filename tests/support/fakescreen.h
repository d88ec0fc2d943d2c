#pragma once

#include <QRect>

/// A second screen of the test process, plugged in for as long as this lives. The toolkit is told
/// of it in the way in which its display connection tells it; no server is involved.
class FakeScreen
{
public:
    explicit FakeScreen(const QRect &geometry);
    ~FakeScreen();
    Q_DISABLE_COPY_MOVE(FakeScreen)

    /// Changes the size or place of the screen, as a change of its mode does.
    void setGeometry(const QRect &geometry) const;

private:
    class PlatformScreen;
    PlatformScreen *m_screen; ///< the toolkit owns it
};

/// Gives the test's first screen another size, as a change of its mode does.
void setPrimaryScreenSize(QSize size);
