// The tutorial of the help, from the first question to the first graph: a survey about a cafeteria
// is made from nothing.
#include <QTest>

#include "images/Scene.h"
#include "images/Studio.h"

namespace pollarix::images {

namespace {

// The stations of the way, in their order.
enum class Station { FirstQuestion, Responses, Matrix, Jump, Answers, Respondents, Graph };

constexpr const char* SubQuestions[] = {"The choice of dishes", "The opening hours"};

void Add(Studio& studio, const char* box, const char* button,
         std::initializer_list<const char*> texts) {
    for (const char* text : texts) {
        studio.Type(box, text);
        studio.Click(button);
    }
}

void AddQuestion(Studio& studio, const char* text, const char* kind) {
    studio.Menu("mnuDesignAddOpenEndedQuestion");
    studio.Type("txtQ", text);
    studio.Click(kind);
}

QImage Jump(Studio& studio) {
    studio.SelectNode("tvTreeView", "How often do you eat");
    studio.SelectEntry("lstCheckResponses", "Never");
    QImage picture;
    studio.Walk([&] { studio.Click("cmdRadioLogic"); },
                {{"frmLogic", [&](QWidget& logic) {
                      studio.Choose("cboList", "What should we change?", &logic);
                      picture = studio.PictureOf(logic);
                      studio.Click("cmdOK", &logic);
                  }}});
    return picture;
}

// One respondent: how often he eats there, what he likes, a point of the scale for each sub
// question, and what should change. Who never eats there is led to the last page at once. Gives the
// picture of the matrix.
QImage Answer(Studio& studio, const QString& often, const QString& likes,
              std::initializer_list<int> points, const QString& words) {
    studio.Boxes().answers = {MsgAnswer::Ok}; // that the survey is completed
    QImage picture;
    const auto next = [&](QWidget& form) { studio.Click("cmdDCAnswersNext", &form); };
    studio.Walk([&] { studio.Click("cmdCreateResponse"); },
                {{"frmManualResponse", [&](QWidget& form) {
                      studio.ClickText(often, &form);
                      next(form);
                      if (!likes.isEmpty()) {
                          studio.ClickText(likes, &form);
                          next(form);
                          int row = 1;
                          for (const int point : points)
                              studio.SelectCell("gMatrix", row++, point, &form);
                          form.resize(780, 320);
                          picture = studio.PictureOf(form);
                          next(form);
                      }
                      studio.Type("txtDCSimpleResponse", words, &form);
                      next(form);
                  }}});
    return picture;
}

QImage AnswerAll(Studio& studio) {
    const QImage picture =
        Answer(studio, "Every day", "The food", {1, 2}, "More dishes without meat, please.");
    Answer(studio, "Never", {}, {}, "Open in the evening.");
    Answer(studio, "Once or twice a week", "The food", {2, 2}, "The queue at noon is long.");
    Answer(studio, "Every day", "The company", {1, 4}, "Nothing. I like it as it is.");
    Answer(studio, "Once or twice a week", "The food", {2, 3}, "Fresh fruit every day.");
    // Whenever the picture is taken.
    studio.State().SurveyConnection.Run(
        "UPDATE respondent SET submitteddate = '2024-05-06 12:0' || id || ':30.000'");
    return picture;
}

QImage Take(Studio& studio, Station station) {
    studio.Start(Small);
    studio.Type("txtQ", "How often do you eat in our cafeteria?");
    if (station == Station::FirstQuestion)
        return studio.Picture();
    studio.Click("optQType(2)");
    Add(studio, "txtCheckResponse", "cmdCheckAdd", {"Every day", "Once or twice a week", "Never"});
    if (station == Station::Responses)
        return studio.PictureOfPart("picQProperties");
    AddQuestion(studio, "What do you like about the cafeteria?", "optQType(1)");
    Add(studio, "txtCheckResponse", "cmdCheckAdd", {"The food", "The prices", "The company"});
    AddQuestion(studio, "How satisfied or dissatisfied are you with the following?", "optQType(4)");
    Add(studio, "txtMatrixResponse", "cmdMatrixAdd", {SubQuestions[0], SubQuestions[1]});
    studio.Choose("cmbMatrixResponses", "Very satisfied");
    if (station == Station::Matrix)
        return studio.PictureOfPart("picQProperties");
    AddQuestion(studio, "What should we change?", "optQType(0)");
    const QImage jump = Jump(studio);
    if (station == Station::Jump)
        return jump;
    studio.Boxes().saveAs = "cafeteria.plxs";
    studio.Menu("mnuFileSave");
    studio.Menu("mnuViewDataCollection");
    const QImage answers = AnswerAll(studio);
    if (station == Station::Answers)
        return answers;
    studio.Choose("cboDCExampleQuestion", "What should we change?");
    if (station == Station::Respondents)
        return studio.Picture();
    studio.Menu("mnuViewAnalyse");
    studio.SelectRow("gSummaryReport", "Every day");
    return studio.Picture();
}

} // namespace

std::vector<Scene> TutorialScenes() {
    const std::pair<const char*, const char*> stations[] = {
        {"first-question", "the first question is typed"},
        {"responses", "its responses are added"},
        {"matrix", "a matrix question with its scale"},
        {"jump", "an answer leads to the last question"},
        {"answers", "answers to the matrix are entered"},
        {"respondents", "five have answered"},
        {"graph", "the first graph"},
    };
    std::vector<Scene> scenes;
    int station = 0;
    for (const auto& [name, shows] : stations) {
        scenes.push_back({QString("tutorial-") + name, QString("Tutorial: ") + shows,
                          [at = Station(station)](Studio& studio) { return Take(studio, at); }});
        ++station;
    }
    return scenes;
}

} // namespace pollarix::images
