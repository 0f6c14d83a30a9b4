// Sizes and positions are kept in twips, 1440 to the inch; a logical pixel is 1/96 inch.
#pragma once

namespace pollarix {

constexpr int TwipsPerPixel = 15;
constexpr int ToPixels(int twips) {
    return twips / TwipsPerPixel;
}
constexpr int ToTwips(int pixels) {
    return pixels * TwipsPerPixel;
}

} // namespace pollarix
