// The page of an open ended question: one box of text.
#pragma once

#include "collection/AnswerPage.h"

namespace pollarix {

class PlainTextBox;

class TextPage : public AnswerPage {
    Q_OBJECT
  public:
    explicit TextPage(QWidget* parent);

    void ShowAnswer(const AnswerPlace& place) override;
    std::int16_t Store(const AnswerPlace& place) override; // always one row, also of empty text
    bool HasAnswers() const override { return true; }
    void TakeFocus() override;
    EnterKey Enter() const override { return EnterKey::NewLine; }

  private:
    PlainTextBox* txtDCSimpleResponse_;
};

} // namespace pollarix
