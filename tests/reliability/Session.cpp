#include "reliability/Session.h"

#include <QLineEdit>
#include <QPlainTextEdit>
#include <QTimer>

#include "platform/base/Handlers.h"
#include "platform/controls/RichTextBox.h"
#include "platform/files/Files.h"
#include "shell/MainBas.h"
#include "web/ResultsReader.h"

namespace pollarix::test {

std::string NameOf(Action action) {
    constexpr const char* names[] = {
        "Save",   "SaveAs", "Import", "AddRespondent", "TurnPage", "AddScale", "DeleteRespondent",
        "Export", "Table",  "Report", "Form"};
    return names[static_cast<int>(action)];
}

Session::Session(const QString& directory)
    : survey(directory + "/survey.plxs"), target(directory + "/target") {
    SetFailureReporter([this](const Failure& failure) {
        dialogs.MsgBox(FailureText(failure, state.CurrentFilename()), MsgIcon::Critical,
                       MsgButtons::Ok);
    });
    QDir().mkpath(directory);
    CopyFileOver(program.BlankSurvey("blank.plxs"), survey);
    RunSql(survey,
           {"INSERT INTO question (question, questionno, qtype, pos) VALUES ('Why?', '1', 0, 1), "
            "('Which?', '2', 1, 2), ('How?', '3', 3, 3)",
            "INSERT INTO response (questionid, name, pos, responseMatrixGroupID) VALUES "
            "(2, 'these', 1, 2), (2, 'those', 2, 2), (3, 'fast', 1, 11)"});
    WriteWholeFile(program.Path("results.txt"),
                   "<userresponse>\r\n<r><DatabaseID>1</DatabaseID><QuestionNo>1</QuestionNo>"
                   "<QType>0</QType><text>because</text></r>\r\n</userresponse>\r\n");
    WriteWholeFile(target, "old");
    Start();
    Open(survey);
    for (int i = 0; i < 8; ++i)
        DoLoadXML(state, program.Path("results.txt"));
    dialogs.TakeTexts();
}

Session::~Session() {
    DoEvents(); // a repaint that failed is told a little later
}

void Session::Around(Action action, const std::function<void()>& body) {
    const auto in = [&](QWidget& shown) {
        dialog = &shown;
        body();
    };
    switch (action) {
    case Action::Save:
    case Action::SaveAs: {
        // A question is changed, one is added and one goes.
        auto* const txtQ = Find<RichTextBox>("txtQ");
        txtQ->setFocus();
        QTest::keyClicks(txtQ, "x");
        Press("cmdDelete");
        Menu("mnuDesignAddOpenEndedQuestion");
        body();
        break;
    }
    case Action::TurnPage:
        Menu("mnuViewDataCollection");
        user.tasks["frmManualResponse"] = in;
        Press("cmdEditResponse");
        break;
    case Action::AddScale:
        user.tasks["frmMatrixDefine"] = [&](QWidget& define) {
            QTimer::singleShot(0, &define, [&] {
                QWidget* const add = QApplication::activeModalWidget();
                QTest::keyClicks(Find<QLineEdit>("txtName", add), "Seldom");
                Press("cmdAdd", add);
                in(*add);
                add->close();
            });
            Press("cmdOK", &define);
        };
        Press("cmdMatrixDefine");
        break;
    case Action::AddRespondent:
    case Action::DeleteRespondent:
        Menu("mnuViewDataCollection");
        body();
        break;
    default:
        body();
    }
}

void Session::Act(Action action) {
    dialogs.fileNames = {{target, action == Action::Table ? 1 : 0}};
    dialogs.answers = {action == Action::DeleteRespondent ? MsgAnswer::Yes : MsgAnswer::No};
    switch (action) {
    case Action::Save:
        Menu("mnuFileSave");
        break;
    case Action::SaveAs:
        Menu("mnuFileSaveAs");
        break;
    case Action::Import:
        RunHandler([this] { DoLoadXML(state, program.Path("results.txt")); });
        break;
    case Action::AddRespondent:
        Press("cmdCreateResponse");
        break;
    case Action::TurnPage:
        typed += "so ";
        Find<QPlainTextEdit>("txtDCSimpleResponse", dialog)->setPlainText(typed);
        Press("cmdDCAnswersNext", dialog);
        break;
    case Action::AddScale:
        Press("cmdOK", dialog);
        break;
    case Action::DeleteRespondent:
        Press("cmdDeleteResponse");
        break;
    case Action::Export:
    case Action::Table:
        Menu("mnuFileExport");
        break;
    case Action::Report:
        Menu("mnuAnalyseDetail");
        break;
    case Action::Form:
        Menu("mnuDataCollectionPaperSurvey");
        break;
    }
}

QStringList Session::Told(Action action) {
    switch (action) {
    case Action::Import:
        return {"Successfully imported 1 respondent(s)."};
    case Action::DeleteRespondent:
        return {"Delete Respondent? This will delete all responses provided by this Respondent."};
    case Action::Report:
        return {"View detailed report now?"};
    case Action::Form:
        return {"View paper based survey now?"};
    default:
        return {};
    }
}

} // namespace pollarix::test
