#include "fakescreen.h"

#include <QGuiApplication>
#include <qpa/qplatformscreen.h>
#include <qpa/qwindowsysteminterface.h>

class FakeScreen::PlatformScreen : public QPlatformScreen
{
public:
    explicit PlatformScreen(const QRect &geometry)
        : m_geometry(geometry)
    {
    }

    QRect geometry() const override { return m_geometry; }
    int depth() const override { return 32; }
    QImage::Format format() const override { return QImage::Format_RGB32; }

    QRect m_geometry;
};

FakeScreen::FakeScreen(const QRect &geometry)
    : m_screen(new PlatformScreen(geometry))
{
    QWindowSystemInterface::handleScreenAdded(m_screen);
}

FakeScreen::~FakeScreen()
{
    QWindowSystemInterface::handleScreenRemoved(m_screen);
}

void FakeScreen::setGeometry(const QRect &geometry) const
{
    m_screen->m_geometry = geometry;
    QWindowSystemInterface::handleScreenGeometryChange(m_screen->screen(), geometry, geometry);
    QCoreApplication::processEvents();
}

void setPrimaryScreenSize(QSize size)
{
    const QRect geometry(QPoint(0, 0), size);
    QWindowSystemInterface::handleScreenGeometryChange(QGuiApplication::primaryScreen(), geometry,
                                                       geometry);
    QCoreApplication::processEvents();
}
