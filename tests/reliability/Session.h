// The program's main window over a survey of its own, and a user in it who does each of the actions
// that write. What befalls the disk or the process meanwhile is the business of the tests.
#pragma once

#include <functional>

#include "shell/MainWindow.h"

namespace pollarix::test {

enum class Action {
    Save,
    SaveAs,
    Import,
    AddRespondent,
    TurnPage,
    AddScale,
    DeleteRespondent,
    Export,
    Table,
    Report,
    Form
};
inline constexpr Action Actions[] = {Action::Save,
                                     Action::SaveAs,
                                     Action::Import,
                                     Action::AddRespondent,
                                     Action::TurnPage,
                                     Action::AddScale,
                                     Action::DeleteRespondent,
                                     Action::Export,
                                     Action::Table,
                                     Action::Report,
                                     Action::Form};

std::string NameOf(Action action);

// These write the survey, the others a file beside it.
inline bool WritesTheSurvey(Action action) {
    return action < Action::Export;
}

class Session : public UsedWindow {
  public:
    // With a survey of three questions and eight respondents in `directory`, which is made, and
    // with that survey open.
    explicit Session(const QString& directory);
    ~Session();

    // Leads the user to where the action can be done, and calls `body` there.
    void Around(Action action, const std::function<void()>& body);
    // Does it, onto the target where that is asked for.
    void Act(Action action);
    // The messages of an action that goes well.
    static QStringList Told(Action action);

    ApplicationState& state = program.state;
    QString survey, target;
    QWidget* dialog = nullptr; // in which the action is done
    QString typed;             // last, as an answer
};

} // namespace pollarix::test
