// Two hundred seeded sequences of edits by hand, against a plain picture of what they should give.
// The judge is the file, read after each save, which all that follows is then built on. Some
// stretches are undone, and some of these done again. Between them respondents answer, and what
// they said stays with the question that they were asked.
#include <QAbstractButton>

#include <map>
#include <random>

#include "design/DesignScreen.h"
#include "design/frmLogic.h"
#include "document/QuestionLabels.h"
#include "platform/richtext/RichText.h"

namespace pollarix::test {
namespace {

constexpr int Nowhere = -1;
const QStringList Texts = {"It's \"so\"", "<response.name>", "a\\b {c} & &d",
                           QString::fromUtf8("Ελληνικά عربي 日本語 🙂")};

struct Answer {
    QString text;
    int jump = Nowhere;  // number of a question
    std::int64_t id = 0; // of its row
};
struct Question {
    int number; // its own for good, wherever it stands
    std::int32_t qType;
    QString text;
    std::vector<Answer> answers;
    std::int64_t scale;
    QString no = {};
};

class RandomEdits : public DesignScreen {
  protected:
    RandomEdits() { design_->LoadLibrary(); }

    void Append(std::int32_t qType, std::int64_t scale) {
        int numbered = 1;
        for (const Question& q : survey_)
            numbered += q.qType != kind::Text;
        survey_.push_back({++added_, qType, "", {}, scale});
        if (qType != kind::Text)
            survey_.back().no = QString::number(numbered);
    }
    void Renumber() {
        int number = 1;
        for (Question& q : survey_)
            if (q.qType != kind::Text)
                q.no = QString::number(number++);
    }
    void AddFromLibrary() {
        auto& library = Get<TreeView>("tvTreeLibrary");
        TreeNode* node = nullptr;
        do
            node = &library.Item(1 + Below(std::size_t(library.Count())));
        while (!node->Key().startsWith("Q_"));
        node->SetSelected();
        // Undo may lead to where no question is selected and the box is empty: it takes the text.
        const bool lost = SelectedKey() == RootKey && design_->EditorText().isEmpty();
        Press("cmdLibraryAdd");
        if (lost)
            return;
        Append(kind::OpenEnded, 2);
        survey_.back().text = PlainTextOf(node->Text());
    }

    void Duplicate(int at) {
        design_->mnuDesignDuplicate_Click();
        const Question original = survey_[std::size_t(at)];
        Append(original.qType, original.scale);
        Question& copy = survey_.back();
        copy.text = original.text;
        for (const Answer& answer : original.answers)
            copy.answers.push_back(
                {answer.text, answer.jump == original.number ? copy.number : answer.jump});
    }

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
            if (!survey_.empty() && Below(4) == 0)
                return AddFromLibrary();
            const std::int32_t qType = Below(2) == 0 ? kind::Radio : Below(5);
            const auto& scales = Get<ComboBox>("cmbMatrixResponses");
            Append(qType, qType == kind::Matrix ? scales.ItemData(scales.ListIndex()) : 2);
            Add(qType);
            survey_.back().text = NewText() + "\r\n" + NewText();
            WriteText(survey_.back().text);
            return;
        }
        const int at = Below(survey_.size());
        Question& q = survey_[at];
        ClickNode(at + 1);
        switch (Below(10)) {
        case 0:
        case 1: {
            const bool up = Below(2) == 0;
            Press(up ? "cmdUp" : "cmdDown");
            if (const int to = at + (up ? -1 : 1); to >= 0 && to < int(survey_.size())) {
                std::swap(q, survey_[to]);
                Renumber();
            }
            break;
        }
        case 2:
            Press("cmdDelete");
            dialogs.TakeTexts();
            if (survey_.size() > 1) {
                survey_.erase(survey_.begin() + at);
                Renumber();
                if (Below(3) == 0)
                    AddFromLibrary(); // of which the neighbour gets nothing
            }
            break;
        case 3: {
            const int option = Below(5);
            Get<QAbstractButton>(qPrintable(QString("optQType(%1)").arg(option))).click();
            q.qType = option < 3 ? option : 7 - option;
            break;
        }
        case 4: // typed over, and taken back
            Get<QWidget>("txtQ").setFocus();
            Key("txtQ", Qt::Key_X);
            Key("txtQ", Qt::Key_Z, Qt::ControlModifier);
            break;
        case 5:
            return Duplicate(at);
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

    // What undo has to bring back. The labels tell of the past, too: a click makes those of the
    // commit of all.
    QStringList Look() {
        QStringList look = {Nodes()};
        for (const auto& q : SurveySnapshot::Take(Survey()).questions) {
            look << q.Key << q.Text << q.QuestionNo << QString::number(q.DatabaseID)
                 << QString::number(q.qType)
                 << QString::number(q.qType == kind::Matrix ? q.ResponseMatrixGroupID : 0);
            for (const auto& r : q.responses)
                look << r.Text << QString::number(r.DatabaseID) << r.LogicJumpToQuestionKey;
        }
        return look;
    }
    int PressUntil(Qt::Key key, const QStringList& look) {
        int press = 0;
        for (; press < 100 && Look() != look; ++press) {
            Get<TreeView>("tvTreeView").setFocus();
            Key("tvTreeView", key, Qt::ControlModifier);
        }
        EXPECT_EQ(Look(), look);
        return press;
    }
    void Stretch() {
        for (int i = int(survey_.size()); i >= 0; --i) {
            ClickNode(i);
            design_->CommitText();
        }
        const QStringList before = Look();
        const std::vector<Question> picture = survey_;
        const bool marked = state.FileChanged();
        for (int step = Below(5); step >= 0; --step)
            Step();
        const QStringList after = Look();
        if (PressUntil(Qt::Key_Z, before) > 0) {
            EXPECT_EQ(state.FileChanged(), marked && before.mid(1) != saved_);
        }
        if (Below(2) == 0)
            survey_ = picture;
        else
            PressUntil(Qt::Key_Y, after);
    }

    // Neither a save nor a Save As that fails in the middle leaves a trace.
    void FailToSave() {
        if (Rows("SELECT 1 FROM question").size() < 2)
            return;
        Connection& file = state.SurveyConnection;
        file.Run("CREATE UNIQUE INDEX refusing ON question (Deleteme) WHERE Deleteme = 1");
        const char* const all =
            "SELECT id || ' ' || pos || ' ' || Deleteme || question FROM question UNION ALL "
            "SELECT id || ' ' || pos || ' ' || Deleteme || name FROM response";
        const QStringList before = Look();
        const QString rows = Rows(all), path = state.CurrentFilename();
        const bool marked = state.FileChanged();
        EXPECT_THROW(document_.DoSave(), Failure);
        dialogs.fileNames = {{Path("refused.plxs")}};
        EXPECT_FALSE(document_.mnuFileSaveAs_Click());
        EXPECT_EQ(dialogs.TakeTexts().size(), 1);
        EXPECT_EQ(Look(), before);
        EXPECT_EQ(Rows(all), rows);
        EXPECT_EQ(state.FileChanged(), marked);
        EXPECT_EQ(state.CurrentFilename(), path);
        file.Run("DROP INDEX refusing");
    }

    void Save() {
        if (Below(3) == 0)
            FailToSave();
        if (Below(3) == 0) {
            dialogs.fileNames = {{Path(QString("copy%1.plxs").arg(++copies_))}};
            EXPECT_TRUE(document_.mnuFileSaveAs_Click());
        } else {
            EXPECT_TRUE(document_.DoSave());
        }
        int inherited = Nowhere; // by a jump whose target is gone
        for (Question& q : survey_) {
            if (!HasResponses(q.qType))
                q.answers.clear();
            if (q.answers.empty())
                q.scale = 1;
            for (Answer& answer : q.answers) {
                const bool dead = answer.jump != Nowhere && !Numbered(answer.jump);
                if (answer.id != 0)
                    answer.jump = inherited = dead ? inherited : answer.jump;
                else if (dead)
                    answer.jump = Nowhere;
            }
        }
    }

    void Compare() {
        QStringList expected, rows, labels;
        for (Question& q : survey_) {
            expected << QString("%1 %2 %3").arg(q.qType).arg(q.no, q.text);
            labels << PrefixOf(q.qType, q.no) + q.text;
            int pos = 0;
            for (Answer& answer : q.answers) {
                const Question* const to = Numbered(answer.jump);
                if (answer.id == 0)
                    answer.id = ++lastResponse_;
                expected << QString("%1 %2 %3 ").arg(answer.id).arg(++pos).arg(q.scale) +
                                answer.text + ">" + (to ? to->text : "");
            }
        }
        EXPECT_EQ(Nodes(), labels.join('|'));
        EXPECT_FALSE(state.FileChanged());
        saved_ = Look().mid(1);
        Recordset q = state.SurveyConnection.Execute("SELECT * FROM question ORDER BY pos");
        for (int pos = 1; !q.AtEnd(); q.MoveNext(), ++pos) {
            ASSERT_EQ(q.Integer("pos"), pos);
            rows << q.Text("qtype") + " " + q.NullToString("questionno") + " " +
                        PlainTextOf(q.Text("question"));
            for (Recordset r = state.SurveyConnection.Execute(
                     "SELECT r.id || ' ' || r.pos || ' ' || r.responseMatrixGroupID || ' ' || "
                     "r.name, target.question FROM response r LEFT JOIN question target "
                     "ON target.id = r.LogicJumpToQuestionID WHERE r.questionid = ? "
                     "ORDER BY r.pos",
                     {q.Integer("id")});
                 !r.AtEnd(); r.MoveNext())
                rows << r.Text(0) + ">" + PlainTextOf(r.NullToString(1));
        }
        EXPECT_EQ(rows, expected);
        EXPECT_EQ(Get<TreeView>("tvTreeView").Count(), Survey().QCount() + 1);
        EXPECT_EQ(Rows("SELECT 1 FROM question WHERE Deleteme"), "");
    }

    // Gives each question that is asked the question's own number for an answer, past the design:
    // by the program's connection, or by that of another window.
    void Respond() {
        Connection other;
        Connection& file = Below(2) == 0 ? state.SurveyConnection : other;
        if (&file == &other)
            other.Open(state.CurrentFilename());
        file.Run("INSERT INTO respondent (source) VALUES ('Manual Entry')");
        for (std::size_t at = 0; at < survey_.size(); ++at) {
            if (Below(2) == 0)
                continue;
            const int number = survey_[at].number;
            ++given_[number];
            const QString answer =
                QString("INSERT INTO respondent_responses (RespondentID, QuestionID, ResponseID, "
                        "SimpleResponse) SELECT (SELECT max(id) FROM respondent), id, 1, %1 "
                        "FROM question WHERE pos = %2");
            file.Run(qPrintable(answer.arg(number).arg(at + 1)));
        }
    }

    // Of a question that is gone nothing may have come to another.
    void CompareAnswers() {
        std::map<int, int> found;
        Recordset answer = state.SurveyConnection.Execute(
            "SELECT a.SimpleResponse, q.question FROM respondent_responses a "
            "JOIN question q ON q.id = a.QuestionID");
        for (; !answer.AtEnd(); answer.MoveNext()) {
            const int number = answer.Text(0).toInt();
            const Question* const asked = Numbered(number);
            ASSERT_NE(asked, nullptr) << number;
            EXPECT_EQ(PlainTextOf(answer.Text(1)), asked->text);
            ++found[number];
        }
        std::erase_if(given_, [this](const auto& given) { return !Numbered(given.first); });
        EXPECT_EQ(found, given_);
    }

    std::vector<Question> survey_;
    std::map<int, int> given_; // how many answered the question of a number
    int added_ = 0;
    int copies_ = 0;
    std::int64_t lastResponse_ = 0; // id given
    QStringList saved_;
    std::mt19937 dice_;
};

TEST_F(RandomEdits, LeaveTheFileAsThePictureOfThem) {
    for (unsigned seed = 1; seed <= 200 && !HasFailure(); ++seed) {
        SCOPED_TRACE(seed);
        dice_.seed(seed);
        if (seed % 10 == 1) {
            NewSurvey();
            survey_.clear();
            given_.clear();
            lastResponse_ = 0;
            saved_.clear();
        }
        for (int step = 0; step < 12; ++step) {
            if (Below(10) == 0)
                Stretch();
            else
                Step();
        }
        Save();
        if (seed % 4 == 0)
            Reopen();
        Compare();
        CompareAnswers();
        Respond();
    }
}

} // namespace
} // namespace pollarix::test
