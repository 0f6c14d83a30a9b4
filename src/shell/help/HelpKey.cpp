#include "shell/help/HelpKey.h"

#include <QApplication>
#include <QKeyEvent>
#include <QWidget>

#include "platform/base/Handlers.h"
#include "shell/help/HelpFile.h"

namespace pollarix {

namespace {

// The screen that shows in a window, for when nothing within it has the focus; "" for none.
QString ScreenIn(const QWidget& window) {
    for (const char* name : {"picDesign", "picCollect", "picAnalyse"}) {
        const auto* const screen = window.findChild<QWidget*>(name);
        if (screen && screen->isVisible())
            return name;
    }
    return {};
}

} // namespace

HelpKey::HelpKey(HelpFile& help) : help_(help) {
    qApp->installEventFilter(this);
}

bool HelpKey::ShowTopicFor(const QWidget& control) {
    // Out of the control, then out of message boxes into the dialog they belong to.
    for (const QWidget* around = &control; around; around = around->parentWidget()) {
        // The focus may still be on a screen that was left.
        if (around->isVisible() && !around->objectName().isEmpty() &&
            help_.ShowTopicOf(around->objectName()))
            return true;
        if (!around->isWindow())
            continue;
        const QString screen = ScreenIn(*around);
        if (!screen.isEmpty() && help_.ShowTopicOf(screen))
            return true;
    }
    return false;
}

bool HelpKey::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::KeyPress || !watched->isWidgetType() ||
        QApplication::activePopupWidget())
        return false;
    auto& key = static_cast<QKeyEvent&>(*event);
    if (key.key() != Qt::Key_F1 || (key.modifiers() & ~Qt::KeypadModifier) != Qt::NoModifier)
        return false;
    bool shown = false;
    RunHandler([&] { shown = ShowTopicFor(*static_cast<QWidget*>(watched)); });
    return shown;
}

} // namespace pollarix
