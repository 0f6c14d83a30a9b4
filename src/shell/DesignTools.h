// What joins the windows around a design with the screens of the main window: the check of the
// survey leads to questions. The windows themselves are the rooms' own.
#pragma once

#include <functional>

#include "document/ApplicationState.h"

class QWidget;

namespace pollarix {

class frmCheckSurvey;
class picDesign;

class DesignTools {
  public:
    // `showDesign` brings the Design screen of the window to the front.
    DesignTools(ApplicationState& state, picDesign& design, std::function<void()> showDesign,
                QWidget& window);

    void mnuDesignCheck_Click();

    // To be asked before a survey is published: offers to look at the problems first, where the
    // check finds any. False when the user wants to; the window of the check shows then.
    bool MayPublish();

  private:
    frmCheckSurvey& CheckWindow();
    void GoToQuestion(const QString& key, int response, bool activate);

    ApplicationState& state_;
    picDesign& design_;
    std::function<void()> showDesign_;
    QWidget& window_;
    frmCheckSurvey* check_ = nullptr; // a child of the window
};

} // namespace pollarix
