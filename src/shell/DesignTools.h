// What joins the windows around a design with the screens of the main window: the check of the
// survey leads to questions, and the pages for answers walk a design that is not saved. The windows
// themselves are the rooms' own.
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

    void mnuDesignPreview_Click();         // from the first question on
    void mnuDesignPreviewFromHere_Click(); // from the one that is selected, if there is one
    void mnuDesignCheck_Click();

    // To be asked before a survey is published: offers to look at the problems first, where the
    // check finds any. False when the user wants to; the window of the check shows then.
    bool MayPublish();

  private:
    frmCheckSurvey& CheckWindow();
    void Preview(int position);
    void GoToQuestion(const QString& key, int response, bool activate);

    ApplicationState& state_;
    picDesign& design_;
    std::function<void()> showDesign_;
    QWidget& window_;
    frmCheckSurvey* check_ = nullptr; // a child of the window
};

} // namespace pollarix
