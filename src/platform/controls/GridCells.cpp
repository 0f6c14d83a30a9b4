#include "platform/controls/GridCells.h"

#include <algorithm>

namespace pollarix {

void GridCells::SetRows(int count) {
    const bool shrinks = count < Rows();
    rowData_.resize(static_cast<std::size_t>(count));
    if (!shrinks)
        return;
    const auto pages = static_cast<std::size_t>((count + PageSize - 1) / PageSize);
    const auto kept = static_cast<std::size_t>(count % PageSize);
    for (Column& column : columns_) {
        if (column.pages.size() > pages)
            column.pages.resize(pages);
        if (kept == 0 || column.pages.size() < pages || !column.pages.back())
            continue;
        Page& last = *column.pages.back();
        std::fill(last.texts.begin() + static_cast<std::ptrdiff_t>(kept), last.texts.end(),
                  QString());
        std::fill(last.alignments.begin() + static_cast<std::ptrdiff_t>(kept),
                  last.alignments.end(), std::int8_t{0});
    }
}

void GridCells::SetCols(int count) {
    columns_.resize(static_cast<std::size_t>(count));
}

const GridCells::Page* GridCells::Find(int row, int col) const {
    const auto page = static_cast<std::size_t>(row / PageSize);
    const Column& column = At(col);
    return page < column.pages.size() ? column.pages[page].get() : nullptr;
}

GridCells::Page& GridCells::Make(int row, int col) {
    const auto page = static_cast<std::size_t>(row / PageSize);
    Column& column = At(col);
    if (page >= column.pages.size())
        column.pages.resize(page + 1);
    if (!column.pages[page])
        column.pages[page] = std::make_unique<Page>();
    return *column.pages[page];
}

QString GridCells::Text(int row, int col) const {
    const Page* page = Find(row, col);
    return page ? page->texts[static_cast<std::size_t>(row % PageSize)] : QString();
}

void GridCells::SetText(int row, int col, const QString& text) {
    Make(row, col).texts[static_cast<std::size_t>(row % PageSize)] =
        text.isNull() ? QString("") : text;
}

int GridCells::Alignment(int row, int col) const {
    const Page* page = Find(row, col);
    const int own = page ? page->alignments[static_cast<std::size_t>(row % PageSize)] : 0;
    return own ? own : At(col).alignment;
}

void GridCells::SetAlignment(int row, int col, int alignment) {
    Make(row, col).alignments[static_cast<std::size_t>(row % PageSize)] =
        static_cast<std::int8_t>(alignment);
}

} // namespace pollarix
