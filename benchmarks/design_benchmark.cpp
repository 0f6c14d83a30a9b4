// The Design screen with surveys of many questions: opened and saved, typed in, added to, moved
// about and deleted from. One of 1,000 questions with 20 responses each; the others, to see how the
// costs grow, have three responses a question.
#include <QAbstractButton>
#include <QMainWindow>
#include <QTemporaryDir>
#include <QTest>

#include <benchmark/benchmark.h>

#include <stdexcept>

#include "design/picDesign.h"
#include "document/SurveyDocument.h"
#include "generate_survey.h"
#include "platform/controls/RichTextBox.h"
#include "platform/controls/TreeView.h"
#include "platform/desktop/QtDialogs.h"

using namespace pollarix;

namespace {

struct Screen {
    explicit Screen(const benchmark::State& bench) {
        const int questions = static_cast<int>(bench.range(0));
        const QString path = folder.filePath("survey.plxs");
        benchmarks::GenerateQuestions(POLLARIX_DATA_DIR "/blank.mdb", path, questions,
                                      static_cast<int>(bench.range(1)));
        window.setCentralWidget(design);
        window.resize(1920, 1000);
        window.show();
        design->LayOut(24);
        document.DoOpen(path, true, 1);
        if (state.CurrentSurvey.QCount() != questions)
            throw std::runtime_error("the survey was not read");
    }

    // By hand, somewhere in the middle.
    void SelectMiddle() {
        const QString key = state.CurrentSurvey.GetQIndex(state.CurrentSurvey.QCount() / 2)->Key;
        design->SelectNode(key);
        design->tvTreeView_NodeClick(key);
        QCoreApplication::processEvents();
    }
    void Click(const char* button) {
        window.findChild<QAbstractButton*>(button)->click();
        QCoreApplication::processEvents();
    }

    QTemporaryDir folder;
    Settings settings{folder.filePath("settings")};
    QtDialogs dialogs;
    ApplicationState state{Directories{POLLARIX_DATA_DIR, folder.path()}, settings, dialogs};
    QMainWindow window;
    picDesign* design = new picDesign(state, &window);
    SurveyDocument document{state, *design};
};

void DesignOpen(benchmark::State& bench) {
    Screen screen(bench);
    const QString path = screen.state.CurrentFilename();
    for ([[maybe_unused]] const auto run : bench) {
        screen.document.DoClose();
        screen.document.DoOpen(path, true, 1);
        QCoreApplication::processEvents();
    }
}

// A save opens the survey again at its end.
void DesignSave(benchmark::State& bench) {
    Screen screen(bench);
    for ([[maybe_unused]] const auto run : bench) {
        screen.document.DoSave();
        QCoreApplication::processEvents();
    }
}

// Press and release, with all that follows of it up to the paint.
void DesignKey(benchmark::State& bench) {
    Screen screen(bench);
    screen.SelectMiddle();
    auto* const txtQ = screen.window.findChild<RichTextBox*>("txtQ");
    bool type = true;
    for ([[maybe_unused]] const auto run : bench) {
        QTest::keyClick(txtQ, type ? Qt::Key_A : Qt::Key_Backspace);
        QCoreApplication::processEvents();
        type = !type;
    }
}

void DesignAdd(benchmark::State& bench) {
    Screen screen(bench);
    for ([[maybe_unused]] const auto run : bench) {
        screen.design->mnuDesignAddCheckQuestion_Click();
        QCoreApplication::processEvents();
    }
}

void DesignMove(benchmark::State& bench) {
    Screen screen(bench);
    screen.SelectMiddle();
    bool up = true;
    for ([[maybe_unused]] const auto run : bench) {
        screen.Click(up ? "cmdUp" : "cmdDown");
        up = !up;
    }
}

void DesignDelete(benchmark::State& bench) {
    Screen screen(bench);
    for ([[maybe_unused]] const auto run : bench) {
        bench.PauseTiming();
        screen.SelectMiddle(); // the root inherits the selection
        bench.ResumeTiming();
        screen.Click("cmdDelete");
    }
}
void Sizes(benchmark::internal::Benchmark* measured) {
    measured->ArgNames({"", "responses"})->Args({1000, 20})->Unit(benchmark::kMillisecond);
    for (int questions = 125; questions <= 8000; questions *= 2)
        measured->Args({questions, 3});
}

BENCHMARK(DesignOpen)->Apply(Sizes);
BENCHMARK(DesignSave)->Apply(Sizes);
BENCHMARK(DesignKey)->Apply(Sizes);
BENCHMARK(DesignMove)->Apply(Sizes);
BENCHMARK(DesignAdd)->Apply(Sizes)->Iterations(20);
BENCHMARK(DesignDelete)->Apply(Sizes)->Iterations(20);

} // namespace
