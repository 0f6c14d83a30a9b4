#include "design/EditInPlace.h"

#include <QCoreApplication>
#include <QKeyEvent>
#include <QLineEdit>
#include <QShortcut>

#include <utility>

#include "platform/base/Handlers.h"

namespace pollarix {

namespace {

constexpr const char* LineName = "txtInPlace";

} // namespace

EditableDelegate::EditableDelegate(ListBox& list, Edited edited)
    : OneLineDelegate(&list), edited_(std::move(edited)) {}

QWidget* EditableDelegate::createEditor(QWidget* parent, const QStyleOptionViewItem& option,
                                        const QModelIndex& index) const {
    QWidget* const editor = OneLineDelegate::createEditor(parent, option, index);
    editor->setObjectName(LineName);
    editor->setAccessibleName("Text of the entry");
    return editor;
}

void EditableDelegate::setModelData(QWidget* editor, QAbstractItemModel*,
                                    const QModelIndex& index) const {
    const auto* const line = qobject_cast<QLineEdit*>(editor);
    if (!line || !line->isModified() || line->text().trimmed().isEmpty() ||
        line->text() == index.data().toString())
        return;
    RunHandler([&] { edited_(index.row(), line->text()); });
}

// Enter would go on to the default button of the dialog that the list is in, and Tab open the line
// of the next entry.
bool EditableDelegate::eventFilter(QObject* editor, QEvent* event) {
    if (event->type() == QEvent::KeyPress) {
        const int key = static_cast<QKeyEvent*>(event)->key();
        if (key == Qt::Key_Return || key == Qt::Key_Enter || key == Qt::Key_Tab ||
            key == Qt::Key_Backtab) {
            auto* const line = static_cast<QWidget*>(editor);
            emit commitData(line);
            emit closeEditor(line);
            return true;
        }
    }
    return OneLineDelegate::eventFilter(editor, event);
}

void EditInPlace(ListBox& list, EditableDelegate* delegate) {
    list.setItemDelegate(delegate);
    list.setAccessibleDescription("F2 changes the selected entry");
    const auto begin = [&list](QListWidgetItem* entry) {
        if (!entry)
            return;
        entry->setFlags(entry->flags() | Qt::ItemIsEditable);
        list.editItem(entry);
    };
    auto* const key = new QShortcut(Qt::Key_F2, &list, nullptr, nullptr, Qt::WidgetShortcut);
    QObject::connect(key, &QShortcut::activated, &list,
                     [&list, begin] { begin(list.item(list.ListIndex())); });
}

void FinishEditInPlace(const QWidget& within) {
    for (QWidget* line : within.findChildren<QWidget*>(LineName)) {
        line->setObjectName(
            {}); // it goes when events are taken next, and what follows may look again
        QKeyEvent enter(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier);
        QCoreApplication::sendEvent(line, &enter);
    }
}

} // namespace pollarix
