#include "picturebook.h"

#include "panelprogram.h"
#include "picturecompare.h"

#include <QApplication>
#include <QColor>
#include <QDir>
#include <QElapsedTimer>
#include <QImage>
#include <QTest>
#include <QWidget>

#include <cstdio>

namespace {
constexpr int restTime = 20;    // ms without a change
constexpr int passes = 10;      // of the event loop: a change can take several until it is painted
constexpr int restLimit = 5000; // ms
constexpr int quickly = 90;     // the compression; what is kept is compressed again

void letTimePass()
{
    QTest::qWait(restTime);
    for (int pass = 0; pass < passes; ++pass) { // however late the machine is
        QCoreApplication::processEvents();
    }
}

/// The screen once all windows are there and nothing changes any more.
QImage restingScreen()
{
    for (QWidget *window : QApplication::topLevelWidgets()) {
        if (window->isVisible() && !QTest::qWaitForWindowExposed(window)) {
            qFatal("a window does not come");
        }
    }
    QElapsedTimer timer;
    timer.start();
    letTimePass();
    QImage shown = screenImage();
    while (timer.elapsed() < restLimit) {
        letTimePass();
        const QImage next = screenImage();
        if (next == shown) {
            return shown;
        }
        shown = next;
    }
    qFatal("the screen does not come to rest");
}

QString fileIn(const QString &folder, const QString &name)
{
    return folder + '/' + name + ".png";
}

void say(const QString &text)
{
    std::puts(qPrintable(text));
}

QString placeText(const QRect &place)
{
    return QString("%1x%2 pixels at %3,%4")
        .arg(place.width())
        .arg(place.height())
        .arg(place.x())
        .arg(place.y());
}
} // namespace

PictureBook::PictureBook(const QString &stored, const QString &changed, Extent extent)
    : m_stored(stored)
    , m_changed(changed)
    , m_extent(extent)
{
}

void PictureBook::take(const QString &name)
{
    if (m_taken.contains(name)) {
        qFatal("two pictures %s", qPrintable(name));
    }
    m_taken.insert(name);
    const QImage shown = restingScreen();
    const QString storedFile = fileIn(m_stored, name);
    const QString changedFile = fileIn(m_changed, name);
    const QImage stored(storedFile);
    const QRect changed = changedArea(shown, stored);
    if (changed.isEmpty()) {
        return;
    }
    ++m_differences;
    if (!shown.save(changedFile, "PNG", quickly)) {
        qFatal("cannot write %s", qPrintable(changedFile));
    }
    say(stored.isNull()
            ? "new: " + changedFile
            : changedFile + " differs from " + storedFile + " in " + placeText(changed));
}

void PictureBook::takeDetail(const QString &name)
{
    if (m_extent == Extent::Everything) {
        take(name);
    }
}

void PictureBook::expectColor(const QString &name, const QColor &color)
{
    const QImage shown = restingScreen().convertToFormat(QImage::Format_RGB32);
    QImage expected(shown.size(), QImage::Format_RGB32);
    expected.fill(color);
    if (shown != expected) {
        ++m_differences;
        say(name + " is not all " + color.name());
    }
}

int PictureBook::finish()
{
    for (const QString &file : QDir(m_stored).entryList({"*.png"})) {
        if (!m_taken.contains(file.chopped(4))) {
            ++m_differences;
            say("not taken any more: " + m_stored + '/' + file);
        }
    }
    return m_differences;
}
