// The widths that the program has given the columns of a grid: at the start, then as the texts and
// the room need it. A column that the user has sized keeps the user's width.
#pragma once

#include <initializer_list>
#include <vector>

namespace pollarix {

class Grid;

class ColumnWidths {
  public:
    // All in twips. Until Start has given the columns their first widths, the others do nothing.
    void Start(Grid& grid, std::initializer_list<int> widths);
    // Widens a column that is narrower.
    void Fit(Grid& grid, int col, int width);
    // The column takes what the others leave of the grid, but for a rest, and at least its start
    // width.
    void Fill(Grid& grid, int col, int rest);

  private:
    bool IsOwn(const Grid& grid, int col) const; // the program's
    void Give(Grid& grid, int col, int width);

    std::vector<int> start_;
    std::vector<int> given_;
};

} // namespace pollarix
