// Shows the cells of a grid to Qt's table view. The grid's row 0 is the head, so the grid's row r
// is the model's row r - 1. Asks the provider for cells that were never set and remembers what it
// said for the rows last asked.
#pragma once

#include <QAbstractTableModel>
#include <QCache>
#include <QStringList>

#include <functional>

#include "platform/controls/GridCells.h"

namespace pollarix {

class GridModel : public QAbstractTableModel {
  public:
    static constexpr int RowsRemembered = 512;

    GridModel();

    // For reading, and for writing what no view shows. What is shown is written below.
    GridCells& Cells() { return cells_; }

    void SetRows(int count);
    void SetCols(int count);
    void SetText(int row, int col, const QString& text);
    void SetAlignment(int row, int col, int alignment);
    void SetColAlignment(int col, int alignment);
    void SetProvider(std::function<QString(int row, int col)> provider);
    // With a head column, column 0 goes to the vertical header.
    void SetHeadColumn(bool on);

    // The cell's text by grid row; a failing provider fails.
    QString Text(int row, int col) const;

    // While silent, the views keep the size they know and hear of no change; Speak tells them all
    // at once.
    void BeSilent() { silent_ = true; }
    void Speak();

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

  private:
    int BodyRows() const { return std::max(0, cells_.Rows() - 1); }
    QVariant Shown(int row, int col, int role) const;
    void TellChanged(int row, int col);

    GridCells cells_;
    std::function<QString(int row, int col)> provider_;
    mutable QCache<int, QStringList> remembered_{RowsRemembered};
    mutable bool failureTold_ = false;
    mutable bool waitedInVain_ = false; // in the repaint under way
    bool headColumn_ = false;
    bool silent_ = false;
    int shownRows_ = 0;
    int shownCols_ = 0;
};

} // namespace pollarix
