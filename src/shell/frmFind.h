// The window that finds a text in questions, responses and answers, and leads from place to place.
// Not modal; where a place is shown is the main window's business.
#pragma once

#include <QWidget>

#include <functional>
#include <vector>

#include "document/ApplicationState.h"
#include "document/SurveySearch.h"

class QCheckBox;
class QLabel;
class QLineEdit;

namespace pollarix {

class Grid;

class frmFind : public QWidget {
    Q_OBJECT
  public:
    // Shows nothing until ShowWindow.
    frmFind(ApplicationState& state, QWidget* parent);

    // Shows a place in the main window, which takes the keyboard if "activate" asks for it; set by
    // that window. False when the question is not in the survey any more.
    std::function<bool(const FoundText& place, bool activate)> GoTo = [](const FoundText&, bool) {
        return true;
    };

    // Shows the window, with answers to be looked through or not.
    void ShowWindow(bool answers);

    // Leads to the next place, and behind the last to the first; looks for the text first, if that
    // was not done. False when there is no text yet.
    bool FindNext();

    void cmdFindNext_Click();
    void cmdFindPrevious_Click();

  protected:
    void keyPressEvent(QKeyEvent* event) override;

  private:
    void BuildControls();
    void Search();
    void FillGrid(bool more);
    void Step(int step);
    void Go(bool activate); // looks anew where the place is gone

    ApplicationState& state_;
    // What was looked for, and where; what is found belongs to it.
    QString sought_;
    bool inAnswers_ = false;
    int opening_ = 0; // of a survey
    std::vector<FoundText> found_;

    QLineEdit* txtFind_;
    QCheckBox* chkAnswers_;
    QLabel* lblFound_;
    Grid* gFound_;
};

} // namespace pollarix
