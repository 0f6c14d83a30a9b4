#include "explore/ExploreTable.h"

#include <QLocale>

#include <cmath>
#include <numeric>

#include "document/clsQ.h"
#include "statistics/Association.h"
#include "statistics/Comparison.h"
#include "statistics/Frequencies.h"
#include "statistics/Reliability.h"

namespace pollarix {

using namespace statistics;

namespace {

constexpr double Rare = 1.96; // standard errors

QString Number(double value, int decimals = 2) {
    return std::isfinite(value) ? QLocale().toString(value, 'f', decimals) : QString("-");
}
QString Count(double value) {
    return Number(value, value == std::floor(value) ? 0 : 1);
}
QString Percent(double share) {
    return Number(100 * share, 1) + " %";
}

QString Probability(const std::optional<double>& p) {
    if (!p || !std::isfinite(*p))
        return "p can't be told";
    return *p < 0.001 ? QString("p < %1").arg(Number(0.001, 3))
                      : QString("p = %1").arg(Number(*p, 3));
}

bool IsOrdered(const Answers& answers, const ExploreItem& item) {
    return item.axis.kind == Axis::Kind::Variable &&
           answers.At(item.axis.place).level != Level::Nominal;
}

QString Described(const Description& numbers) {
    return QString("n = %1, mean %2 (95 % interval %3 to %4), standard deviation %5, median %6, "
                   "quartiles %7 and %8, from %9")
               .arg(numbers.n)
               .arg(Number(numbers.mean), Number(numbers.low), Number(numbers.high),
                    Number(numbers.standardDeviation), Number(numbers.median),
                    Number(numbers.lowerQuartile), Number(numbers.upperQuartile),
                    Number(numbers.smallest)) +
           " to " + Number(numbers.largest) + '.';
}

void AddRow(ExploreTable& table, QStringList cells) {
    while (cells.size() < table.head.size())
        cells << QString();
    table.rows.push_back(std::move(cells));
}

ExploreTable MakeFrequencies(const Answers& answers, const ExploreItem& item,
                             const Sample& sample) {
    const bool ticks = item.axis.kind == Axis::Kind::Ticks;
    const Frequencies counted = ticks ? CountTicks(answers, item.axis.place, sample)
                                      : CountFrequencies(answers, item.axis.place, sample);
    ExploreTable table;
    table.head = QStringList{
        "Answer",       "Count", "Of all", "Of answered", ticks ? "Of all answers" : "Cumulative",
        "95 % interval"};
    for (const FrequencyLine& line : counted.lines)
        AddRow(table,
               {line.label, Count(line.count), Percent(line.shareOfAll), Percent(line.shareOfValid),
                Percent(ticks ? line.shareOfAnswers : line.cumulative),
                Percent(line.interval.low) + " - " + Percent(line.interval.high)});
    const auto without = [&](const char* label, double count) {
        if (count > 0)
            AddRow(table, {label, Count(count), Percent(count / counted.all)});
    };
    without("(no number)", counted.noNumber);
    without("(left empty)", counted.leftEmpty);
    without("(not asked)", counted.notAsked);
    AddRow(table, {"All", Count(counted.all)});
    if (ticks)
        table.notes << "Who chose several responses counts in each of them.";
    else if (IsOrdered(answers, item) && item.axis.place != SurveyVariables::Date)
        table.notes << Described(Describe(answers, item.axis.place, sample));
    return table;
}

QString CellText(const CrossTable& table, std::size_t row, std::size_t column, ExploreCell cell) {
    switch (cell) {
    case ExploreCell::OfRow:
        return Percent(table.OfRow(row, column));
    case ExploreCell::OfColumn:
        return Percent(table.OfColumn(row, column));
    case ExploreCell::OfAll:
        return Percent(table.OfAll(row, column));
    case ExploreCell::Expected:
        return Number(table.Expected(row, column), 1);
    default:
        return Count(table.counts(row, column));
    }
}

QString Tested(const Association& found) {
    if (!std::isfinite(found.chiSquare))
        return "No test: fewer than two rows or columns have answers.";
    QString text = QString("Chi-square %1 with %2 degrees of freedom, ")
                       .arg(Number(found.chiSquare))
                       .arg(found.df) +
                   Probability(found.chiSquareP) + "; likelihood ratio " +
                   Number(found.likelihoodRatio) + ", " + Probability(found.likelihoodRatioP);
    if (found.fisherP)
        text += "; Fisher's exact test " + Probability(found.fisherP);
    text += "; Cramér's V " + Number(found.cramersV) + '.';
    if (found.tooFewExpected)
        text += QString(" Take care: %1 of the cells expect fewer than 5 respondents, the smallest "
                        "%2, so that the chi-square is not to be trusted.")
                    .arg(Percent(found.shareOfSmall), Number(found.smallestExpected, 1));
    return text;
}

void AddTests(ExploreTable& table, const CrossTable& counted, bool ordinal) {
    if (counted.rowsAreTicks && counted.columnsAreTicks)
        return;
    if (counted.rowsAreTicks || counted.columnsAreTicks) {
        const std::vector<Association> lines = AssociateLines(counted);
        const std::vector<QString>& labels = counted.rowsAreTicks ? counted.rows : counted.columns;
        for (std::size_t i = 0; i < lines.size(); ++i)
            table.notes << labels[i] + ": " + Tested(lines[i]);
        return;
    }
    const Association found = Associate(counted, ordinal);
    table.notes << Tested(found);
    if (found.gamma)
        table.notes << "Goodman and Kruskal's gamma " + Number(found.gamma->value) +
                           ", Kendall's tau-b " + Number(found.tauB->value) + ", " +
                           Probability(found.tauB->p) + '.';
}

void AddComparison(ExploreTable& table, const Comparison& found) {
    for (const GroupDescription& group : found.groups)
        table.notes << group.label + ": " + Described(group.numbers);
    if (found.welch)
        table.notes << QString("Welch's t %1 with %2 degrees of freedom, ")
                               .arg(Number(found.welch->t), Number(found.welch->df, 1)) +
                           Probability(found.welch->p) + '.';
    else if (found.variance)
        table.notes << QString("Analysis of variance: F %1 with %2 and %3 degrees of freedom, ")
                               .arg(Number(found.variance->f))
                               .arg(found.variance->df1)
                               .arg(found.variance->df2) +
                           Probability(found.variance->p) + '.';
    if (found.mannWhitney)
        table.notes << QString("Mann-Whitney U %1, ").arg(Number(found.mannWhitney->u, 1)) +
                           Probability(found.mannWhitney->p) + '.';
    else if (found.kruskalWallis)
        table.notes << QString("Kruskal-Wallis H %1, ").arg(Number(found.kruskalWallis->h)) +
                           Probability(found.kruskalWallis->p) + '.';
}

ExploreTable MakeCrossTable(const Answers& answers, const ExploreItem& rows,
                            const ExploreItem& columns, ExploreCell cell, const Sample& sample) {
    const CrossTable counted =
        CountCrossTables(answers, rows.axis, columns.axis, std::nullopt, sample).front();
    ExploreTable table;
    table.head << "";
    for (const QString& column : counted.columns)
        table.head << column;
    table.head << "All";
    bool marked = false;
    for (std::size_t r = 0; r < counted.rows.size(); ++r) {
        QStringList cells(counted.rows[r]);
        for (std::size_t c = 0; c < counted.columns.size(); ++c) {
            const double residual = counted.AdjustedResidual(r, c);
            const char* const mark = residual > Rare ? " +" : residual < -Rare ? " −" : "";
            marked |= *mark != 0;
            cells << CellText(counted, r, c, cell) + QString::fromUtf8(mark);
        }
        AddRow(table, cells << Count(counted.rowTotals[r]));
    }
    QStringList totals("All");
    for (const double total : counted.columnTotals)
        totals << Count(total);
    AddRow(table, totals << Count(counted.total));
    if (marked)
        table.notes << QString::fromUtf8("+ more, − fewer than there would be if the two had "
                                         "nothing to do with each other (adjusted residual beyond "
                                         "1.96).");
    if (counted.missing > 0)
        table.notes << Count(counted.missing) + " without an answer to one of the two.";
    AddTests(table, counted, IsOrdered(answers, rows) && IsOrdered(answers, columns));
    if (IsOrdered(answers, rows) && columns.axis.kind == Axis::Kind::Variable &&
        rows.axis.place != SurveyVariables::Date)
        AddComparison(table, Compare(answers, rows.axis.place, columns.axis.place, sample));
    return table;
}

ExploreTable MakeReliability(const Answers& answers, std::size_t question, bool byAnother,
                             const Sample& sample) {
    const statistics::SurveyQuestion& matrix = answers.Survey().questions[question];
    std::vector<std::size_t> items(matrix.variableCount);
    std::iota(items.begin(), items.end(), matrix.firstVariable);
    const statistics::Reliability found = statistics::CronbachsAlpha(answers, items, sample);
    ExploreTable table;
    table.head << ""
               << "Mean"
               << "Std. deviation"
               << "With others"
               << "Alpha without";
    for (std::size_t i = 0; i < found.items.size(); ++i) {
        const statistics::ItemReliability& item = found.items[i];
        AddRow(table,
               {answers.At(items[i]).item, Number(item.mean, 2), Number(item.standardDeviation, 2),
                Number(item.totalCorrelation, 3), Number(item.alphaWithout, 3)});
    }
    table.notes << QString("Cronbach's alpha %1, of %2 who answered all sub questions.")
                       .arg(Number(found.alpha, 3))
                       .arg(found.respondents);
    if (byAnother)
        table.notes << "A matrix as a whole is not shown by another question: choose one of its "
                       "sub questions for that.";
    return table;
}

QString OneLine(const QString& text) {
    return text.simplified();
}

} // namespace

std::vector<ExploreItem> ExploreItems(const SurveyVariables& survey) {
    std::vector<ExploreItem> items;
    for (std::size_t i = 0; i < survey.variables.size(); ++i) {
        const Variable& variable = survey.variables[i];
        const bool isPoint = variable.kind == VariableKind::Point;
        if ((variable.kind == VariableKind::Tick || isPoint) &&
            survey.questions[variable.question].firstVariable == i)
            items.push_back(
                {{Axis::Kind::Ticks, static_cast<std::size_t>(variable.question)},
                 variable.name.section('_', 0, 0) + "  " + survey.questions[variable.question].text,
                 isPoint});
        // The item first: what they have in common is the same for all of a question.
        const QString label =
            variable.item.isEmpty()
                ? variable.label
                : variable.item + " (" + survey.questions[variable.question].text + ')';
        items.push_back({{Axis::Kind::Variable, i}, variable.name + "  " + label});
    }
    return items;
}

ExploreTable MakeExploreTable(const Answers& answers, const ExploreItem& rows,
                              const std::optional<ExploreItem>& columns, ExploreCell cell,
                              const Sample& sample) {
    if (rows.isMatrix)
        return MakeReliability(answers, rows.axis.place, columns.has_value(), sample);
    return columns ? MakeCrossTable(answers, rows, *columns, cell, sample)
                   : MakeFrequencies(answers, rows, sample);
}

QString ExploreAsText(const ExploreTable& table, const QString& caption) {
    QStringList lines(OneLine(caption));
    const auto add = [&](const QStringList& cells) {
        QStringList line;
        for (const QString& cell : cells)
            line << OneLine(cell);
        lines << line.join('\t');
    };
    add(table.head);
    for (const QStringList& row : table.rows)
        add(row);
    for (const QString& note : table.notes)
        lines << OneLine(note);
    return lines.join('\n') + '\n';
}

QString ExploreAsHtml(const ExploreTable& table, const QString& caption) {
    QString html = "<table border=\"1\"><caption>" + caption.toHtmlEscaped() + "</caption>";
    const auto add = [&](const QStringList& cells, const char* tag) {
        html += "<tr>";
        for (const QString& cell : cells)
            html += QString("<%1>").arg(tag) + cell.toHtmlEscaped() + QString("</%1>").arg(tag);
        html += "</tr>";
    };
    add(table.head, "th");
    for (const QStringList& row : table.rows)
        add(row, "td");
    html += "</table>";
    for (const QString& note : table.notes)
        html += "<p>" + note.toHtmlEscaped() + "</p>";
    return html;
}

} // namespace pollarix
