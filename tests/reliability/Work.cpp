#include "reliability/Work.h"

#include <QAbstractButton>
#include <QApplication>
#include <QCryptographicHash>
#include <QDialog>
#include <QFileInfo>
#include <QPlainTextEdit>
#include <QTimer>

#include <gtest/gtest.h>

#include "analysis/PaperSurvey.h"
#include "collection/frmManualResponse.h"
#include "collection/picRespondentList.h"
#include "design/ResponseScales.h"
#include "platform/base/Handlers.h"
#include "platform/controls/Grid.h"
#include "platform/files/Files.h"
#include "support/Places.h"
#include "support/PrintQt.h"
#include "web/ResultsReader.h"

namespace pollarix::test {

namespace {

constexpr const char* Results = "results.txt";
constexpr const char* ManyResults = "many-results.txt";
constexpr std::int16_t Scale = 11; // of the template

void WriteResults(const QString& path, int respondents) {
    QByteArray text;
    for (int i = 0; i < respondents; ++i) {
        const QByteArray number = QByteArray::number(i);
        text += "<userresponse>\r\n"
                "<r><DatabaseID>1</DatabaseID><QuestionNo>1</QuestionNo><QType>0</QType>"
                "<text>Answer " +
                number +
                " from the web</text></r>\r\n"
                "<r><DatabaseID>2</DatabaseID><QuestionNo>2</QuestionNo><QType>1</QType>\r\n"
                "<Response>1</Response>\r\n<Response>2</Response>\r\n</r>\r\n"
                "<r><DatabaseID>4</DatabaseID><QuestionNo>4</QuestionNo><QType>3</QType>"
                "<Response>46,5</Response></r>\r\n"
                "</userresponse>\r\n";
    }
    WriteWholeFile(path, text);
}

// Every row of every table. The dates of respondents differ from run to run.
QByteArray DigestOf(Connection& file) {
    QCryptographicHash digest(QCryptographicHash::Sha1);
    const auto add = [&](const char* sql, int fields) {
        digest.addData(sql);
        for (Recordset row = file.Execute(sql); !row.AtEnd(); row.MoveNext())
            for (int field = 0; field < fields; ++field)
                digest.addData(
                    (row.IsNull(field) ? QString("|-") : '|' + row.Text(field)).toUtf8());
    };
    add("SELECT id, question, questionno, qtype, pos, Deleteme FROM question ORDER BY id", 6);
    add("SELECT id, questionid, name, pos, responseMatrixGroupID, LogicJumpToQuestionID, Deleteme "
        "FROM response ORDER BY id",
        7);
    add("SELECT id, source FROM respondent ORDER BY id", 2);
    add("SELECT id, RespondentID, QuestionID, ResponseID, SimpleResponse, ResponseMatrixID "
        "FROM respondent_responses ORDER BY id",
        6);
    add("SELECT id, name FROM responsematrixgroup ORDER BY id", 2);
    add("SELECT id, name, ResponseMatrixGroupID, pos FROM responsematrix ORDER BY id", 4);
    add("SELECT name, seq FROM sqlite_sequence ORDER BY name", 2);
    return digest.result().toHex();
}

QByteArray LookInto(const QString& path, ApplicationState& state, QueuedDialogs& dialogs) {
    if (!QFileInfo::exists(path))
        return {};
    FakeViews views;
    SurveyDocument document(state, views);
    document.DoOpen(path, false, 1);
    EXPECT_EQ(dialogs.TakeTexts(), QStringList());
    if (!state.SurveyConnection.IsOpen())
        return "not to be opened";
    EXPECT_EQ(state.SurveyConnection.Execute("PRAGMA integrity_check").Text(0), "ok");
    const QByteArray digest = DigestOf(state.SurveyConnection);
    document.DoClose();
    // One from before anything was changed means nothing to the database: it is empty or begins
    // with zeros.
    QFile journal(path + "-journal");
    EXPECT_TRUE(!journal.open(QIODevice::ReadOnly) || !journal.read(1).startsWith('\xd9'));
    return digest;
}

Directories PlacesIn(const QString& directory) {
    return {DataDirectory(), directory};
}

} // namespace

void Work::Prepare(const QString& directory) {
    CopyFileOver(DataFile("blank.mdb"), directory + '/' + First);
    WriteResults(directory + '/' + Results, 3);
    WriteResults(directory + '/' + ManyResults, 2000);
    Work work(directory, First);
    for (const std::int32_t kind :
         {kind::OpenEnded, kind::Check, kind::Radio, kind::Matrix, kind::Text})
        work.AddQuestion(kind);
    work.document_.DoSave();
    work.Do({Action::Import, 0});
}

Files Work::Look(const QString& directory) {
    Settings settings(directory + "/settings");
    QueuedDialogs dialogs;
    ApplicationState state(PlacesIn(directory), settings, dialogs);
    QFile form(directory + '/' + Form);
    QByteArray written;
    if (form.open(QIODevice::ReadOnly))
        written = QCryptographicHash::hash(form.readAll(), QCryptographicHash::Sha1).toHex();
    return {LookInto(directory + '/' + First, state, dialogs),
            LookInto(directory + '/' + Second, state, dialogs), written};
}

Work::Work(QString directory, const QString& name)
    : directory_(std::move(directory)), state_(PlacesIn(directory_), settings_, dialogs_) {
    SetFailureReporter([](const Failure& failure) { ADD_FAILURE() << failure.what(); });
    document_.DoOpen(Path(name), false, 1);
    EXPECT_EQ(dialogs_.TakeTexts(), QStringList());
}

Work::~Work() {
    document_.DoClose();
    SetFailureReporter({});
}

QString Work::Name() const {
    return QFileInfo(state_.CurrentFilename).fileName();
}

void Work::Do(const Step& step) {
    random_.seed(step.seed);
    Connection& file = state_.SurveyConnection;
    switch (step.action) {
    case Action::Save:
        Design();
        document_.mnuFileSave_Click();
        break;
    case Action::SaveAs:
        Design();
        dialogs_.fileNames = {{Path(Name() == First ? Second : First), 0}};
        document_.mnuFileSaveAs_Click();
        break;
    case Action::Import:
        DoLoadXML(state_, Path(Results));
        break;
    case Action::ImportMany:
        DoLoadXML(state_, Path(ManyResults));
        break;
    case Action::AddRespondent:
        InList("cmdCreateResponse", 1);
        break;
    case Action::TurnPage:
        TurnPage();
        break;
    case Action::DeleteRespondent:
        dialogs_.answers = {MsgAnswer::Yes};
        if (const std::int64_t count = file.Count("SELECT count(*) FROM respondent"); count > 1)
            InList("cmdDeleteResponse", 1 + static_cast<int>(Below(static_cast<unsigned>(count))));
        break;
    case Action::AddScale:
        AddResponseScale(file, {"Never", "Sometimes", QString("Always %1").arg(Below(100))});
        break;
    case Action::WriteForm:
        PaperSurvey::Write(file, Path(Form), [](std::int64_t, std::int64_t) {});
        break;
    }
    for (const ShownMessage& message : dialogs_.shown)
        EXPECT_NE(message.icon, MsgIcon::Critical) << message.text.toStdString();
    dialogs_.shown.clear();
}

void Work::AddQuestion(std::int32_t kind) {
    clsSurvey& survey = state_.CurrentSurvey;
    const QString text = QString("{\\rtf1\\ansi Question \\b %1\\b0  of kind %2}");
    const auto q = survey.GetQ(survey.AddQ(text.arg(Below(1000)).arg(kind), kind, -1, Scale));
    if (HasResponses(kind))
        for (std::uint32_t i = 0; i < 2 + Below(3); ++i)
            q->AddResponse(QString("Response %1").arg(Below(1000)), -1, -1, {});
    if (kind == kind::Radio)
        q->GetResponse(1)->LogicJumpToQuestionKey = q->Key;
}

void Work::Design() {
    clsSurvey& survey = state_.CurrentSurvey;
    for (std::uint32_t i = 0; i < 1 + Below(3); ++i)
        AddQuestion(static_cast<std::int32_t>(Below(5)));
    const auto any = [&] {
        return survey.GetQIndex(
            static_cast<std::int16_t>(1 + Below(static_cast<std::uint32_t>(survey.QCount))));
    };
    survey.UpdateQuestion(any()->Key, QString("It's changed to %1").arg(Below(1000)));
    survey.SwapQ(any()->Key, any()->Key);
    while (survey.QCount > 8)
        survey.DeleteQ(any()->Key);
    survey.ReorderQ_QuestionNos();
    state_.MarkFileChanged();
}

void Work::TurnPage() {
    ManualEntryState entry;
    entry.CurrentRespondentID = static_cast<std::int32_t>(
        state_.SurveyConnection.Count("SELECT coalesce(max(id), 0) FROM respondent"));
    frmManualResponse form(state_, entry, nullptr);
    entry.CurrentPosition = 1 + static_cast<std::int32_t>(
                                    Below(static_cast<std::uint32_t>(state_.CurrentSurvey.QCount)));
    form.RespondentAnswers_ShowQuestion();
    form.findChild<QPlainTextEdit*>("txtDCSimpleResponse")
        ->setPlainText(QString("Typed %1").arg(Below(1000)));
    for (const char* name : {"optDCRadio(0)", "chkDCCheck(0)", "chkDCCheck(1)"})
        if (auto* button = form.findChild<QAbstractButton*>(name))
            button->setChecked(true);
    form.findChild<QAbstractButton*>("cmdDCAnswersNext")->click();
}

// Presses a button beside the list of respondents. The window that one of them opens is closed.
void Work::InList(const char* button, int row) {
    picRespondentList list(state_, nullptr);
    list.show();
    list.RefreshRespondentList(row, 0);
    QTimer::singleShot(0, &list, [] {
        if (auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget()))
            dialog->reject();
    });
    list.findChild<QAbstractButton*>(button)->click();
}

} // namespace pollarix::test
