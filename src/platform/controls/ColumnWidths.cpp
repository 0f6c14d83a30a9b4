#include "platform/controls/ColumnWidths.h"

#include "platform/controls/Grid.h"
#include "platform/controls/Twips.h"

namespace pollarix {

void ColumnWidths::Start(Grid& grid, std::initializer_list<int> widths) {
    start_ = given_ = widths;
    for (int col = 0; col < static_cast<int>(start_.size()); ++col)
        Give(grid, col, start_[static_cast<std::size_t>(col)]);
}

void ColumnWidths::Fit(Grid& grid, int col, int width) {
    if (IsOwn(grid, col) && width > grid.ColWidth(col))
        Give(grid, col, width);
}

void ColumnWidths::Fill(Grid& grid, int col, int rest) {
    if (!IsOwn(grid, col))
        return;
    const int start = start_[static_cast<std::size_t>(col)];
    int left = ToTwips(grid.width()) - start;
    for (int other = 0; other < grid.Cols(); ++other)
        if (other != col)
            left -= grid.ColWidth(other);
    const int filling = start + left - rest;
    Give(grid, col, left > 0 && filling > 0 ? filling : start);
}

bool ColumnWidths::IsOwn(const Grid& grid, int col) const {
    const auto place = static_cast<std::size_t>(col);
    return place < given_.size() && grid.ColWidth(col) == given_[place];
}

void ColumnWidths::Give(Grid& grid, int col, int width) {
    grid.SetColWidth(col, width);
    given_[static_cast<std::size_t>(col)] = width;
}

} // namespace pollarix
