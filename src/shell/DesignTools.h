// What joins the windows around a design with the screens of the main window: the check of the
// survey and Find lead to questions, and the pages for answers walk a design that is not saved. The
// windows themselves are the rooms' own.
#pragma once

#include <functional>

#include "document/ApplicationState.h"
#include "document/SurveySearch.h"

class QWidget;

namespace pollarix {

class frmCheckSurvey;
class frmFind;
class picDesign;

class DesignTools {
  public:
    // What of the window's screens these windows need.
    struct Screens {
        std::function<void()> showDesign;
        std::function<bool()> showAnswers; // whether a screen with answers shows
        // Selects the row of a question or response on the Analyze screen. False when another
        // screen shows, or there is no such row.
        std::function<bool(const FoundText& place)> showInSummary;
        // Selects a respondent, with the answer to a question as the sample; asks to save first.
        std::function<void(std::int64_t respondent, std::int64_t question)> showRespondent;
    };
    DesignTools(ApplicationState& state, picDesign& design, Screens screens, QWidget& window);

    void mnuDesignPreview_Click();         // from the first question on
    void mnuDesignPreviewFromHere_Click(); // from the one that is selected, if there is one
    void mnuDesignCheck_Click();

    void Find();     // Ctrl+F
    void FindNext(); // F3

    // To be asked before a survey is published: offers to look at the problems first, where the
    // check finds any. False when the user wants to; the window of the check shows then.
    bool MayPublish();

  private:
    frmCheckSurvey& CheckWindow();
    void Preview(int position);
    frmFind& FindWindow();
    bool GoToQuestion(const QString& key, int response, bool activate);
    bool GoToPlace(const FoundText& place, bool activate);
    void Activate(bool activate);

    ApplicationState& state_;
    picDesign& design_;
    Screens screens_;
    QWidget& window_;
    // Children of the window, made when they are first shown.
    frmCheckSurvey* check_ = nullptr;
    frmFind* find_ = nullptr;
};

} // namespace pollarix
