// The page of a matrix: a grid of sub questions and points, with one choice in each row.
#pragma once

#include <functional>

#include "collection/AnswerPage.h"

class QKeyEvent;

namespace pollarix {

class Grid;

class MatrixPage : public AnswerPage {
    Q_OBJECT
  public:
    explicit MatrixPage(QWidget* parent);

    void ShowAnswer(const AnswerPlace& place) override;
    std::int16_t Store(const AnswerPlace& place) override; // one row for each chosen cell
    bool HasAnswers() const override;
    void TakeFocus() override;
    // The point with this number, for the sub question that is current; then the next one is. After
    // the last there is nothing left to choose.
    bool ChooseByDigit(int digit) override;
    EnterKey Enter() const override { return EnterKey::AsOnThePageBefore; }

    // Whether Enter turns the page now, and so chooses no cell; set by the window.
    std::function<bool()> EnterTurnsPage;
    // The last sub question was answered by digit; set by the window.
    std::function<void()> AnsweredLast;

  private:
    void FillGrid(const AnswerPlace& place, bool& shows);
    bool LoadRows(const AnswerPlace& place, std::int16_t& group, bool& shows);
    bool LoadPoints(const AnswerPlace& place, std::int16_t group);
    void LoadAnswers(const AnswerPlace& place);
    void ChooseFirstPoints();
    void AddHead(int row, int col, const QString& text);
    int ChosenCol(int row) const;

    void gMatrix_Click();
    void gMatrix_KeyDown(QKeyEvent& event);

    Grid* gMatrix_;
};

} // namespace pollarix
