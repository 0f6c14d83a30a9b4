// The window that lists what the check of the survey has found, each row leading to its question.
// Not modal; stands beside the main window, and checks anew whenever one comes back to it.
#pragma once

#include <QWidget>

#include <functional>
#include <vector>

#include "document/ApplicationState.h"
#include "document/SurveyCheck.h"

class QLabel;
class QPushButton;

namespace pollarix {

class Grid;

// What the check finds in the open survey, with the scales of its file. Throws what the database
// throws.
std::vector<Finding> CheckOpenSurvey(ApplicationState& state);

class frmCheckSurvey : public QWidget {
    Q_OBJECT
  public:
    // Shows nothing until ShowFindings.
    frmCheckSurvey(ApplicationState& state, QWidget* parent);

    // Shows a question in the main window, at one of its responses (from 1) or at none (0); set by
    // that window. "activate" asks for the keyboard as well.
    std::function<void(const QString& key, int response, bool activate)> GoTo;

    // Checks the survey and shows the window. Throws what the database throws.
    void ShowFindings();

    void cmdGoTo_Click();
    void cmdCheckAgain_Click();

  protected:
    void changeEvent(QEvent* event) override;

  private:
    void BuildControls();
    void Check();
    void FillGrid();
    void ShowFinding();
    void Go(bool activate);
    const Finding* Current() const; // none without a selected row

    ApplicationState& state_;
    std::vector<Finding> findings_;

    QLabel* lblCount_;
    Grid* gFindings_;
    QLabel* lblFinding_;
    QPushButton* cmdGoTo_;
};

} // namespace pollarix
