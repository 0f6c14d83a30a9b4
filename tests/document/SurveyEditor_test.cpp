// What the editor keeps of its operations: nothing of one that did nothing, and not more in all
// than it may.
#include <gtest/gtest.h>

#include "document/SurveyEditor.h"
#include "platform/base/Failure.h"
#include "support/PrintQt.h"
#include "support/SurveyFiles.h"

namespace pollarix::test {
namespace {

class Editing : public testing::Test, protected TestState, private EditorScreen {
  protected:
    clsQ& Q(std::int16_t i) { return *state.CurrentSurvey.GetQIndex(i); }
    QString Texts() {
        QStringList texts;
        for (const auto& q : SurveySnapshot::Take(state.CurrentSurvey).questions) {
            texts << q.Text;
            for (const auto& r : q.responses)
                texts.back() += '-' + r.Text;
        }
        return texts.join('|');
    }
    int StepsBack() {
        int steps = 0;
        while (editor_.Undo())
            ++steps;
        return steps;
    }
    SurveyEditor editor_{state, *this};

  private:
    std::vector<NodeLabel> NodeLabels() const override { return {}; }
    QString SelectedQuestionKey() const override { return {}; }
    void ShowState(const DesignState&) override {}
};

TEST_F(Editing, WhatFailsIsAStepAsFarAsItGot) {
    editor_.AddQuestion(kind::Check, 2);
    editor_.AddQuestion(kind::Radio, 2);
    editor_.Undo();
    state.MarkFileUnchanged();
    EXPECT_THROW(editor_.DeleteResponse(Q(1), 1), Failure);
    EXPECT_THROW(editor_.SwapResponses(Q(1), 1, 2), Failure);
    EXPECT_THROW(editor_.SetJump(Q(1), 1, "x"), Failure);
    EXPECT_FALSE(state.FileChanged());
    EXPECT_TRUE(editor_.Redo()) << "nothing came in between";
    EXPECT_EQ(StepsBack(), 2);

    editor_.AddQuestion(kind::Check, 2);
    for (int i = 1; i < 32767; ++i)
        Q(1).AddResponse("", -1, -1, "");
    state.History.Start(state.CurrentSurvey);
    state.MarkFileUnchanged();
    EXPECT_THROW(editor_.AddResponses(Q(1), {"fits", "does not"}), Failure);
    EXPECT_TRUE(state.FileChanged());
    EXPECT_THROW(editor_.AddResponses(Q(1), {"does not"}), Failure);
    EXPECT_EQ(StepsBack(), 1);
    EXPECT_EQ(Q(1).ResponsesCount(), 32766);
    EXPECT_FALSE(state.FileChanged()) << "which is what the file holds";
}

TEST_F(Editing, TheOldestStepsGoWhenThereAreTooMany) {
    editor_.AddQuestion(kind::OpenEnded, 2);
    editor_.AddQuestion(kind::OpenEnded, 2);
    constexpr int Most = DesignHistory::MostSteps;
    for (int i = 0; i < Most + 10; ++i)
        editor_.AddResponses(Q(1), {"a"});
    EXPECT_EQ(StepsBack(), Most);
    EXPECT_EQ(Q(1).ResponsesCount(), 10);
    while (editor_.Redo()) {
    }
    EXPECT_EQ(Q(1).ResponsesCount(), Most + 10);

    const QString text(1 << 20, 'x'); // of two bytes each
    const auto type = [&](int i) {
        editor_.EndOfTyping();
        editor_.SetText(Q(2), text + QString::number(i), SurveyEditor::Edit::Typed);
    };
    for (int i = 0; i < 100; ++i)
        type(i);
    const int kept = StepsBack();
    EXPECT_GT(kept, 20);
    EXPECT_LE(kept, DesignHistory::MostBytes >> 21);
    EXPECT_EQ(Q(2).Question, text + QString::number(99 - kept));
    editor_.SetText(Q(2), QString(40 << 20, 'x'), SurveyEditor::Edit::Typed);
    type(0);
    EXPECT_EQ(StepsBack(), 1) << "the last one stays, whatever it takes";
}

} // namespace
} // namespace pollarix::test
