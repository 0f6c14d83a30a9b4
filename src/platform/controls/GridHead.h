// A head of a grid, along its top or left edge: texts cut to their room, with a tool tip for what
// was cut, and a click that moves nothing.
#pragma once

#include <QHeaderView>

#include <functional>

namespace pollarix {

class GridHead : public QHeaderView {
  public:
    GridHead(Qt::Orientation orientation, QWidget* parent);

    // The user pressed the button on a head, not on the edge that resizes it.
    std::function<void()> Click;

  protected:
    void initStyleOptionForIndex(QStyleOptionHeader* option, int section) const override;
    void mousePressEvent(QMouseEvent* event) override;
    bool viewportEvent(QEvent* event) override;

  private:
    QString Text(int section) const; // on one line
    int Room(int section) const;     // pixels
};

} // namespace pollarix
