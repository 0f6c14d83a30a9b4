// The frame that the question tree and the library share: a title strip, the tree, a row of
// buttons. It only lays out; what the tree and the buttons do is the panels' own.
#pragma once

#include <QWidget>

class QFrame;
class QHBoxLayout;
class QVBoxLayout;

namespace pollarix {

class ListPanel : public QWidget {
    Q_OBJECT
  public:
    // Heights in pixels: of the strip with the frame above it, and of the row of buttons.
    int StripHeight() const;
    int ButtonRowHeight() const;

  protected:
    // `backing` names the panel behind everything, which carries the strip; it ends `spare` twips
    // above the bottom edge.
    ListPanel(const char* name, const char* backing, int spare, const QString& caption,
              QWidget* parent);

    // Between strip and buttons. Without it the space is left to a tree that stands in front.
    void FillWith(QWidget* tree);
    QHBoxLayout& ButtonRow() { return *buttons_; }

    void resizeEvent(QResizeEvent* event) override;

  private:
    QFrame* backing_;
    int spare_;
    QVBoxLayout* rows_;
    QHBoxLayout* buttons_;
};

} // namespace pollarix
