// The Design screen with each kind of question, and the dialogs that it opens.
#include <QLineEdit>
#include <QTest>

#include "images/Scene.h"
#include "images/Studio.h"

namespace pollarix::images {

namespace {

struct Kind {
    const char* name;
    const char* node; // of the sample's tree
    const char* shows;
};

constexpr Kind Kinds[] = {
    {"open-ended", "What did you like most?", "an open ended question"},
    {"check", "How did you hear", "a question with many responses"},
    {"radio", "Was this your first visit", "a question with a single response"},
    {"matrix", "How would you rate", "a question matrix"},
    {"instruction", "Thank you for visiting", "an instruction text"},
};

QImage Question(Studio& studio, const Kind& kind, const QSize& size) {
    studio.StartWithSample(size);
    studio.SelectNode("tvTreeView", kind.node);
    return studio.Picture();
}

// A category is open, and one of its questions selected.
void OpenLibrary(Studio& studio) {
    studio.Start(Small);
    auto& tree = studio.Find<QWidget>("tvTreeLibrary");
    studio.SelectNode("tvTreeLibrary", "Customer");
    QTest::keyClick(&tree, Qt::Key_Right);
    QTest::keyClick(&tree, Qt::Key_Down);
}

// The panel for the answers alone.
QImage Answers(Studio& studio, const char* node, const char* panel) {
    studio.StartWithSample(Small);
    studio.SelectNode("tvTreeView", node);
    return studio.PictureOfPart(panel);
}

QImage Library(Studio& studio) {
    OpenLibrary(studio);
    return studio.PictureOfPart("picLibraryView");
}

QImage LibraryQuestion(Studio& studio) {
    OpenLibrary(studio);
    studio.Click("cmdLibraryAdd");
    return studio.Picture();
}

QImage Logic(Studio& studio) {
    studio.StartWithSample(Small);
    studio.SelectNode("tvTreeView", "Was this your first visit");
    studio.SelectEntry("lstCheckResponses", "Yes");
    return studio.PictureOfDialog([&] { studio.Click("cmdRadioLogic"); }, "frmLogic");
}

QImage MatrixDefine(Studio& studio) {
    studio.StartWithSample(Small);
    studio.SelectNode("tvTreeView", "How would you rate");
    return studio.PictureOfDialog([&] { studio.Click("cmdMatrixDefine"); }, "frmMatrixDefine");
}

QImage MatrixAdd(Studio& studio) {
    studio.StartWithSample(Small);
    studio.SelectNode("tvTreeView", "How would you rate");
    QImage picture;
    studio.Walk([&] { studio.Click("cmdMatrixDefine"); },
                {{"frmMatrixDefine", [&](QWidget& define) { studio.Click("cmdOK", &define); }},
                 {"frmMatrixAdd", [&](QWidget& add) {
                      for (const char* point : {"Daily", "Weekly", "Monthly", "Never"}) {
                          studio.Type("txtName", point, &add);
                          studio.Click("cmdAdd", &add);
                      }
                      picture = studio.PictureOf(add);
                  }}});
    return picture;
}

QImage Preview(Studio& studio) {
    studio.StartWithSample(Small);
    studio.SelectNode("tvTreeView", "How would you rate");
    return studio.PictureOfDialog([&] { studio.Menu("mnuDesignPreviewFromHere"); }, "frmPreview");
}

// The sample with a few mistakes in it.
QImage CheckSurvey(Studio& studio) {
    studio.StartWithSample(Small);
    studio.SelectNode("tvTreeView", "Was this your first visit");
    for (const char* response : {"Yes", "\u2192 last page"}) {
        studio.Find<QLineEdit>("txtCheckResponse").setText(response);
        studio.Click("cmdCheckAdd");
    }
    studio.Menu("mnuDesignAddMatrixQuestion");
    studio.Type("txtQ", "How often do you come for");
    studio.Menu("mnuDesignAddRadioQuestion");
    studio.Menu("mnuDesignCheck");
    return studio.PictureOf(studio.Find<QWidget>("frmCheckSurvey"));
}

QImage SaveQuestion(Studio& studio) {
    studio.Start(Small);
    studio.Type("txtQ", "What do you think of our opening hours?");
    studio.Boxes().boxesToShow = 1;
    return studio.PictureOfDialog([&] { studio.Menu("mnuNew"); }, "QMessageBox");
}

} // namespace

std::vector<Scene> DesignScenes() {
    std::vector<Scene> scenes;
    for (const Kind& kind : Kinds) {
        const QString name = QString("design-") + kind.name;
        const QString shows = QString("Design screen with ") + kind.shows;
        scenes.push_back(
            {name, shows, [kind](Studio& studio) { return Question(studio, kind, Small); }});
        scenes.push_back({name + "-large", shows + ", large window",
                          [kind](Studio& studio) { return Question(studio, kind, Large); }});
    }
    scenes.push_back({"responses", "Panel for responses", [](Studio& studio) {
                          return Answers(studio, "How did you hear", "picCheck");
                      }});
    scenes.push_back({"matrix", "Panel for sub questions and the scale", [](Studio& studio) {
                          return Answers(studio, "How would you rate", "picMatrix");
                      }});
    scenes.push_back({"library", "Question library with an open category", Library});
    scenes.push_back({"design-library", "A question added from the library", LibraryQuestion});
    scenes.push_back({"logic", "Dialog that gives a response its jump", Logic});
    scenes.push_back({"matrix-define", "Dialog that lists the answer scales", MatrixDefine});
    scenes.push_back({"matrix-add", "Dialog that makes an answer scale", MatrixAdd});
    scenes.push_back({"preview", "A page of the preview", Preview});
    scenes.push_back({"check-survey", "Window that lists what the check has found", CheckSurvey});
    scenes.push_back({"save-question", "Question before changes are lost", SaveQuestion});
    return scenes;
}

} // namespace pollarix::images
