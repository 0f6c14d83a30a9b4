// What lists and trees have alike: one entry is selected, by the button's press or a key and not by
// dragging, and whenever the user selects one, the current one too, the view's click is raised.
#pragma once

#include <QItemSelectionModel>
#include <QKeyEvent>
#include <QMouseEvent>

#include <utility>

#include "platform/controls/OneLineDelegate.h"

namespace pollarix {

// What a view's own selection command may do for a user's event: the button's press selects, its
// release never does, and nothing takes the one selection away.
QItemSelectionModel::SelectionFlags UserSelection(QItemSelectionModel::SelectionFlags command,
                                                  const QEvent* event);

// Whether the event that a view asks a selection command for is the user's press on an entry: the
// second of two quick clicks on different entries comes as a double click.
bool IsPress(const QEvent* event);

// View is a QListWidget or QTreeWidget.
template <class View> class EntryView : public View {
  protected:
    explicit EntryView(QWidget* parent) : View(parent) {
        this->setItemDelegate(new OneLineDelegate(this));
        this->setSelectionMode(View::SingleSelection);
        this->setEditTriggers(View::NoEditTriggers);
        this->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        this->setTextElideMode(Qt::ElideRight);
        this->setTabKeyNavigation(false);
    }

    // The user's, in a handler of its own.
    virtual void RaiseClick() = 0;

    // An invalid index for none.
    QModelIndex Selected() const {
        const QModelIndexList selected = this->selectionModel()->selectedIndexes();
        return selected.isEmpty() ? QModelIndex() : selected.first();
    }

    void keyPressEvent(QKeyEvent* event) override {
        const QModelIndex before = Selected();
        // The view makes its first entry current when it takes the focus; with nothing selected the
        // first arrow key shall select that entry and not the one below.
        if (!before.isValid())
            this->selectionModel()->clearCurrentIndex();
        View::keyPressEvent(event);
        if (Selected() != before)
            RaiseClick();
    }

    // The click is raised with the press, right after the selection has moved: what is shown beside
    // the view is never that of another entry than the selected one, however long the button is
    // held. Whatever had the focus has lost it by then, with the old entry still selected.
    void mousePressEvent(QMouseEvent* event) override {
        if (event->button() != Qt::LeftButton) {
            event->ignore();
            return;
        }
        pressed_ = false;
        View::mousePressEvent(event);
        if (std::exchange(pressed_, false))
            RaiseClick();
    }

    void mouseMoveEvent(QMouseEvent* event) override {
        // Dragging over the entries selects none of them, so that each selection has its click.
        if (event->buttons() == Qt::NoButton)
            View::mouseMoveEvent(event);
    }

    QItemSelectionModel::SelectionFlags
    selectionCommand(const QModelIndex& index, const QEvent* event = nullptr) const override {
        if (IsPress(event) && index.isValid())
            pressed_ = true;
        return UserSelection(View::selectionCommand(index, event), event);
    }

  private:
    mutable bool pressed_ = false; // an entry, by the press under way
};

} // namespace pollarix
