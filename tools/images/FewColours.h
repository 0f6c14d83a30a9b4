// Makes a picture of a window small: most of its colours are shades of one another that no eye
// tells apart.
#pragma once

#include <QImage>

namespace pollarix::images {

// The picture with at most 256 colours, each near to what it was; the picture itself where that
// can't be had.
QImage WithFewColours(const QImage& picture);

} // namespace pollarix::images
