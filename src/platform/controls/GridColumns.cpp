#include "platform/controls/GridColumns.h"

#include <QHeaderView>

#include <algorithm>
#include <utility>

#include "platform/controls/Twips.h"

namespace pollarix {

namespace {

constexpr int DefaultWidth = 960; // twips

} // namespace

GridColumns::GridColumns(QTableView& view, std::function<void()> headMoves)
    : view_(view), headMoves_(std::move(headMoves)), widths_(1, DefaultWidth) {
    QHeaderView& heads = *view.horizontalHeader();
    heads.setMinimumSectionSize(Narrowest);
    QObject::connect(&heads, &QHeaderView::sectionResized, &view, [this](int col, int, int pixels) {
        if (std::exchange(sizing_, true))
            return;
        widths_[static_cast<std::size_t>(col)] = ToTwips(pixels);
        sizing_ = false;
        if (col != stretch_)
            Show();
    });
}

void GridColumns::SetWidth(int col, int twips) {
    widths_[static_cast<std::size_t>(col)] = twips;
    Show();
}

void GridColumns::SetStretch(int col) {
    stretch_ = col;
    Show();
}

void GridColumns::SetFixed(int count) {
    fixed_ = count;
    Show();
}

void GridColumns::SetCount(int count) {
    count_ = count;
    if (widths_.size() < static_cast<std::size_t>(count))
        widths_.resize(static_cast<std::size_t>(count), DefaultWidth);
}

void GridColumns::WhileModelChanges(const std::function<void()>& change) {
    sizing_ = true;
    change();
    sizing_ = false;
    Show();
}

void GridColumns::Show() {
    if (std::exchange(sizing_, true))
        return;
    ShowHeadColumn();
    ShowCells();
    sizing_ = false;
}

int GridColumns::Pixels(int col) const {
    return ToPixels(Width(col));
}

void GridColumns::ShowHeadColumn() {
    QHeaderView& rows = *view_.verticalHeader();
    const bool shown = fixed_ == 1 && count_ > 0 && Pixels(0) > 0;
    // However long its texts are, they leave room for the cells beside them.
    const int most = std::max(Narrowest, view_.width() * 6 / 10);
    const int width = shown ? std::clamp(Pixels(0), Narrowest, most) : 0;
    if (shown == rows.isHidden() || (shown && width != rows.width())) {
        if (shown)
            rows.setFixedWidth(width);
        rows.setVisible(shown);
        headMoves_();
    }
}

void GridColumns::ShowCells() {
    QHeaderView& heads = *view_.horizontalHeader();
    const int count = std::min(heads.count(), count_);
    int free = view_.viewport()->width();
    for (int col = fixed_; col < count; ++col)
        free -= Pixels(col) == 0 ? 0 : std::max(Pixels(col), Narrowest);
    for (int col = 0; col < count; ++col) {
        const bool hidden = col < fixed_ || Pixels(col) == 0;
        heads.setSectionHidden(col, hidden);
        if (!hidden)
            heads.resizeSection(col, Pixels(col) + (col == stretch_ ? std::max(0, free) : 0));
    }
}

} // namespace pollarix
