// The pages of questions with responses to choose from: check boxes for many, radio buttons for
// one.
#pragma once

#include "collection/AnswerList.h"
#include "collection/AnswerPage.h"

namespace pollarix {

class ChoicePage : public AnswerPage {
    Q_OBJECT
  public:
    ChoicePage(AnswerList::Kind kind, const char* name, const char* buttons, QWidget* parent);

    void ShowAnswer(const AnswerPlace& place) override;
    // One row for each response that is on. Only a radio answer jumps.
    std::int16_t Store(const AnswerPlace& place) override;
    bool HasAnswers() const override { return list_->IsButtonVisible(0); }
    void TakeFocus() override { list_->FocusButton(list_->EntryButton()); }
    // A page of radio buttons leaves the focus where it is. Required.
    bool TakesFocusFromButtons() const override { return kind_ == AnswerList::Kind::Check; }
    // The response with this number: a radio button is chosen, a box ticked or cleared.
    bool ChooseByDigit(int digit) override;
    EnterKey Enter() const override { return EnterKey::NextPage; }

  private:
    AnswerList::Kind kind_;
    AnswerList* list_;
};

} // namespace pollarix
