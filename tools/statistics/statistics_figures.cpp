// Generates a survey and writes, into a directory: figures.tsv with our statistics of it, a name
// and a number a line, and answers.csv with the numbers behind them, for other programs.
//   statistics_figures RESPONDENTS DIRECTORY
#include <QFile>

#include <cstdio>

#include "labelled/LabelledFile.h"
#include "platform/files/Files.h"
#include "statistics/Association.h"
#include "statistics/Comparison.h"
#include "statistics/Filter.h"
#include "statistics/Frequencies.h"
#include "statistics/GeneratedAnswers.h"
#include "statistics/Raking.h"
#include "statistics/Reliability.h"

using namespace pollarix;
using namespace pollarix::statistics;

namespace {

class Figures {
  public:
    explicit Figures(const Answers& answers) : answers_(answers) {}

    void Tell(const QString& name, double value) {
        text_ += name + '\t' + QString::number(value, 'g', 17) + '\n';
    }
    void Tell(const QString& name, const std::optional<double>& value) {
        if (value)
            Tell(name, *value);
    }
    std::size_t Place(const char* name) const { return answers_.Survey().Find(name).value(); }
    const QString& Text() const { return text_; }

    void Count(const char* name) {
        const Frequencies table = CountFrequencies(answers_, Place(name), {});
        for (std::size_t i = 0; i < table.lines.size(); ++i)
            Tell(QString("freq.%1.%2").arg(name).arg(i + 1), table.lines[i].count);
    }

    void Cross(const char* rows, const char* columns, bool ordinal) {
        const auto table = CountCrossTables(answers_, {Axis::Kind::Variable, Place(rows)},
                                            {Axis::Kind::Variable, Place(columns)}, {}, {});
        const Association found = Associate(table.front(), ordinal);
        const QString name = QString("cross.%1.%2.").arg(rows, columns);
        Tell(name + "chi2", found.chiSquare);
        Tell(name + "df", found.df);
        Tell(name + "p", found.chiSquareP);
        Tell(name + "lr", found.likelihoodRatio);
        Tell(name + "lrp", found.likelihoodRatioP);
        Tell(name + "fisher", found.fisherP);
        Tell(name + "v", found.cramersV);
        if (table.front().respondents > 0)
            Tell(name + "residual", table.front().AdjustedResidual(0, 0));
        if (ordinal && found.gamma) {
            Tell(name + "gamma", found.gamma->value);
            Tell(name + "taub", found.tauB->value);
            Tell(name + "taubt", found.tauB->ratio);
        }
    }

    void Lines() {
        const auto table = CountCrossTables(answers_, {Axis::Kind::Ticks, 3},
                                            {Axis::Kind::Variable, Place("q2")}, {}, {});
        const auto tests = AssociateLines(table.front());
        for (std::size_t i = 0; i < tests.size(); ++i)
            Tell(QString("lines.%1.chi2").arg(i + 1), tests[i].chiSquare);
    }

    void Numbers(const QString& name, const Description& numbers) {
        Tell(name + ".n", static_cast<double>(numbers.n));
        Tell(name + ".mean", numbers.mean);
        Tell(name + ".sd", numbers.standardDeviation);
        Tell(name + ".se", numbers.standardError);
        Tell(name + ".low", numbers.low);
        Tell(name + ".high", numbers.high);
        Tell(name + ".q1", numbers.lowerQuartile);
        Tell(name + ".median", numbers.median);
        Tell(name + ".q3", numbers.upperQuartile);
        Tell(name + ".min", numbers.smallest);
        Tell(name + ".max", numbers.largest);
    }

    void Compare(const char* variable, const char* group) {
        const Comparison found = statistics::Compare(answers_, Place(variable), Place(group), {});
        const QString name = QString("compare.%1.%2.").arg(variable, group);
        if (found.welch) {
            Tell(name + "t", found.welch->t);
            Tell(name + "tdf", found.welch->df);
            Tell(name + "tp", found.welch->p);
            Tell(name + "tlow", found.welch->low);
        }
        if (found.variance) {
            Tell(name + "f", found.variance->f);
            Tell(name + "fp", found.variance->p);
            Tell(name + "within", found.variance->withinSquares);
        }
        if (found.mannWhitney) {
            Tell(name + "u", found.mannWhitney->u);
            Tell(name + "mwp", found.mannWhitney->p);
        }
        if (found.kruskalWallis) {
            Tell(name + "h", found.kruskalWallis->h);
            Tell(name + "hp", found.kruskalWallis->p);
        }
    }

    void Alpha() {
        const Reliability found = CronbachsAlpha(
            answers_, {Place("q5_1"), Place("q5_2"), Place("q5_3"), Place("q5_4")}, {});
        Tell("alpha", found.alpha);
        for (std::size_t i = 0; i < found.items.size(); ++i) {
            Tell(QString("alpha.%1.without").arg(i + 1), found.items[i].alphaWithout);
            Tell(QString("alpha.%1.correlation").arg(i + 1), found.items[i].totalCorrelation);
        }
    }

    // By the shares of region and schooling, which everybody answers.
    std::vector<double> Weighted() {
        RakingLimits limits;
        limits.difference = 1e-13;
        Sample sample;
        const RakedWeights raked = Rake(
            answers_, {{Place("q1"), {0.25, 0.35, 0.25, 0.15}}, {Place("q6"), {0.3, 0.4, 0.3}}}, {},
            limits);
        sample.weights = raked.weights;
        Tell("rake.effect", raked.designEffect);
        Tell("rake.smallest", raked.smallest);
        Tell("rake.largest", raked.largest);
        const auto table = CountCrossTables(answers_, {Axis::Kind::Variable, Place("q2")},
                                            {Axis::Kind::Variable, Place("q5_1")}, {}, sample);
        for (std::size_t c = 0; c < table.front().columns.size(); ++c)
            Tell(QString("svytable.%1").arg(c + 1), table.front().counts(0, c));
        const Association found = Associate(table.front(), false);
        if (found.raoScott) {
            Tell("svychisq.f", found.raoScott->f);
            Tell("svychisq.df1", found.raoScott->df1);
            Tell("svychisq.df2", found.raoScott->df2);
            Tell("svychisq.p", found.raoScott->p);
        }
        const Description numbers = Describe(answers_, Place("q3"), sample);
        Tell("svymean.mean", numbers.mean);
        Tell("svymean.se", numbers.standardError);
        Tell("svymean.sd", numbers.standardDeviation);
        return sample.weights;
    }

  private:
    const Answers& answers_;
    QString text_;
};

// The numbers, what is no answer empty, and the weights.
QString Table(const Answers& answers, const std::vector<double>& weights) {
    QString text;
    for (std::size_t i = 2; i < answers.Survey().variables.size(); ++i)
        text += answers.At(i).name + ',';
    text += "weight\n";
    for (std::size_t row = 0; row < answers.Respondents(); ++row) {
        for (std::size_t i = 2; i < answers.Survey().variables.size(); ++i) {
            const Code code = answers.Codes(i)[row];
            if (IsAnswer(code))
                text += QString::number(answers.At(i).values[code], 'g', 15);
            text += ',';
        }
        text += QString::number(weights.empty() ? 1 : weights[row], 'g', 17) + '\n';
    }
    return text;
}

void Run(int respondents, const QString& directory) {
    const QString path = directory + "/survey.plxs";
    CopyFileOver(QString(POLLARIX_DATA_DIR) + "/blank.mdb", path);
    QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner);
    Connection survey;
    survey.Open(path);
    test::GeneratedAnswers(survey).Add(respondents);
    const Answers answers(survey);

    Figures figures(answers);
    for (const char* name : {"q1", "q2", "q3", "q4_1", "q5_1", "q6"})
        figures.Count(name);
    figures.Cross("q1", "q2", false);
    figures.Cross("q2", "q4_1", false);
    figures.Cross("q6", "q5_1", true);
    figures.Cross("q5_1", "q5_2", true);
    figures.Lines();
    for (const char* name : {"q3", "q5_1"})
        figures.Numbers(QString("describe.") + name, Describe(answers, figures.Place(name), {}));
    figures.Compare("q3", "q2");
    figures.Compare("q3", "q1");
    figures.Compare("q5_1", "q6");
    figures.Alpha();
    std::vector<double> weights;
    if (respondents >= 100) // fewer don't fill all categories
        weights = figures.Weighted();
    WriteWholeFile(directory + "/figures.tsv", figures.Text().toUtf8());
    WriteWholeFile(directory + "/answers.csv", Table(answers, weights).toUtf8());

    const Sample all;
    labelled::WriteSav(survey, directory + "/labelled.sav", all, {});
    labelled::WriteDta(survey, directory + "/labelled.dta", all, {});
    labelled::WriteXlsx(survey, directory + "/labelled.xlsx", all, {});
    labelled::WriteR(survey, directory + "/labelled.R", all, {});
    labelled::WriteCodebook(survey, directory + "/labelled.html", all, {});
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fputs("statistics_figures RESPONDENTS DIRECTORY\n", stderr);
        return 2;
    }
    try {
        Run(QString(argv[1]).toInt(), argv[2]);
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "%s\n", failure.what());
        return 1;
    }
    return 0;
}
