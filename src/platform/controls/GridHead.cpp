#include "platform/controls/GridHead.h"

#include <QHelpEvent>
#include <QMouseEvent>
#include <QStyleOptionHeader>
#include <QToolTip>

#include "platform/base/Handlers.h"
#include "platform/controls/OneLineDelegate.h"

namespace pollarix {

GridHead::GridHead(Qt::Orientation orientation, QWidget* parent)
    : QHeaderView(orientation, parent) {}

QString GridHead::Text(int section) const {
    return OneLine(model()->headerData(section, orientation()).toString());
}

int GridHead::Room(int section) const {
    const int margins = 2 * (style()->pixelMetric(QStyle::PM_HeaderMargin, nullptr, this) + 1);
    return (orientation() == Qt::Horizontal ? sectionSize(section) : width()) - margins;
}

void GridHead::initStyleOptionForIndex(QStyleOptionHeader* option, int section) const {
    QHeaderView::initStyleOptionForIndex(option, section);
    option->text = option->fontMetrics.elidedText(Text(section), Qt::ElideRight, Room(section));
}

void GridHead::mousePressEvent(QMouseEvent* event) {
    const bool resizes = cursor().shape() == Qt::SplitHCursor;
    QHeaderView::mousePressEvent(event);
    if (event->button() == Qt::LeftButton && !resizes &&
        logicalIndexAt(event->position().toPoint()) >= 0)
        RunHandler(Click);
}

bool GridHead::viewportEvent(QEvent* event) {
    if (event->type() != QEvent::ToolTip)
        return QHeaderView::viewportEvent(event);
    const auto& help = static_cast<const QHelpEvent&>(*event);
    const int section = logicalIndexAt(help.pos());
    if (section >= 0 && fontMetrics().horizontalAdvance(Text(section)) > Room(section))
        QToolTip::showText(help.globalPos(), PlainToolTip(Text(section)), viewport());
    else
        QToolTip::hideText();
    return true;
}

} // namespace pollarix
