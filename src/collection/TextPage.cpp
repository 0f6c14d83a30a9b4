#include "collection/TextPage.h"

#include <QPlainTextEdit>
#include <QTextDocument>
#include <QTextOption>

namespace pollarix {

namespace {

// As it was typed: the editor's own way out would turn no-break spaces into plain ones.
QString TypedText(const QPlainTextEdit& editor) {
    QString text = editor.document()->toRawText();
    text.replace(QChar::ParagraphSeparator, "\r\n").replace(QChar::LineSeparator, "\r\n");
    return text;
}

// The time to break a line at words grows with the square of a word's length, and respondents send
// what they like.
constexpr int LongestWord = 1000;

QTextOption::WrapMode WrappingFor(const QString& text) {
    int length = 0;
    for (const QChar letter : text) {
        length = letter.isSpace() ? 0 : length + 1;
        if (length > LongestWord)
            return QTextOption::WrapAnywhere;
    }
    return QTextOption::WrapAtWordBoundaryOrAnywhere;
}

} // namespace

TextPage::TextPage(QWidget* parent)
    : AnswerPage("picDCResponseSimple", parent), txtDCSimpleResponse_(new QPlainTextEdit) {
    txtDCSimpleResponse_->setObjectName("txtDCSimpleResponse");
    txtDCSimpleResponse_->setAccessibleName("Answer");
    txtDCSimpleResponse_->setTabChangesFocus(true);
    connect(txtDCSimpleResponse_, &QPlainTextEdit::textChanged, this, [this] {
        txtDCSimpleResponse_->setWordWrapMode(WrappingFor(TypedText(*txtDCSimpleResponse_)));
    });
    Fill(*txtDCSimpleResponse_);
}

void TextPage::ShowAnswer(const AnswerPlace& place) {
    txtDCSimpleResponse_->setPlainText({});
    const Recordset answer = place.file.Execute(
        "SELECT simpleresponse FROM Respondent_Responses WHERE questionid = ? AND respondentid = ? "
        "ORDER BY id",
        {place.question, place.respondent});
    if (answer.AtEnd())
        return;
    const QString text = answer.Text(0);
    txtDCSimpleResponse_->setWordWrapMode(WrappingFor(text));
    txtDCSimpleResponse_->setPlainText(text);
}

std::int16_t TextPage::Store(const AnswerPlace& place) {
    TableInsert insert(place.file, "Respondent_Responses",
                       {"QuestionID", "RespondentID", "ResponseID", "SimpleResponse"});
    // 1 refers to nothing: an open ended question has no responses.
    insert.Add({place.question, place.respondent, 1, TypedText(*txtDCSimpleResponse_)});
    return NoJump;
}

void TextPage::TakeFocus() {
    txtDCSimpleResponse_->setFocus();
}

} // namespace pollarix
