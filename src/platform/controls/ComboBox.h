// A drop-down list of texts with a number beside each.
#pragma once

#include <QComboBox>

#include <cstdint>
#include <functional>

namespace pollarix {

class ComboBox : public QComboBox {
    Q_OBJECT
  public:
    explicit ComboBox(QWidget* parent = nullptr);

    void AddItem(const QString& text); // at the end, ItemData 0; selects nothing
    int NewIndex() const;
    void Clear(); // nothing is selected afterwards; raises nothing
    int ListCount() const;
    QString List(int index) const; // InvalidArgument for a bad index, as the others
    std::int64_t ItemData(int index) const;
    void SetItemData(int index, std::int64_t data);

    int ListIndex() const;        // -1 for none
    void SetListIndex(int index); // -1 to ListCount - 1, else InvalidArgument; raises Click
    QString Text() const;         // of the selected entry, "" for none

    std::function<void()> Click;     // as in ListBox
    std::function<void()> LostFocus; // as in RichTextBox

    void showPopup() override;

  protected:
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void initStyleOption(QStyleOptionComboBox* option) const override;

  private:
    void RequireEntry(int index) const;

    int newIndex_ = -1;
    bool raised_ = false;
};

// Selects the first entry whose ItemData equals the text read as a number, and stops; raises its
// Click. No match, or an empty box, leaves the selection as it was.
void SelectComboItemByData(ComboBox& box, const QString& data);

} // namespace pollarix
