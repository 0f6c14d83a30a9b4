// The Design screen with a survey of 1,000 questions of five responses each: opened and saved,
// typed in, added to, moved about and deleted from. Opening and saving also at other sizes, to see
// how they grow.
#include <QAbstractButton>
#include <QFile>
#include <QMainWindow>
#include <QTemporaryDir>
#include <QTest>

#include <benchmark/benchmark.h>

#include <stdexcept>

#include "design/DesignViews.h"
#include "design/picDesign.h"
#include "document/SurveyDocument.h"
#include "platform/QtDialogs.h"
#include "platform/RichTextBox.h"
#include "platform/TreeView.h"

using namespace pollarix;

namespace {

constexpr int Questions = 1000;
constexpr int Responses = 5;

struct Screen {
    explicit Screen(int questions = Questions) {
        const QString path = folder.filePath("survey.plxs");
        QFile::copy(state.directories.InProgram("blank.mdb"), path);
        QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner);
        window.setCentralWidget(design);
        window.resize(1920, 1000);
        window.show();
        design->LayOut(24);
        state.SurveyConnection.Open(path);
        state.CurrentFilename = path;
        for (int i = 1; i <= questions; ++i)
            AddQuestion(i);
        document.DoSave();
        if (state.CurrentSurvey.QCount != questions)
            throw std::runtime_error("the survey was not read back");
    }

    void AddQuestion(int number) {
        RichText text = RichText::FromPlainText(
            QString("How satisfied are you with item %1 of our list?\nPlease be frank.")
                .arg(number));
        text.paragraphs[0].runs[0].format.bold = true;
        clsSurvey& survey = state.CurrentSurvey;
        const std::int32_t kinds[] = {kind::Check, kind::Radio, kind::Matrix};
        const QString key = survey.AddQ(WriteRichText(text), kinds[number % 3], -1, 2);
        for (int r = 1; r <= Responses; ++r)
            survey.GetQIndex(survey.QCount)->AddResponse(QString("Response %1").arg(r), -1, -1, "");
    }

    // By hand, somewhere in the middle.
    void SelectMiddle() {
        const QString key = state.CurrentSurvey.GetQIndex(Questions / 2)->Key;
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
    ApplicationState state{
        {QCoreApplication::applicationDirPath(), folder.path()}, settings, dialogs};
    QMainWindow window;
    picDesign* design = new picDesign(state, &window);
    test::DesignViews views{*design};
    SurveyDocument document{state, views};
};

void Open(benchmark::State& bench) {
    Screen screen(static_cast<int>(bench.range(0)));
    const QString path = screen.state.CurrentFilename;
    for (auto _ : bench) {
        screen.document.DoClose();
        screen.document.DoOpen(path, true, 1);
        QCoreApplication::processEvents();
    }
}
BENCHMARK(Open)->Arg(500)->Arg(Questions)->Arg(4000)->Unit(benchmark::kMillisecond);

// A save opens the survey again at its end.
void Save(benchmark::State& bench) {
    Screen screen(static_cast<int>(bench.range(0)));
    for (auto _ : bench) {
        screen.document.DoSave();
        QCoreApplication::processEvents();
    }
}
BENCHMARK(Save)->Arg(Questions)->Unit(benchmark::kMillisecond);

// Press and release, with all that follows of it up to the paint.
void Key(benchmark::State& bench) {
    Screen screen;
    screen.SelectMiddle();
    auto* const txtQ = screen.window.findChild<RichTextBox*>("txtQ");
    bool type = true;
    for (auto _ : bench) {
        QTest::keyClick(txtQ, type ? Qt::Key_A : Qt::Key_Backspace);
        QCoreApplication::processEvents();
        type = !type;
    }
}
BENCHMARK(Key)->Unit(benchmark::kMillisecond);

void Add(benchmark::State& bench) {
    Screen screen;
    for (auto _ : bench) {
        screen.design->mnuDesignAddCheckQuestion_Click();
        QCoreApplication::processEvents();
    }
}
BENCHMARK(Add)->Unit(benchmark::kMillisecond)->Iterations(200);

void Move(benchmark::State& bench) {
    Screen screen;
    screen.SelectMiddle();
    bool up = true;
    for (auto _ : bench) {
        screen.Click(up ? "cmdUp" : "cmdDown");
        up = !up;
    }
}
BENCHMARK(Move)->Unit(benchmark::kMillisecond);

void Delete(benchmark::State& bench) {
    Screen screen;
    screen.SelectMiddle();
    for (auto _ : bench)
        screen.Click("cmdDelete");
}
BENCHMARK(Delete)->Unit(benchmark::kMillisecond)->Iterations(200);

} // namespace
