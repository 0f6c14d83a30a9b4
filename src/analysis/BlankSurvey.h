// What the questionnaires to be filled in elsewhere are made of: the saved survey without answers.
#pragma once

#include <QFileInfo>

#include "document/Kinds.h"
#include "platform/base/Failure.h"
#include "platform/richtext/RichText.h"
#include "statistics/Variables.h"

namespace pollarix {

struct BlankSurvey {
    explicit BlankSurvey(Connection& survey) : variables(survey) {
        for (Recordset rows = survey.Execute("SELECT question FROM question ORDER BY pos, id");
             !rows.AtEnd(); rows.MoveNext())
            texts.push_back(PlainTextOf(rows.NullToString(0)).trimmed());
        if (texts.size() != variables.questions.size())
            throw Failure(failure::InvalidArgument, "The survey was changed by another program");
        const QFileInfo file(survey.Path());
        title = file.suffix().compare("tmp", Qt::CaseInsensitive) == 0 ? QString("Questionnaire")
                                                                       : file.completeBaseName();
    }

    // The question's number, as it stands before the text; an instruction text has none.
    QString NumberOf(std::size_t question) const {
        const statistics::SurveyQuestion& asked = variables.questions[question];
        return asked.qtype == kind::Text || asked.number.isEmpty() ? QString()
                                                                   : asked.number + ". ";
    }

    statistics::SurveyVariables variables;
    std::vector<QString> texts; // by question, plain, with its lines
    QString title;
};

} // namespace pollarix
