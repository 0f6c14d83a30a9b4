// While it lives, what the user presses, types or drops is lost, in all windows of the program: for
// long work that lets the window go on painting. Boxes and dialogs that show meanwhile can be
// answered.
#pragma once

#include <QObject>

namespace pollarix {

class InputLock : public QObject {
  public:
    InputLock();

    bool eventFilter(QObject* receiver, QEvent* event) override;
};

} // namespace pollarix
