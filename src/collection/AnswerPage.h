// What the pages of manual entry have in common: a page shows what a question is answered with, and
// stores the answer. There is one class for each shape of answer. The walk from page to page, and
// which page has the focus, are the window's.
#pragma once

#include <QWidget>

#include <cstdint>

#include "platform/database/Database.h"

namespace pollarix {

// Whose answer to what stands where.
struct AnswerPlace {
    Connection& file;
    std::int64_t question;   // question.id
    std::int32_t respondent; // respondent.id
};

// What Enter means while the page shows; on the page's own controls as well.
enum class EnterKey { NewLine, NextPage, AsOnThePageBefore };

class AnswerPage : public QWidget {
    Q_OBJECT
  public:
    // -1 for no jump.
    static constexpr std::int16_t NoJump = -1;

    // Shows the answers on file. Throws what the database throws, and Overflow for a scale beyond
    // 16 bits; the page then stands as far as it got.
    virtual void ShowAnswer(const AnswerPlace& place) = 0;
    // Adds the rows of the answer that shows. Gives the question.id that it jumps to, or NoJump.
    // Throws what the database throws, and Overflow for a jump beyond 16 bits.
    virtual std::int16_t Store(const AnswerPlace& place) = 0;
    // False where there is nothing to answer with: then nothing is stored, and nothing takes the
    // focus.
    virtual bool HasAnswers() const = 0;
    // To where the keys start.
    virtual void TakeFocus() = 0;
    // Whether the page takes the focus from the buttons below it. A page that doesn't only takes
    // over what the page before had.
    virtual bool TakesFocusFromButtons() const { return true; }
    // A digit from 1 to 9 was typed outside of a text. True where it chose or took back an answer.
    virtual bool ChooseByDigit(int /*digit*/) { return false; }
    virtual EnterKey Enter() const = 0;

  protected:
    // A page that is its one control, hidden.
    AnswerPage(const char* name, QWidget* parent);
    void Fill(QWidget& control);
};

} // namespace pollarix
