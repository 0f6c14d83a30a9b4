// A list of texts with a number beside each, tied to lists of the program by position.
#pragma once

#include <QListWidget>

#include <cstdint>
#include <functional>

#include "platform/controls/EntryView.h"

namespace pollarix {

class ListBox : public EntryView<QListWidget> {
    Q_OBJECT
  public:
    explicit ListBox(QWidget* parent = nullptr);

    void AddItem(const QString& text); // at the end, ItemData 0
    int NewIndex() const;              // position of the last added entry, -1 after a removal
    // Removes the entry. Afterwards nothing is selected and no click is raised. Throws
    // InvalidArgument for a bad index, as List, SetList, ItemData and SetItemData do.
    void RemoveItem(int index);
    void Clear();
    int ListCount() const;
    QString List(int index) const;
    void SetList(int index, const QString& text);
    std::int64_t ItemData(int index) const;
    void SetItemData(int index, std::int64_t data);

    int ListIndex() const; // -1 for none
    // -1 to ListCount - 1, else InvalidArgument. Raises Click, in the call.
    void SetListIndex(int index);

    // The user selected an entry by mouse or key, or code set ListIndex. A failure in it reaches
    // the code that set ListIndex; a user's click shows it.
    std::function<void()> Click;

  protected:
    void RaiseClick() override;

  private:
    QListWidgetItem& Entry(int index) const;

    int newIndex_ = -1;
};

} // namespace pollarix
