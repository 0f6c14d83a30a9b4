#include "shell/DesignTools.h"

#include <QWidget>

#include <algorithm>
#include <utility>

#include "collection/frmPreview.h"
#include "design/frmCheckSurvey.h"
#include "design/picDesign.h"
#include "shell/frmFind.h"

namespace pollarix {

DesignTools::DesignTools(ApplicationState& state, picDesign& design, Screens screens,
                         QWidget& window)
    : state_(state), design_(design), screens_(std::move(screens)), window_(window) {}

frmCheckSurvey& DesignTools::CheckWindow() {
    if (!check_) {
        check_ = new frmCheckSurvey(state_, &window_);
        check_->GoTo = [this](const QString& key, int response, bool activate) {
            GoToQuestion(key, response, activate);
        };
    }
    return *check_;
}

void DesignTools::mnuDesignPreview_Click() {
    Preview(1);
}

void DesignTools::mnuDesignPreviewFromHere_Click() {
    const QString selected = design_.SelectedKey().value_or(QString());
    Preview(std::max<int>(1, state_.CurrentSurvey.GetQIndexFromKey(selected)));
}

void DesignTools::Preview(int position) {
    design_.CommitEdits();
    const SurveySnapshot design = SurveySnapshot::Take(state_.CurrentSurvey);
    if (design.questions.empty()) {
        state_.dialogs.MsgBox("There is no question to preview yet.", MsgIcon::Information);
        return;
    }
    SurveyPreview preview(state_, design);
    frmPreview(preview, position, &window_).exec();
}

void DesignTools::mnuDesignCheck_Click() {
    design_.CommitEdits();
    CheckWindow().ShowFindings();
}

bool DesignTools::MayPublish() {
    design_.CommitEdits();
    int problems = 0;
    try {
        problems = CountProblems(CheckOpenSurvey(state_));
    } catch (const Failure&) {
        // A file that can't be read is told by who publishes it.
    }
    if (problems == 0 ||
        state_.dialogs.MsgBox(
            QString("Check Survey finds %1 in this survey. Do you want to look at %2 before "
                    "publishing?")
                .arg(problems == 1 ? QString("a problem") : QString("%1 problems").arg(problems),
                     problems == 1 ? "it" : "them"),
            MsgIcon::Question, MsgButtons::YesNo) != MsgAnswer::Yes)
        return true;
    CheckWindow().ShowFindings();
    return false;
}

frmFind& DesignTools::FindWindow() {
    if (!find_) {
        find_ = new frmFind(state_, &window_);
        find_->GoTo = [this](const FoundText& place, bool activate) {
            return GoToPlace(place, activate);
        };
    }
    return *find_;
}

void DesignTools::Find() {
    design_.CommitEdits();
    FindWindow().ShowWindow(screens_.showAnswers());
}

void DesignTools::FindNext() {
    design_.CommitEdits();
    if (!find_ || !find_->FindNext())
        Find();
}

bool DesignTools::GoToPlace(const FoundText& place, bool activate) {
    if (place.kind == FoundText::Kind::Answer)
        screens_.showRespondent(place.respondentId, place.questionId);
    else if (!screens_.showInSummary(place))
        return GoToQuestion(place.key, place.response, activate);
    Activate(activate);
    return true;
}

bool DesignTools::GoToQuestion(const QString& key, int response, bool activate) {
    if (!state_.CurrentSurvey.GetQ(key))
        return false;
    screens_.showDesign();
    design_.GoToQuestion(key, response);
    Activate(activate);
    return true;
}

void DesignTools::Activate(bool activate) {
    if (!activate)
        return;
    window_.raise();
    window_.activateWindow();
}

} // namespace pollarix
