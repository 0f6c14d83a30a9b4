// F1 anywhere in the program: opens the topic of the dialog or screen that one is on. Shift+F1 to
// Shift+F3 change screens and are left alone.
#pragma once

#include <QObject>

namespace pollarix {

class HelpFile;

class HelpKey : public QObject {
    Q_OBJECT
  public:
    // Listens from now on to every key of the program, for as long as it lives.
    explicit HelpKey(HelpFile& help);

    // Opens the topic of the nearest named window or screen around a control. False when nothing
    // around it has a topic.
    bool ShowTopicFor(const QWidget& control);

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    HelpFile& help_;
};

} // namespace pollarix
