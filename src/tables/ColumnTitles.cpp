#include "tables/ColumnTitles.h"

namespace pollarix::tables {

using statistics::SurveyVariables;

QString ColumnTitles::Add(const QString& title) {
    const QString simple = title.simplified();
    QString unique = simple;
    for (int& number = numbers_[simple]; titles_.contains(unique); ++number)
        unique = simple + QString(" (%1)").arg(number + 2);
    titles_.insert(unique);
    return unique;
}

QString QuestionTitle(const QString& number, const QString& text) {
    return (number.isEmpty() ? QString() : number + ". ") + text;
}

std::vector<QString> TitlesOf(const SurveyVariables& survey) {
    ColumnTitles titles;
    titles.Add(IdTitle);
    std::vector<QString> all{titles.Add(DateTitle), titles.Add(SourceTitle)};
    for (std::size_t i = all.size(); i < survey.variables.size(); ++i) {
        const statistics::Variable& variable = survey.variables[i];
        const statistics::SurveyQuestion& question = survey.questions[variable.question];
        const bool isItem = variable.kind == statistics::VariableKind::Tick ||
                            variable.kind == statistics::VariableKind::Point;
        all.push_back(titles.Add(QuestionTitle(question.number, question.text) +
                                 (isItem ? ": " + variable.item : QString())));
    }
    return all;
}

} // namespace pollarix::tables
