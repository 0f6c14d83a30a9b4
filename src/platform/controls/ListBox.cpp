#include "platform/controls/ListBox.h"

#include <QKeyEvent>
#include <QMouseEvent>

#include <utility>

#include "platform/base/Failure.h"
#include "platform/base/Handlers.h"
#include "platform/controls/OneLineDelegate.h"

namespace pollarix {

ListBox::ListBox(QWidget* parent) : QListWidget(parent) {
    setItemDelegate(new OneLineDelegate(this));
    setUniformItemSizes(true);
    setSelectionMode(SingleSelection);
    setEditTriggers(NoEditTriggers);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setTextElideMode(Qt::ElideRight);
    setTabKeyNavigation(false);
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
    const QModelIndexList selected = selectionModel()->selectedIndexes();
    return selected.isEmpty() ? -1 : selected.first().row();
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

void ListBox::keyPressEvent(QKeyEvent* event) {
    const int before = ListIndex();
    // The view makes its first entry current when it takes the focus; with nothing selected the
    // first arrow key shall select that entry and not the one below.
    if (before == -1)
        selectionModel()->clearCurrentIndex();
    QListWidget::keyPressEvent(event);
    if (ListIndex() != before)
        RunHandler(Click);
}

void ListBox::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) {
        event->ignore();
        return;
    }
    entryPressed_ = false;
    QListWidget::mousePressEvent(event);
    if (std::exchange(entryPressed_, false))
        RunHandler(Click);
}

void ListBox::mouseMoveEvent(QMouseEvent* event) {
    // Dragging over the entries selects none of them, so that each selection has its click.
    if (event->buttons() == Qt::NoButton)
        QListWidget::mouseMoveEvent(event);
}

QItemSelectionModel::SelectionFlags ListBox::selectionCommand(const QModelIndex& index,
                                                              const QEvent* event) const {
    if (IsPress(event) && index.isValid())
        entryPressed_ = true;
    return UserSelection(QListWidget::selectionCommand(index, event), event);
}

} // namespace pollarix
