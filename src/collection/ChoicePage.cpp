#include "collection/ChoicePage.h"

#include "platform/base/Failure.h"

namespace pollarix {

namespace {

bool IsAnswered(const AnswerPlace& place, std::int64_t response) {
    return !place.file
                .Execute("SELECT id FROM Respondent_Responses WHERE responseid = ? AND "
                         "questionid = ? AND respondentid = ?",
                         {response, place.question, place.respondent})
                .AtEnd();
}

} // namespace

ChoicePage::ChoicePage(AnswerList::Kind kind, const char* name, const char* buttons,
                       QWidget* parent)
    : AnswerPage(name, parent), kind_(kind), list_(new AnswerList(kind, buttons, this)) {
    Fill(*list_);
}

void ChoicePage::ShowAnswer(const AnswerPlace& place) {
    list_->Clear();
    for (Recordset row = place.file.Execute(
             "SELECT id, name FROM response WHERE questionid = ? ORDER BY pos", {place.question});
         !row.AtEnd(); row.MoveNext())
        list_->Add(row.NullToString("name"), row.Integer("id"));
    if (!HasAnswers())
        return;
    for (int i = 0; i <= list_->UBound(); ++i)
        if (IsAnswered(place, list_->Tag(i)))
            list_->SetValue(i, true);
    list_->ShowFirstChosen();
}

bool ChoicePage::ChooseByDigit(int digit) {
    const int i = digit - 1;
    if (!HasAnswers() || i > list_->UBound())
        return false;
    list_->SetValue(i, kind_ == AnswerList::Kind::Radio || !list_->Value(i));
    list_->FocusButton(i); // so that Enter turns the page, and the other keys go on from there
    return true;
}

std::int16_t ChoicePage::Store(const AnswerPlace& place) {
    TableInsert insert(place.file, "Respondent_Responses",
                       {"QuestionID", "RespondentID", "ResponseID", "SimpleResponse"});
    std::int16_t target = NoJump;
    for (int i = 0; i <= list_->UBound(); ++i) {
        if (!list_->Value(i))
            continue;
        if (kind_ == AnswerList::Kind::Radio) {
            const Recordset jump = place.file.Execute(
                "SELECT logicjumptoquestionid FROM response WHERE id = ?", {list_->Tag(i)});
            if (!jump.AtEnd() && !jump.IsNull(0))
                target = Narrow16(jump.Integer(0));
        }
        insert.Add({place.question, place.respondent, list_->Tag(i), ""});
    }
    return target;
}

} // namespace pollarix
