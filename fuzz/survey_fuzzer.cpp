// A survey file from elsewhere, opened and used as the program does it: the model, the summary, the
// list of respondents, the exports and reports, the survey document, two pages of manual entry,
// then saved and opened again. Whatever the file holds, each of these ends in a failure that can be
// told, or works. The input is a database, or a script that damages a real survey.
#include <QDir>

#include <cstring>
#include <iterator>

#include "FuzzProgram.h"
#include "SurveyScript.h"
#include "analysis/DetailedReport.h"
#include "analysis/PaperSurvey.h"
#include "analysis/SummaryReport.h"
#include "analysis/SurveyExport.h"
#include "analysis/TableExport.h"
#include "collection/frmManualResponse.h"
#include "collection/picRespondentList.h"
#include "document/SurveyDocument.h"
#include "labelled/LabelledFile.h"
#include "platform/base/Handlers.h"
#include "support/FakeViews.h"
#include "web/SurveyXmlWriter.h"

using namespace pollarix;

namespace {

constexpr char DatabaseMark[] = "SQLite format 3";

// The screens that read the file when it is opened.
class Views : public test::FakeViews {
  public:
    explicit Views(ApplicationState& state) : state_(state), list_(state, nullptr) {
        list_.PrepareGrid();
        list_.WriteHeads();
        list_.show();
    }
    void Refresh() {
        SummaryReport report;
        AnswerCounts counts;
        counts.LookAt(state_.SurveyConnection);
        report.totals = counts.Totals();
        ReadSummary(state_.SurveyConnection, counts, 1, 0, report);
        list_.RefreshRespondentList(1, 0);
    }

  private:
    ApplicationState& state_;
    picRespondentList list_;
};

// True if the tables still check what is written to them.
bool MakeFile(const QString& path, const std::uint8_t* data, std::size_t size) {
    if (size >= sizeof DatabaseMark && std::memcmp(data, DatabaseMark, sizeof DatabaseMark) == 0) {
        fuzz::WriteFile(path, {data, static_cast<qsizetype>(size)});
        return false;
    }
    static const QByteArray bases[] = {fuzz::BaseSurvey(false), fuzz::BaseSurvey(true)};
    fuzz::Script script({data, size});
    const std::size_t base = script.Below(std::size(bases));
    fuzz::WriteFile(path, bases[base]);
    return fuzz::Damage(path, script) && base == 0;
}

// In one window for the whole run: making it takes longer than all the rest.
void EnterTwoPages(ApplicationState& state) {
    static ManualEntryState entry{.CurrentRespondentID = 1};
    static frmManualResponse window(state, entry, nullptr);
    for (const int position : {1, 4}) {
        entry.CurrentPosition = position;
        if (window.RespondentAnswers_ShowQuestion())
            window.ShowDCAnswer();
    }
}

void UseSurvey(fuzz::Program& program, const SurveyViews& views) {
    Connection& survey = program.state.SurveyConnection;
    const QString out = fuzz::Path("out");
    const ProgressStep step = [](std::int64_t, std::int64_t) {};
    const std::function<void()> uses[] = {
        [&] { CheckSummary(survey); },
        [&] { SurveyExport::Write(survey, out, step); },
        [&] { TableExport::Write(survey, out, step); },
        [&] { labelled::WriteSav(survey, out, {}, step); },
        [&] { labelled::WriteDta(survey, out, {}, step); },
        [&] { labelled::WriteXlsx(survey, out, {}, step); },
        [&] { labelled::WriteR(survey, out, {}, step); },
        [&] { labelled::WriteCodebook(survey, out, {}, step); },
        [&] { statistics::Answers answers(survey); },
        [&] { DetailedReport::Write(survey, out, step); },
        [&] { PaperSurvey::Write(survey, out, step); },
        [&] { DoSaveXML(program.state, views); },
        [&] { EnterTwoPages(program.state); },
    };
    for (const auto& use : uses)
        fuzz::NumberOf(use);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static fuzz::Program program;
    static Views views(program.state);
    SetFailureReporter([](const Failure&) {});

    const QString path = fuzz::Path("survey.plxs");
    const bool checked = MakeFile(path, data, size);
    ApplicationState& state = program.state;
    SurveyDocument document(state, views);
    document.Opened = [] { views.Refresh(); };
    program.dialogs.shown = 0;
    document.DoOpen(path, false, 1);
    const bool opened = program.dialogs.shown == 0;
    UseSurvey(program, views);

    const QStringList texts = views.Texts();
    const int number = fuzz::NumberOf([&] { document.DoSave(); });
    // A file whose rows obey its tables comes back as it was saved.
    if (checked && opened && number == 0)
        fuzz::Require(program.dialogs.shown == 0 && views.Texts() == texts,
                      "a survey comes back as it was saved");
    document.DoClose();
    state.CurrentSurvey.ClearAll();
    for (const char* beside : {"-journal", "-wal", "-shm"})
        QFile::remove(path + beside);
    return 0;
}
