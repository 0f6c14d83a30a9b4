// How wide the columns of a grid are: in twips, as code or the user's mouse has set them last, and
// what its two heads make of that on the screen. For Grid alone.
#pragma once

#include <QTableView>

#include <functional>
#include <vector>

namespace pollarix {

class GridColumns {
  public:
    static constexpr int Narrowest = 8; // pixels, for the user's mouse

    // Of a view with its two headers. `headMoves` is called when the head column came, went or got
    // another width.
    GridColumns(QTableView& view, std::function<void()> headMoves);
    GridColumns(const GridColumns&) = delete;
    GridColumns& operator=(const GridColumns&) = delete;

    int Width(int col) const { return widths_[static_cast<std::size_t>(col)]; }
    void SetWidth(int col, int twips);
    void SetStretch(int col); // -1 for none
    int Fixed() const { return fixed_; }
    void SetFixed(int count);
    // A column that comes back has the width that it had.
    void SetCount(int count);
    // Runs a change of the model, during which no size of a header is the user's.
    void WhileModelChanges(const std::function<void()>& change);

    void Show();

  private:
    int Pixels(int col) const;
    void ShowHeadColumn();
    void ShowCells();

    QTableView& view_;
    std::function<void()> headMoves_;
    int count_ = 1;
    int fixed_ = 0;
    int stretch_ = -1;
    bool sizing_ = false;     // widths are being set by the program
    std::vector<int> widths_; // of all columns there ever were
};

} // namespace pollarix
