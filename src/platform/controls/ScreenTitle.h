// The title strip, the instruction text and the headings that all screens share, so that they look
// alike and follow the desktop's palette.
#pragma once

#include <QString>

class QLabel;
class QWidget;

namespace pollarix {

// Height of a title strip in pixels.
inline constexpr int ScreenTitleHeight = 28;
// Height of the smaller strip above a list or tree.
inline constexpr int PanelTitleHeight = 24;

// A screen's title: bold on the palette's highlight.
QLabel* NewScreenTitle(const QString& name, const QString& caption, QWidget* parent);
// The strip above a panel of a screen.
QLabel* NewPanelTitle(const QString& name, const QString& caption, QWidget* parent);
// The instruction text below a title: plain text, wrapped, named lblInstructions.
QLabel* NewInstructions(const QString& text, QWidget* parent);
// A bold heading.
QLabel* NewHeading(const QString& text, QWidget* parent);

} // namespace pollarix
