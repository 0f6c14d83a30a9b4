// Lets the entries of a list be changed where they stand: F2 opens a line in the row, Enter or
// leaving it takes what it holds, Esc and a text of blanks leave the entry as it was. What becomes
// of the text is the list's owner's business.
#pragma once

#include <functional>

#include "platform/controls/ListBox.h"
#include "platform/controls/OneLineDelegate.h"

namespace pollarix {

class EditableDelegate : public OneLineDelegate {
  public:
    // The user has given the entry in a row another text. The list still has the old one.
    using Edited = std::function<void(int row, const QString& text)>;
    EditableDelegate(ListBox& list, Edited edited);

    QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem& option,
                          const QModelIndex& index) const override;
    void setModelData(QWidget* editor, QAbstractItemModel* model,
                      const QModelIndex& index) const override;

  protected:
    bool eventFilter(QObject* editor, QEvent* event) override;

  private:
    Edited edited_;
};

// Gives the list the delegate and the key.
void EditInPlace(ListBox& list, EditableDelegate* delegate);

// Takes what an open line within the widget holds, as Enter does: before what goes by the model and
// takes no focus away, a save or a menu's command.
void FinishEditInPlace(const QWidget& within);

} // namespace pollarix
