// The words of a chart: one text with its place, how long labels are broken into lines, and how
// texts that want the same place are spread out. Knows nothing of bars and slices.
#pragma once

#include <QFont>
#include <QPolygonF>
#include <QRectF>
#include <QString>

#include <vector>

namespace pollarix {

constexpr int SmallestChartFont = 9; // pixels

struct ChartText {
    enum class Kind { Tick, Category, Value, Legend, Notice };

    Kind kind = Kind::Tick;
    int row = -1; // 0-based row that it speaks of, -1 for none
    QString text; // lines are separated by \n
    QRectF box;   // in pixels, before the turn
    Qt::Alignment align = Qt::AlignCenter;
    QFont font;
    qreal angle = 0; // degrees clockwise, about the box's centre
    bool muted = false;
    bool halo = false;   // stands over lines or faces and needs background around its letters
    bool onFace = false; // stands on a face in the first series colour
    bool elided = false; // says less than the whole label

    // The box as it stands on the chart.
    QPolygonF Outline() const;
};

struct WrappedText {
    QStringList lines;
    qreal width = 0;
    bool elided = false;     // the end was left out
    bool brokeAWord = false; // a line ends inside a word
};

// Breaks `text` into at most `mostLines` lines of `width` pixels; what does not fit ends in an
// ellipsis.
WrappedText WrapText(const QString& text, const QFont& font, qreal width, int mostLines);

// Moves intervals along a line so that they keep their order, do not overlap, lie within `low` and
// `high`, and move as little as can be. Takes and gives their centres. The caller sees to it that
// they fit; if not, they run over `high`.
std::vector<qreal> SpreadOut(const std::vector<qreal>& centres, const std::vector<qreal>& lengths,
                             qreal low, qreal high);

} // namespace pollarix
