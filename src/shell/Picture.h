// A drawing of the program on a window: sharp at any size and screen. It can be clicked, and is
// passed over by the keyboard, so whatever its click does has another way.
#pragma once

#include <QWidget>

#include <functional>

class QSvgRenderer;

namespace pollarix {

class Picture : public QWidget {
    Q_OBJECT
  public:
    // `drawing` is the name of one below ":/pictures", without its ending. Its own size is the
    // preferred one; in any other it keeps its proportions.
    Picture(const char* name, const char* drawing, QWidget* parent);

    QSize sizeHint() const override;

    // Raised by the left mouse button.
    std::function<void()> Click;

  protected:
    void paintEvent(QPaintEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

  private:
    QSvgRenderer* drawing_;
};

} // namespace pollarix
