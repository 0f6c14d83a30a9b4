// A button that turns a page. Its mnemonic acts at once: the base class shows the button pressed
// for a tenth of a second first, and what is typed meanwhile would go into the page that is left.
#pragma once

#include <QPushButton>

namespace pollarix {

class PageButton : public QPushButton {
    Q_OBJECT
  public:
    using QPushButton::QPushButton;

  protected:
    bool event(QEvent* event) override;
};

} // namespace pollarix
