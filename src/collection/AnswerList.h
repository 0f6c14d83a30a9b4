// The answers of a check or radio page, one below the other: check boxes or radio buttons whose
// texts are wrapped to the width there is. Which answers a question has, and which of them are
// chosen, is the caller's business.
#pragma once

#include <QScrollArea>

#include <cstdint>
#include <vector>

class QAbstractButton;
class QButtonGroup;
class QVBoxLayout;

namespace pollarix {

class AnswerList : public QScrollArea {
    Q_OBJECT
  public:
    enum class Kind { Check, Radio };

    // The buttons are named `buttonName`(0), (1) ... Button 0 always exists.
    AnswerList(Kind kind, QString buttonName, QWidget* parent);

    // Unloads all buttons but 0, which goes off and is hidden.
    void Clear();
    // Appends an answer that is off, as button 0 first; gives its number.
    int Add(const QString& text, std::int64_t tag);

    // Number of the last button.
    int UBound() const { return static_cast<int>(buttons_.size()) - 1; }
    // False while there are no answers.
    bool IsButtonVisible(int i) const;
    bool Value(int i) const;
    // Off is possible for radio buttons as well: nobody has to have chosen one.
    void SetValue(int i, bool on);
    std::int64_t Tag(int i) const { return tags_[static_cast<std::size_t>(i)]; }
    void FocusButton(int i);
    // The button that the Tab key would come to: the chosen one of radio buttons, else the first.
    int EntryButton() const;
    // Scrolls to the first answer that is on, as soon as the answers have their places.
    void ShowFirstChosen();

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    QAbstractButton* Button(int i) const { return buttons_[static_cast<std::size_t>(i)]; }
    void Load();
    void WrapTexts();
    int TextWidth() const;

    Kind kind_;
    QString buttonName_;
    QWidget* column_;
    QVBoxLayout* layout_;
    QButtonGroup* group_ = nullptr;
    std::vector<QAbstractButton*> buttons_;
    std::vector<QString> texts_;
    std::vector<std::int64_t> tags_; // response.id
};

} // namespace pollarix
