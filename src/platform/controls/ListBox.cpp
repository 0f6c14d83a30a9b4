#include "platform/controls/ListBox.h"

#include "platform/base/Failure.h"
#include "platform/base/Handlers.h"

namespace pollarix {

ListBox::ListBox(QWidget* parent) : EntryView(parent) {
    setUniformItemSizes(true);
}

QListWidgetItem& ListBox::Entry(int index) const {
    if (index < 0 || index >= count())
        throw Failure(failure::InvalidArgument);
    return *item(index);
}

void ListBox::AddItem(const QString& text) {
    addItem(text);
    newIndex_ = count() - 1;
}

int ListBox::NewIndex() const {
    return newIndex_;
}

void ListBox::RemoveItem(int index) {
    delete takeItem(row(&Entry(index)));
    newIndex_ = -1;
    // The view has moved the selection to a neighbour by itself.
    selectionModel()->clear();
}

void ListBox::Clear() {
    clear();
    newIndex_ = -1;
}

int ListBox::ListCount() const {
    return count();
}

QString ListBox::List(int index) const {
    return Entry(index).text();
}

void ListBox::SetList(int index, const QString& text) {
    Entry(index).setText(text);
}

std::int64_t ListBox::ItemData(int index) const {
    return Entry(index).data(Qt::UserRole).toLongLong();
}

void ListBox::SetItemData(int index, std::int64_t data) {
    Entry(index).setData(Qt::UserRole, static_cast<qlonglong>(data));
}

int ListBox::ListIndex() const {
    return Selected().row();
}

void ListBox::SetListIndex(int index) {
    if (index == -1) {
        selectionModel()->clear();
    } else {
        setCurrentItem(&Entry(index));
        scrollToItem(item(index));
    }
    if (Click)
        Click();
}

void ListBox::RaiseClick() {
    RunHandler(Click);
}

} // namespace pollarix
