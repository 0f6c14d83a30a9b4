// The titles of the columns of a table of answers: those that the export writes, and by which the
// import finds its way back.
#pragma once

#include <QHash>
#include <QSet>
#include <QString>

#include <vector>

#include "statistics/Variables.h"

namespace pollarix::tables {

inline constexpr const char* IdTitle = "Respondent id";
inline constexpr const char* DateTitle = "Submitted";
inline constexpr const char* SourceTitle = "Source";

// Makes each title one line and no two alike: programs take them for names.
class ColumnTitles {
  public:
    QString Add(const QString& title);

  private:
    QSet<QString> titles_;
    QHash<QString, int> numbers_; // how many are taken of those set behind a title, from 2
};

// The question before ": " and an item: its number, if it has one, and its text.
QString QuestionTitle(const QString& number, const QString& text);

// By variable, as the export titles them.
std::vector<QString> TitlesOf(const statistics::SurveyVariables& survey);

} // namespace pollarix::tables
