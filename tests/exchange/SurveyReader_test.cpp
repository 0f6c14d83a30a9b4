#include "exchange/SurveyReader.h"

#include <gtest/gtest.h>

#include "support/Bytes.h"
#include "support/Places.h"

using namespace pollarix::exchange;
using namespace pollarix::test;

namespace {

std::string Document() {
    return BytesOf(SourceFile("tests/exchange/every-kind.txt"))
        .replace("-1<", "41<")
        .replace("\n", "\r\n")
        .toStdString();
}

std::string FaultOf(const std::string& document) {
    try {
        ReadSurveyDocument(document);
        return "none";
    } catch (const DocumentFault& fault) {
        EXPECT_LE(std::string_view(fault.what()).size(), 200U);
        return fault.what();
    }
}

std::string With(const std::string& what, const std::string& instead) {
    std::string document = Document();
    const std::size_t at = document.find(what);
    EXPECT_NE(at, std::string::npos) << what;
    return document.replace(at, what.size(), instead);
}

} // namespace

TEST(SurveyReader, SaysWhatIsWrongAndWhere) {
    const struct {
        std::string document;
        const char* fault;
    } cases[] = {
        {With(">11<", ">11<"), "none"},
        {"", "The survey document is empty."},
        {Document().substr(0, Document().find("<q>")), "The survey has no questions."},
        {With("Pollarix", "Other"), "line 1: this is no survey document of the program."},
        {With("1.4", "1.5"), "line 4: this server reads version 1.4 only."},
        {With("\r\n\t<Question>What", "\r\n\t<question>What"),
         "line 7 (question 1): there should be \"<Question>\"."},
        {With("What's", std::string("What\0s", 6)),
         "line 7: there is a character of the number 0."},
        {With("more</Question>", "more"), "line 7 (question 1): \"</Question>\" is missing."},
        {With("more", std::string(70000, 'x')),
         "line 7 (question 1): there is a text of more than 64 KB, or \"</Question>\" is missing."},
        {With(">12<", ">11<"), "line 16 (question 2): a second question has the id 11."},
        {With(">12<", ">-1<"),
         "line 16 (question 2): a question has no number yet; save the survey "
         "and publish again."},
        {With(">12<", ">99999999999<"),
         "line 16 (question 2): \"99999999999\" is no whole number."},
        {With("<QType>1<", "<QType>5<"), "line 19 (question 2): there is no kind 5 of questions."},
        {With("<ResponsesCount>2", "<ResponsesCount>3"),
         "line 44 (question 3): there should be \"<QuestionID>\"."},
        {With(">51<", ">50<"), "line 77 (question 4): a second response has the id 50."},
        {With("<Pos>2", "<Pos>3"), "line 42 (question 3): 3 is not the place of this response, 2."},
        {With("<ReponseMatrixCount>3", "<ReponseMatrixCount>-3"),
         "line 56 (question 4): its scales are too long."},
        {With(">300<", ">303<"), "line 68 (question 4): its sub questions have different scales."},
        {With("<QuestionID>14", "<QuestionID>15"),
         "line 63 (question 4): 15 is not the question's own id, 14."},
        {Document() + "\r\n", "line 110 (question 7): there should be \"<q>\"."},
    };
    for (const auto& [document, fault] : cases) {
        const std::string told = FaultOf(document);
        EXPECT_TRUE(told.ends_with(fault)) << told << "\nshould end: " << fault;
    }
    // Cut anywhere but behind a question, it is refused and nothing worse.
    for (std::size_t end = 0; end < Document().size(); ++end)
        if (!std::string_view(Document()).substr(0, end).ends_with("</q>\r\n")) {
            EXPECT_NE(FaultOf(Document().substr(0, end)), "none") << end;
        }
}
