// Hundreds of seeded sequences of edits by hand, against a plain picture of what they should give.
// The judge is the file, read after each save, which all that follows is then built on.
#include <QAbstractButton>

#include <random>

#include "design/DesignScreen.h"
#include "design/frmLogic.h"
#include "platform/richtext/RichText.h"

namespace pollarix::test {
namespace {

constexpr int Nowhere = -1;
const QStringList Texts = {"It's \"so\"", "<response.name>", "a\\b {c} & &d",
                           QString::fromUtf8("Ελληνικά عربي 日本語 🙂")};

struct Answer {
    QString text;
    int jump = Nowhere; // number of a question
    bool hasRow = false;
};
struct Question {
    int number; // its own for good, wherever it stands
    std::int32_t qType;
    QString text;
    std::vector<Answer> answers;
};

class RandomEdits : public DesignScreen {
  protected:
    int Below(std::size_t count) {
        return std::uniform_int_distribution<>(0, int(count) - 1)(dice_);
    }
    QString NewText() {
        return Texts[Below(Texts.size())] +
               (Below(50) == 0 ? QString(4000, 'x') : QString::number(dice_()));
    }
    const Question* Numbered(int number) {
        const auto at = std::find_if(survey_.begin(), survey_.end(),
                                     [&](const Question& q) { return q.number == number; });
        return at == survey_.end() ? nullptr : &*at;
    }

    void Step() {
        if (survey_.empty() || Below(5) == 0) {
            const std::int32_t qType = Below(2) == 0 ? kind::Radio : Below(5);
            survey_.push_back({++added_, qType, "", {}});
            Add(survey_.back().qType);
            survey_.back().text = NewText() + "\r\n" + NewText();
            WriteText(survey_.back().text);
            return;
        }
        const int at = Below(survey_.size());
        Question& q = survey_[at];
        ClickNode(at + 1);
        switch (Below(8)) {
        case 0:
            Press("cmdUp");
            if (at > 0)
                std::swap(q, survey_[at - 1]);
            break;
        case 1:
            Press("cmdDown");
            if (at + 1 < int(survey_.size()))
                std::swap(q, survey_[at + 1]);
            break;
        case 2:
            Press("cmdDelete");
            if (survey_.size() > 1)
                survey_.erase(survey_.begin() + at);
            dialogs.TakeTexts();
            break;
        case 3: {
            const int option = Below(5);
            Get<QAbstractButton>(qPrintable(QString("optQType(%1)").arg(option))).click();
            q.qType = option < 3 ? option : 7 - option;
            break;
        }
        default:
            if (HasResponses(q.qType))
                EditAnswers(q);
        }
    }

    void EditAnswers(Question& q) {
        const bool matrix = q.qType == kind::Matrix;
        const QString of = matrix ? "Matrix" : "Check";
        const auto name = [&](const char* form) { return QString(form).arg(of).toUtf8(); };
        const QByteArray list = name("lst%1Responses");
        for (int add = Below(3); add > 0; --add) {
            q.answers.push_back({NewText()});
            AddResponses(name("txt%1Response"), {q.answers.back().text});
        }
        if (q.answers.empty())
            return;
        std::size_t at = Below(q.answers.size());
        ClickEntry(list, int(at));
        if (Below(2) == 0) {
            const bool up = Below(2) == 0;
            Press(name(up ? "cmd%1Up" : "cmd%1Down"));
            const std::size_t to = up ? at - 1 : at + 1;
            if (to < q.answers.size()) {
                if (!matrix) // whose moves stay in the list
                    std::swap(q.answers[at], q.answers[to]);
                at = to;
            }
        }
        if (Below(3) == 0) {
            Press(matrix ? "cmdMatrixDelete" : "cdmCheckDelete");
            q.answers.erase(q.answers.begin() + long(at));
        } else if (q.qType == kind::Radio && Below(4) != 0) {
            const int target = Below(survey_.size() + 1);
            q.answers[at].jump = target == 0 ? Nowhere : survey_[target - 1].number;
            InDialog<frmLogic>([target](QWidget& dialog) {
                dialog.findChild<ComboBox*>("cboList")->SetListIndex(target);
                dialog.findChild<QAbstractButton*>("cmdOK")->click();
            });
            Press("cmdRadioLogic");
        }
    }

    void Save() {
        document_.DoSave();
        int inherited = Nowhere; // by a jump whose target is gone
        for (Question& q : survey_) {
            if (!HasResponses(q.qType))
                q.answers.clear();
            for (Answer& answer : q.answers) {
                const bool dead = answer.jump != Nowhere && !Numbered(answer.jump);
                if (answer.hasRow)
                    answer.jump = inherited = dead ? inherited : answer.jump;
                else if (dead)
                    answer.jump = Nowhere;
                answer.hasRow = true;
            }
        }
    }

    void Compare() {
        QStringList expected, rows;
        for (const Question& q : survey_) {
            expected << QString("%1 %2").arg(q.qType).arg(q.text);
            for (const Answer& answer : q.answers) {
                const Question* const to = Numbered(answer.jump);
                expected << answer.text + ">" + (to ? to->text : "");
            }
        }
        Recordset q = state.SurveyConnection.Execute("SELECT * FROM question ORDER BY pos");
        for (int pos = 1; !q.AtEnd(); q.MoveNext(), ++pos) {
            ASSERT_EQ(q.Integer("pos"), pos);
            rows << q.Text("qtype") + " " + PlainTextOf(q.Text("question"));
            for (Recordset r = state.SurveyConnection.Execute(
                     "SELECT r.name, target.question FROM response r LEFT JOIN question target "
                     "ON target.id = r.LogicJumpToQuestionID WHERE r.questionid = ? "
                     "ORDER BY r.pos",
                     {q.Integer("id")});
                 !r.AtEnd(); r.MoveNext())
                rows << r.Text(0) + ">" + PlainTextOf(r.NullToString(1));
        }
        EXPECT_EQ(rows, expected);
        EXPECT_EQ(Get<TreeView>("tvTreeView").Count(), Survey().QCount + 1);
        EXPECT_EQ(Rows("SELECT 1 FROM question WHERE Deleteme"), "");
    }

    std::vector<Question> survey_;
    int added_ = 0;
    std::mt19937 dice_;
};

TEST_F(RandomEdits, LeaveTheFileAsThePictureOfThem) {
    for (unsigned seed = 1; seed <= 300 && !HasFailure(); ++seed) {
        SCOPED_TRACE(seed);
        dice_.seed(seed);
        if (seed % 10 == 1) {
            NewSurvey();
            survey_.clear();
        }
        for (int step = 0; step < 12; ++step)
            Step();
        Save();
        if (seed % 4 == 0)
            Reopen();
        Compare();
    }
}

} // namespace
} // namespace pollarix::test
