#include "platform/charts/ChartText.h"

#include <QFontMetricsF>
#include <QTextBoundaryFinder>
#include <QTextLayout>
#include <QTransform>

#include <algorithm>
#include <cmath>

namespace pollarix {

QPolygonF ChartText::Outline() const {
    if (angle == 0)
        return QPolygonF(box);
    QTransform turn;
    turn.translate(box.center().x(), box.center().y());
    turn.rotate(angle);
    turn.translate(-box.center().x(), -box.center().y());
    return turn.map(QPolygonF(box));
}

WrappedText WrapText(const QString& text, const QFont& font, qreal width, int mostLines) {
    const QFontMetricsF metrics(font);
    WrappedText wrapped;
    if (const qreal all = metrics.horizontalAdvance(text); all <= width) {
        wrapped.lines << text;
        wrapped.width = all;
        return wrapped;
    }
    QTextOption option;
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    QTextLayout layout(text, font);
    layout.setTextOption(option);
    QTextBoundaryFinder breaks(QTextBoundaryFinder::Line, text);
    layout.beginLayout();
    for (int count = 1; count <= mostLines; ++count) {
        QTextLine line = layout.createLine();
        if (!line.isValid())
            break;
        line.setLineWidth(std::max(width, 1.0));
        const int end = line.textStart() + line.textLength();
        QString part = text.mid(line.textStart(), line.textLength()).trimmed();
        if (end < text.size() && count == mostLines) {
            part = metrics.elidedText(text.mid(line.textStart()), Qt::ElideRight, width);
            wrapped.elided = true;
        } else if (end < text.size()) {
            breaks.setPosition(end);
            wrapped.brokeAWord = wrapped.brokeAWord || !breaks.isAtBoundary();
        }
        wrapped.width = std::max(wrapped.width, metrics.horizontalAdvance(part));
        wrapped.lines << part;
    }
    layout.endLayout();
    return wrapped;
}

std::vector<qreal> SpreadOut(const std::vector<qreal>& centres, const std::vector<qreal>& lengths,
                             qreal low, qreal high) {
    // With each interval shifted by the room that those before it need, "no overlap" becomes "not
    // falling", and the nearest such row is found by averaging neighbours that fall.
    struct Block {
        qreal sum;
        int count;
        qreal Mean() const { return sum / count; }
    };
    std::vector<qreal> offsets;
    std::vector<Block> blocks;
    qreal offset = 0;
    for (std::size_t i = 0; i < centres.size(); ++i) {
        if (i > 0)
            offset += (lengths[i - 1] + lengths[i]) / 2;
        offsets.push_back(offset);
        blocks.push_back({centres[i] - offset, 1});
        while (blocks.size() > 1 && blocks[blocks.size() - 2].Mean() > blocks.back().Mean()) {
            const Block last = blocks.back();
            blocks.pop_back();
            blocks.back().sum += last.sum;
            blocks.back().count += last.count;
        }
    }
    std::vector<qreal> placed;
    if (centres.empty())
        return placed;
    const qreal least = low + lengths.front() / 2;
    const qreal most = std::max(least, high - lengths.back() / 2 - offset);
    for (const Block& block : blocks)
        for (int i = 0; i < block.count; ++i)
            placed.push_back(std::clamp(block.Mean(), least, most) + offsets[placed.size()]);
    return placed;
}

} // namespace pollarix
