// A picture of a window as it looks on a desktop: with a frame and its title. The frame is drawn,
// since pictures are taken where no desktop runs.
#pragma once

#include <QImage>
#include <QMargins>

class QWidget;

namespace pollarix::images {

// What the frame adds around a window, in pixels.
QMargins FrameMargins();

QImage Framed(QWidget& window);

} // namespace pollarix::images
