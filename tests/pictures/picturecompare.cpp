#include "picturecompare.h"

#include <QImage>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <vector>

namespace {
constexpr int side = 8; // px of a square: about a letter of the smallest text
constexpr size_t channels = 3;
constexpr int smoothing = 9;      // pixels that are added up for each pixel
constexpr int toleratedShade = 4; // of 255, in the mean of a square

using Pixel = std::array<int, channels>;

/// The pixels of a picture, line by line.
struct Plane
{
    int width;
    int height;
    std::vector<Pixel> pixels;

    /// Places beyond the edge are those at the edge.
    const Pixel &at(int x, int y) const
    {
        return pixels[size_t(std::clamp(y, 0, height - 1)) * size_t(width)
                      + size_t(std::clamp(x, 0, width - 1))];
    }
};

Plane planeOf(const QImage &image)
{
    Plane plane{image.width(), image.height(), {}};
    plane.pixels.reserve(size_t(image.width()) * size_t(image.height()));
    for (int y = 0; y < plane.height; ++y) {
        const auto *line = reinterpret_cast<const QRgb *>(image.constScanLine(y));
        for (int x = 0; x < plane.width; ++x) {
            plane.pixels.push_back({qRed(line[x]), qGreen(line[x]), qBlue(line[x])});
        }
    }
    return plane;
}

/// Mixes each pixel with the two that lie @p dx and @p dy beside it, one on either side.
template <typename Mixer> Plane mixedAlong(const Plane &plane, int dx, int dy, Mixer mix)
{
    Plane mixed{plane.width, plane.height, {}};
    mixed.pixels.reserve(plane.pixels.size());
    for (int y = 0; y < plane.height; ++y) {
        for (int x = 0; x < plane.width; ++x) {
            const Pixel &before = plane.at(x - dx, y - dy);
            const Pixel &here = plane.at(x, y);
            const Pixel &behind = plane.at(x + dx, y + dy);
            Pixel pixel;
            for (size_t channel = 0; channel < channels; ++channel) {
                pixel[channel] = mix(mix(before[channel], here[channel]), behind[channel]);
            }
            mixed.pixels.push_back(pixel);
        }
    }
    return mixed;
}

/// Mixes each pixel with its eight neighbours.
template <typename Mixer> Plane mixedAround(const Plane &plane, Mixer mix)
{
    return mixedAlong(mixedAlong(plane, 1, 0, mix), 0, 1, mix);
}

/// A picture that is ready to be compared.
struct SmoothPicture
{
    Plane pixels;
    Plane darkest;
    Plane brightest; // of each pixel and its neighbours

    explicit SmoothPicture(const QImage &image)
        : pixels(mixedAround(planeOf(image), [](int one, int other) { return one + other; }))
        , darkest(mixedAround(pixels, [](int one, int other) { return std::min(one, other); }))
        , brightest(mixedAround(pixels, [](int one, int other) { return std::max(one, other); }))
    {
    }
};

int difference(QRgb one, QRgb other)
{
    return std::max({std::abs(qRed(one) - qRed(other)), std::abs(qGreen(one) - qGreen(other)),
                     std::abs(qBlue(one) - qBlue(other))});
}

/// Whether no square changed by more than what a picture with few colours lacks. Spares the long
/// comparison where the fonts are those of the stored pictures.
bool nearlyEqual(const QImage &one, const QImage &other)
{
    std::vector<int> sums; // of the squares next to each other
    for (int y = 0; y < one.height(); ++y) {
        if (y % side == 0) {
            sums.assign(size_t(one.width() / side) + 1, 0);
        }
        const auto *here = reinterpret_cast<const QRgb *>(one.constScanLine(y));
        const auto *there = reinterpret_cast<const QRgb *>(other.constScanLine(y));
        for (int x = 0; x < one.width(); ++x) {
            sums[size_t(x / side)] += difference(here[x], there[x]);
        }
        if (*std::max_element(sums.begin(), sums.end()) > toleratedShade * side * side) {
            return false;
        }
    }
    return true;
}

/// How far the square at @p left, @p top of one picture is from what the other one has there.
int difference(const SmoothPicture &one, const SmoothPicture &other, int left, int top)
{
    Pixel sums = {};
    for (int y = top; y < top + side; ++y) {
        for (int x = left; x < left + side; ++x) {
            const Pixel &pixel = one.pixels.at(x, y);
            const Pixel &darkest = other.darkest.at(x, y);
            const Pixel &brightest = other.brightest.at(x, y);
            for (size_t channel = 0; channel < channels; ++channel) {
                sums[channel] += std::max(
                    {0, darkest[channel] - pixel[channel], pixel[channel] - brightest[channel]});
            }
        }
    }
    return *std::max_element(sums.begin(), sums.end());
}
} // namespace

QRect changedArea(const QImage &shown, const QImage &stored)
{
    if (shown.size() != stored.size()) {
        return shown.rect() | stored.rect();
    }
    const QImage shownPixels = shown.convertToFormat(QImage::Format_RGB32);
    const QImage storedPixels = stored.convertToFormat(QImage::Format_RGB32);
    if (nearlyEqual(shownPixels, storedPixels)) {
        return {};
    }
    const SmoothPicture one(shownPixels);
    const SmoothPicture other(storedPixels);
    QRect changed;
    for (int y = 0; y < shown.height(); y += side) {
        for (int x = 0; x < shown.width(); x += side) {
            // Both ways: what one picture alone has is missing in the other one alone.
            const int sum = std::max(difference(one, other, x, y), difference(other, one, x, y));
            if (sum > toleratedShade * smoothing * side * side) {
                changed |= QRect(x, y, side, side);
            }
        }
    }
    return changed & shown.rect();
}
