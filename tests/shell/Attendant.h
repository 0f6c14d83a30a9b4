// A user who is sitting by while code waits in a modal window: for each that comes up it does what
// it was told for its name, and closes it.
#pragma once

#include <QApplication>
#include <QStringList>
#include <QTimer>
#include <QWidget>

#include <functional>
#include <map>

namespace pollarix::test {

class Attendant {
  public:
    Attendant() {
        QObject::connect(&timer_, &QTimer::timeout, &timer_, [this] { Look(); });
        timer_.start(10);
    }

    // What to do in the window of a name before it is closed.
    std::map<QString, std::function<void(QWidget&)>> tasks;
    // The windows that came up, in order.
    QStringList seen;

  private:
    void Look() {
        QWidget* const window = QApplication::activeModalWidget();
        if (!window || busy_)
            return;
        busy_ = true;
        seen << window->objectName();
        if (const auto task = tasks.find(window->objectName()); task != tasks.end())
            task->second(*window);
        window->close();
        busy_ = false;
    }

    QTimer timer_;
    bool busy_ = false;
};

} // namespace pollarix::test
