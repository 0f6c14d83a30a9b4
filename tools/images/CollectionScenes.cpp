// The Data Collection screen, and manual entry of an answer to each kind of question.
#include <QLabel>

#include <stdexcept>

#include "images/Scene.h"
#include "images/Studio.h"

namespace pollarix::images {

namespace {

void ShowScreen(Studio& studio, const QSize& size) {
    studio.StartWithSample(size);
    studio.Menu("mnuViewDataCollection");
    studio.Choose("cboDCExampleQuestion", "What did you like most?");
}

QImage Screen(Studio& studio, const QSize& size) {
    ShowScreen(studio, size);
    return studio.Picture();
}

// The page with this question, of the answers of one who came for the first time.
QImage Entry(Studio& studio, const QString& question) {
    ShowScreen(studio, Small);
    studio.SelectRow("gRespondents", "The old town model");
    return studio.PictureOfDialog(
        [&] { studio.Click("cmdEditResponse"); }, "frmManualResponse",
        [&](QWidget& form) {
            auto& shown = studio.Find<QLabel>("lblDCQuestion", &form);
            for (int pages = 0; !shown.text().contains(question); ++pages) {
                if (pages == 20)
                    throw std::runtime_error("no page asks: " + question.toStdString());
                studio.Click("cmdDCAnswersNext", &form);
            }
            form.resize(680, 340);
        });
}

QImage DeleteQuestion(Studio& studio) {
    ShowScreen(studio, Small);
    studio.Boxes().boxesToShow = 1;
    return studio.PictureOfDialog([&] { studio.Click("cmdDeleteResponse"); }, "QMessageBox");
}

// A table of a foreign program, some of whose columns are known by their titles.
QImage Import(Studio& studio, const QSize& size) {
    ShowScreen(studio, Small);
    QFile table(studio.State().directories.InUser("visitors.csv"));
    if (!table.open(QIODevice::WriteOnly))
        throw std::runtime_error("no table can be written");
    table.write("No.;Was this your first visit to the museum?;How did you hear about the "
                "museum?;Who did you come with?;"
                "What did you like most?;Remarks\n"
                "1;Yes;Website, School;Alone;The ships in bottles;paid in cash\n"
                "2;No;Poster or newspaper;With children;The tower clock;\n"
                "3;Perhaps;Website;With a dog;\"Friendly guides; short queue\";group of 12\n");
    table.close();
    studio.Boxes().open = table.fileName();
    return studio.PictureOfDialog([&] { studio.Menu("mnuDataCollectionImport"); },
                                  "frmImportAnswers",
                                  [&](QWidget& form) {
                                      form.resize(size);
                                      studio.Boxes().answers = {MsgAnswer::Ok};
                                      studio.Click("cmdCheck", &form);
                                  });
}

} // namespace

std::vector<Scene> CollectionScenes() {
    const auto entry = [](const char* question) {
        return [question](Studio& studio) { return Entry(studio, question); };
    };
    return {
        {"collection", "Data Collection screen",
         [](Studio& studio) { return Screen(studio, Small); }},
        {"collection-large", "Data Collection screen, large window",
         [](Studio& studio) { return Screen(studio, Large); }},
        {"entry-instruction", "Manual entry: an instruction text", entry("Thank you for visiting")},
        {"entry-radio", "Manual entry: a single response", entry("first visit")},
        {"entry-check", "Manual entry: many responses", entry("How did you hear")},
        {"entry-matrix", "Manual entry: a question matrix", entry("How would you rate")},
        {"entry-open-ended", "Manual entry: an open ended question",
         entry("What did you like most")},
        {"import", "Import Answers: columns, questions, and what can't be matched",
         [](Studio& studio) {
             return Import(studio, {760, 560});
         }},
        {"import-large", "Import Answers in a large window",
         [](Studio& studio) {
             return Import(studio, {1400, 900});
         }},
        {"delete-respondent", "Question before a respondent is deleted", DeleteQuestion},
    };
}

} // namespace pollarix::images
