#include "images/FewColours.h"

#include <QHash>

#include <algorithm>
#include <cstdlib>
#include <vector>

namespace pollarix::images {

namespace {

constexpr int MostColours = 256;
// Of each of red, green and blue, of 255: what nobody sees where a colour fills an area.
constexpr int Tolerance = 3;
// A colour on fewer pixels than one of so many is the soft edge of a letter or an icon.
constexpr int PixelsForAnEdge = 10000;

struct Colour {
    QRgb rgb = 0;
    int pixels = 0;
};

int Distance(QRgb a, QRgb b) {
    return std::max({std::abs(qRed(a) - qRed(b)), std::abs(qGreen(a) - qGreen(b)),
                     std::abs(qBlue(a) - qBlue(b))});
}

// The commonest colours first.
std::vector<Colour> ColoursOf(const QImage& picture) {
    QHash<QRgb, int> counts;
    for (int y = 0; y < picture.height(); ++y) {
        const auto* line = reinterpret_cast<const QRgb*>(picture.constScanLine(y));
        for (int x = 0; x < picture.width(); ++x)
            ++counts[line[x]];
    }
    std::vector<Colour> colours;
    for (auto count = counts.cbegin(); count != counts.cend(); ++count)
        colours.push_back({count.key(), count.value()});
    std::sort(colours.begin(), colours.end(), [](const Colour& a, const Colour& b) {
        return a.pixels != b.pixels ? a.pixels > b.pixels : a.rgb < b.rgb;
    });
    return colours;
}

// The colours to keep, and for each colour the place of the one that stands for it; empty when too
// many areas have colours of their own.
QList<QRgb> Keep(const std::vector<Colour>& colours, int edge, QHash<QRgb, int>& places) {
    QList<QRgb> kept;
    for (const auto& [rgb, pixels] : colours) {
        const auto nearest =
            std::min_element(kept.cbegin(), kept.cend(), [rgb = rgb](QRgb a, QRgb b) {
                return Distance(a, rgb) < Distance(b, rgb);
            });
        const bool isFull = kept.size() == MostColours;
        if (nearest != kept.cend() && (isFull || Distance(*nearest, rgb) <= Tolerance)) {
            if (isFull && pixels >= edge && Distance(*nearest, rgb) > Tolerance)
                return {};
            places[rgb] = static_cast<int>(nearest - kept.cbegin());
            continue;
        }
        places[rgb] = static_cast<int>(kept.size());
        kept << rgb;
    }
    return kept;
}

} // namespace

QImage WithFewColours(const QImage& picture) {
    const QImage source = picture.convertToFormat(QImage::Format_RGB32);
    QHash<QRgb, int> places;
    const QList<QRgb> kept =
        Keep(ColoursOf(source), source.width() * source.height() / PixelsForAnEdge, places);
    if (kept.isEmpty())
        return source;
    QImage few(source.size(), QImage::Format_Indexed8);
    few.setColorTable(kept);
    for (int y = 0; y < source.height(); ++y) {
        const auto* from = reinterpret_cast<const QRgb*>(source.constScanLine(y));
        uchar* to = few.scanLine(y);
        for (int x = 0; x < source.width(); ++x)
            to[x] = static_cast<uchar>(places[from[x]]);
    }
    return few;
}

} // namespace pollarix::images
