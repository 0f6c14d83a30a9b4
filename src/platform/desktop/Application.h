// The program's QApplication: its names, and the last place where an exception is caught. Handlers
// report their own failures (Handlers.h); what slips past them is reported here.
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
