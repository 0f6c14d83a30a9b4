// What the Explore window shows, as texts: the frequencies of one thing, or its cross table by
// another, with what can be said about them. No widget, and no counting of its own.
#pragma once

#include <QString>
#include <QStringList>

#include <optional>
#include <vector>

#include "statistics/CrossTable.h"

namespace pollarix {

// Something that can be counted: a variable, or a check question as a whole; or a matrix as a
// whole, which is told how well its sub questions go together instead.
struct ExploreItem {
    statistics::Axis axis;
    QString label;         // name and question
    bool isMatrix = false; // axis.place is then the question
};

// All of them, in the order of the survey; date and source first. A check question stands before
// its responses, a matrix before its sub questions.
std::vector<ExploreItem> ExploreItems(const statistics::SurveyVariables& survey);

enum class ExploreCell { Count, OfRow, OfColumn, OfAll, Expected };

struct ExploreTable {
    QStringList head;
    std::vector<QStringList> rows; // each as long as the head
    QStringList notes;             // sentences below
};

// Throws what counting throws. A matrix is not taken apart by columns.
ExploreTable MakeExploreTable(const statistics::Answers& answers, const ExploreItem& rows,
                              const std::optional<ExploreItem>& columns, ExploreCell cell,
                              const statistics::Sample& sample);

// For the clipboard: cells joined by tabs for spreadsheets, and a table for word processors. The
// caption tells what was counted and of whom. A tab or line end within a cell becomes a blank.
QString ExploreAsText(const ExploreTable& table, const QString& caption);
QString ExploreAsHtml(const ExploreTable& table, const QString& caption);

} // namespace pollarix
