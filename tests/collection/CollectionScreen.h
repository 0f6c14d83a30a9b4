// The Data Collection screen on a survey with every kind of question and both jump directions, and
// a hand that answers the pages of manual entry while its window waits.
#pragma once

#include <QAbstractButton>
#include <QApplication>
#include <QElapsedTimer>
#include <QHeaderView>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScreen>
#include <QSet>
#include <QTest>
#include <QTimer>

#include <gtest/gtest.h>

#include "collection/frmManualResponse.h"
#include "collection/picCollect.h"
#include "collection/picRespondentList.h"
#include "document/SurveyDocument.h"
#include "platform/base/Handlers.h"
#include "platform/controls/ComboBox.h"
#include "platform/controls/Grid.h"
#include "support/FakeViews.h"
#include "support/PrintQt.h"
#include "support/SurveyFiles.h"

namespace pollarix::test {

// The window of manual entry as its user has it.
struct EntryPage {
    frmManualResponse& window;

    template <class Control> Control& Find(const char* name) const {
        return *window.findChild<Control*>(name);
    }
    QString Question() const { return Find<QLabel>("lblDCQuestion").text(); }
    QString Place() const { return Find<QLabel>("lblPlace").accessibleName(); }
    Grid& Matrix() const { return Find<Grid>("gMatrix"); }
    QAbstractButton& Answer(const char* array, int i) const {
        return Find<QAbstractButton>(qPrintable(QString("%1(%2)").arg(array).arg(i)));
    }
    QString FocusedControl() const {
        return window.focusWidget() ? window.focusWidget()->objectName() : QString();
    }
    // How many colours stand on the screen where the answers are.
    qsizetype ColoursOfAnswers() const {
        const auto& answers = Find<QWidget>("picDCAnswers");
        const QImage image = window.screen()
                                 ->grabWindow(window.winId())
                                 .toImage()
                                 .copy(QRect(answers.mapTo(&window, QPoint()), answers.size()));
        QSet<QRgb> colours;
        for (int y = 0; y < image.height(); ++y)
            for (int x = 0; x < image.width(); ++x)
                colours << image.pixel(x, y);
        return colours.size();
    }
    // Numbers of the answers that are on.
    QList<int> Chosen(const char* array) const {
        QList<int> on;
        for (const auto* button : window.findChildren<QAbstractButton*>())
            if (button->objectName().startsWith(array) && button->isChecked())
                on << button->objectName().section('(', 1).chopped(1).toInt();
        return on;
    }

    void Click(QWidget& control) const {
        QTest::mouseClick(&control, Qt::LeftButton, {}, {8, control.height() / 2});
    }
    void Next() const { Click(Find<QPushButton>("cmdDCAnswersNext")); }
    void Previous() const { Click(Find<QPushButton>("cmdDCAnswersPrevious")); }
    void Cancel() const { Click(Find<QPushButton>("cmdDCAnswersCancel")); }
    void Choose(int i) const { Click(Answer("optDCRadio", i)); }
    void Tick(int i) const { Click(Answer("chkDCCheck", i)); }
    void ClickCell(int row, int col) const {
        const QRect cell = Matrix().visualRect(Matrix().model()->index(row - 1, col));
        QTest::mouseClick(Matrix().viewport(), Qt::LeftButton, {}, cell.center());
    }
    // Keys go to whatever has the focus.
    void Key(Qt::Key key) const { QTest::keyClick(window.focusWidget(), key); }
    void Type(const QString& text) const {
        for (const QChar letter : text)
            QTest::sendKeyEvent(QTest::Click, window.focusWidget(), Qt::Key_unknown,
                                QString(letter), Qt::NoModifier);
    }
};

class CollectionScreen : public testing::Test {
  protected:
    TestState program;
    ApplicationState& state = program.state;
    QueuedDialogs& dialogs = program.dialogs;
    FakeViews views;
    SurveyDocument document{state, views};
    std::vector<int> failures; // numbers of those that reached the top of a handler
    QString path;
    std::unique_ptr<picCollect> screen;

    CollectionScreen() {
        SetFailureReporter(
            [this](const Failure& failure) { failures.push_back(failure.Number()); });
    }
    ~CollectionScreen() override { SetFailureReporter({}); }

    void OpenBlank(const QString& name = "survey.plxs") {
        path = program.BlankSurvey(name);
        document.DoOpen(path, true, 1);
    }

    std::shared_ptr<clsQ> Add(std::int32_t kind, const QString& text, const QStringList& answers,
                              std::int16_t scale = 1) {
        const auto q = state.CurrentSurvey.GetQ(state.CurrentSurvey.AddQ(text, kind, -1, scale));
        for (const QString& answer : answers)
            q->AddResponse(answer, -1, -1, {});
        return q;
    }

    // Questions 1 to 7 in this order, responses 1 to 11, scale 11: Yes 46, No 47, Not sure 48.
    void MakeSurvey() {
        OpenBlank();
        Add(kind::Text, "Welcome", {});
        const auto first = Add(kind::Radio, "Your first visit?", {"Yes", "No", "Both", "Gone"});
        const auto why = Add(kind::OpenEnded, R"({\rtf1\ansi Why \b again\b0 ?})", {});
        Add(kind::Check, "Which days?", {"Friday", "Saturday & Sunday", "Holidays"});
        const auto matrix = Add(kind::Matrix, "Did you like", {"the food", "the staff"}, 11);
        const auto back = Add(kind::Radio, "Once more?", {"Go back", "Go on"});
        Add(kind::OpenEnded, "Anything else?", {});
        first->GetResponse(1)->LogicJumpToQuestionKey = matrix->Key; // forwards
        first->GetResponse(3)->LogicJumpToQuestionKey = first->Key;  // to itself
        back->GetResponse(1)->LogicJumpToQuestionKey = why->Key;     // backwards
        document.DoSave();
        RunOwnSql(state, {"UPDATE response SET LogicJumpToQuestionID = 999 WHERE name = 'Gone'"});
        ASSERT_EQ(dialogs.TakeTexts(), QStringList());
    }

    // As the start-up of the main window does it.
    picRespondentList& ShowScreen(QSize size = {1024, 620}) {
        screen = std::make_unique<picCollect>(state, nullptr);
        screen->resize(size);
        screen->LayOut(size.width(), size.height() + 110);
        picRespondentList& list = screen->RespondentList();
        list.ExampleQuestionEventsOn = true;
        list.PrepareGrid();
        list.WriteHeads();
        list.WidenGrid();
        screen->show();
        list.RefreshRespondentList(1, 0);
        return list;
    }

    Grid& List() { return *screen->findChild<Grid*>("gRespondents"); }
    ComboBox& Sample() { return *screen->findChild<ComboBox*>("cboDCExampleQuestion"); }
    QStringList Column(int col) {
        QStringList texts;
        for (int row = 1; row < List().Rows(); ++row)
            texts << List().TextMatrix(row, col);
        return texts;
    }
    void Press(const char* button) {
        QTest::mouseClick(screen->findChild<QPushButton*>(button), Qt::LeftButton);
    }

    // Opens the window with the button and hands it to the steps. A window that they leave open
    // fails the test and is closed.
    template <class Steps> void Enter(const char* button, const Steps& steps) {
        Await(steps);
        Press(button);
    }
    template <class Steps> void EnterByKey(QWidget& control, Qt::Key key, const Steps& steps) {
        Await(steps);
        QTest::keyClick(&control, key);
    }
    template <class Steps> void Await(const Steps& steps) {
        QTimer::singleShot(0, qApp, [&steps] {
            auto* window = qobject_cast<frmManualResponse*>(QApplication::activeModalWidget());
            ASSERT_NE(window, nullptr);
            ASSERT_TRUE(QTest::qWaitForWindowActive(window));
            steps(EntryPage{*window});
            EXPECT_FALSE(window->isVisible()) << "still open";
            window->reject();
        });
    }

    QStringList Answers() {
        return SqlRows(path,
                       "SELECT RespondentID, QuestionID, ResponseID, SimpleResponse, "
                       "ResponseMatrixID FROM respondent_responses ORDER BY id",
                       5);
    }
};

} // namespace pollarix::test
