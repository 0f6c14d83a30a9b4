#include "collection/MatrixHead.h"

#include <QStyleOptionHeader>

namespace pollarix {

namespace {

constexpr int RoomAroundText = 12; // pixels, above and below together

} // namespace

MatrixHead::MatrixHead(QWidget* parent) : GridHead(Qt::Vertical, parent) {
    setSectionResizeMode(Fixed);
}

void MatrixHead::setModel(QAbstractItemModel* model) {
    GridHead::setModel(model);
    if (model)
        connect(model, &QAbstractItemModel::modelReset, this, [this] { FitRows(); });
}

void MatrixHead::initStyleOptionForIndex(QStyleOptionHeader* option, int section) const {
    QHeaderView::initStyleOptionForIndex(option, section);
    option->textAlignment |= Qt::Alignment::fromInt(Qt::TextWordWrap);
}

void MatrixHead::resizeEvent(QResizeEvent* event) {
    GridHead::resizeEvent(event);
    FitRows();
}

void MatrixHead::FitRows() {
    const int margin = style()->pixelMetric(QStyle::PM_HeaderMargin, nullptr, this);
    const QRect room(0, 0, width() - 2 * (margin + 1), QWIDGETSIZE_MAX);
    setMinimumSectionSize(fontMetrics().height() + RoomAroundText);
    for (int row = 0; row < count(); ++row) {
        const QString text = model()->headerData(row, Qt::Vertical).toString().trimmed();
        const int height = fontMetrics().boundingRect(room, Qt::TextWordWrap, text).height();
        resizeSection(row, height + RoomAroundText);
    }
}

} // namespace pollarix
