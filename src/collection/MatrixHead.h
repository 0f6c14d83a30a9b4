// The sub questions at the left of a matrix. They are whole sentences at times, so they are wrapped
// and their rows grow with them.
#pragma once

#include "platform/controls/GridHead.h"

namespace pollarix {

class MatrixHead : public GridHead {
  public:
    explicit MatrixHead(QWidget* parent);

    void setModel(QAbstractItemModel* model) override;

  protected:
    void initStyleOptionForIndex(QStyleOptionHeader* option, int section) const override;
    void resizeEvent(QResizeEvent* event) override;

  private:
    void FitRows();
};

} // namespace pollarix
