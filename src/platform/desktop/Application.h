// The program's QApplication: its names, and the last place where an exception is caught. Handlers
// report their own failures (Handlers.h); what slips past them is reported here. When a dialog
// closes, the window below it becomes the active one; a program that is in use beside stays in
// front.
#pragma once

#include <QApplication>

namespace pollarix {

class Application : public QApplication {
    Q_OBJECT

  public:
    // `argc` and `argv` have to live as long as the application.
    Application(int& argc, char** argv);

    bool notify(QObject* receiver, QEvent* event) override;
};

} // namespace pollarix
