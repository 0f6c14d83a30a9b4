// An address as a link, cut in its middle where it is wider than its window. One that may not be
// opened, since it came from outside and is no web address, is text only.
#pragma once

#include <QPushButton>

namespace pollarix {

class LinkButton : public QPushButton {
    Q_OBJECT
  public:
    LinkButton(const QString& address, QWidget* parent);

    bool IsLink() const { return isLink_; }
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    bool isLink_;
};

} // namespace pollarix
