#include "platform/desktop/Application.h"

#include <QDialog>
#include <QPointer>

#include <exception>

#include "platform/base/Handlers.h"

namespace pollarix {

namespace {

// Where a box and the dialog below it close in one step, some window managers leave no window
// active, and the keyboard is dead until a click.
void ActivateWindowBelow(const QDialog& closed) {
    const QPointer<QWidget> parent =
        closed.parentWidget() ? closed.parentWidget()->window() : nullptr;
    const auto activate = [parent] {
        QWidget* const modal = QApplication::activeModalWidget();
        if (QWidget* const next = modal ? modal : parent.data(); next && next->isVisible())
            next->activateWindow();
    };
    QMetaObject::invokeMethod(qApp, activate, Qt::QueuedConnection);
}

} // namespace

Application::Application(int& argc, char** argv) : QApplication(argc, argv) {
    setApplicationName("pollarix");
    setDesktopFileName("pollarix");
}

bool Application::notify(QObject* receiver, QEvent* event) {
    try {
        const bool hides = event->type() == QEvent::Hide && !event->spontaneous() &&
                           applicationState() == Qt::ApplicationActive;
        if (const auto* const dialog = hides ? qobject_cast<QDialog*>(receiver) : nullptr)
            ActivateWindowBelow(*dialog);
        return QApplication::notify(receiver, event);
    } catch (const std::exception&) {
        RunHandler([] { throw; });
        return false;
    }
}

} // namespace pollarix
