#include "platform/desktop/Application.h"

#include <exception>

#include "platform/base/Handlers.h"

namespace pollarix {

Application::Application(int& argc, char** argv) : QApplication(argc, argv) {
    setApplicationName("pollarix");
    setDesktopFileName("pollarix");
}

bool Application::notify(QObject* receiver, QEvent* event) {
    try {
        return QApplication::notify(receiver, event);
    } catch (const std::exception&) {
        RunHandler([] { throw; });
        return false;
    }
}

} // namespace pollarix
