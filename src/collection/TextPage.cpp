#include "collection/TextPage.h"

#include "platform/controls/PlainTextBox.h"

namespace pollarix {

TextPage::TextPage(QWidget* parent)
    : AnswerPage("picDCResponseSimple", parent), txtDCSimpleResponse_(new PlainTextBox) {
    txtDCSimpleResponse_->setObjectName("txtDCSimpleResponse");
    txtDCSimpleResponse_->setAccessibleName("Answer");
    txtDCSimpleResponse_->setTabChangesFocus(true);
    Fill(*txtDCSimpleResponse_);
}

void TextPage::ShowAnswer(const AnswerPlace& place) {
    txtDCSimpleResponse_->SetText({});
    const Recordset answer = place.file.Execute(
        "SELECT simpleresponse FROM Respondent_Responses WHERE questionid = ? AND respondentid = ? "
        "ORDER BY id",
        {place.question, place.respondent});
    if (!answer.AtEnd())
        txtDCSimpleResponse_->SetText(answer.Text(0));
}

std::int16_t TextPage::Store(const AnswerPlace& place) {
    TableInsert insert(place.file, "Respondent_Responses",
                       {"QuestionID", "RespondentID", "ResponseID", "SimpleResponse"});
    // 1 refers to nothing: an open ended question has no responses.
    insert.Add({place.question, place.respondent, 1, txtDCSimpleResponse_->Text()});
    return NoJump;
}

void TextPage::TakeFocus() {
    txtDCSimpleResponse_->setFocus();
}

} // namespace pollarix
