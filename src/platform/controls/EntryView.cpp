#include "platform/controls/EntryView.h"

namespace pollarix {

QItemSelectionModel::SelectionFlags UserSelection(QItemSelectionModel::SelectionFlags command,
                                                  const QEvent* event) {
    if (event && event->type() == QEvent::MouseButtonRelease)
        return QItemSelectionModel::NoUpdate;
    if (command & QItemSelectionModel::Deselect || command & QItemSelectionModel::Toggle ||
        command == QItemSelectionModel::Clear)
        return QItemSelectionModel::NoUpdate;
    return command;
}

bool IsPress(const QEvent* event) {
    return event && (event->type() == QEvent::MouseButtonPress ||
                     event->type() == QEvent::MouseButtonDblClick);
}

} // namespace pollarix
