// Figures of a generated survey of 100 respondents, held against what R and PSPP say of the same
// answers. scripts/check-statistics.sh compares many more, of surveys of many sizes.
#include <gtest/gtest.h>

#include "statistics/Association.h"
#include "statistics/Comparison.h"
#include "statistics/Frequencies.h"
#include "statistics/GeneratedAnswers.h"
#include "statistics/Raking.h"
#include "statistics/Reliability.h"
#include "support/PrintQt.h"
#include "support/SurveyFiles.h"

namespace pollarix::statistics {
namespace {

class Figures : public testing::Test {
  protected:
    Figures() {
        file_.Open(program_.BlankSurvey("survey.plxs"));
        test::GeneratedAnswers(file_).Add(100);
        answers_.emplace(file_);
    }
    std::size_t Place(const char* name) const { return answers_->Survey().Find(name).value(); }
    Association Cross(const char* rows, const char* columns, const Sample& sample = {}) const {
        return Associate(CountCrossTables(*answers_, {Axis::Kind::Variable, Place(rows)},
                                          {Axis::Kind::Variable, Place(columns)}, {}, sample)
                             .front(),
                         true);
    }
    // Each figure to the seven digits of its peer.
    static void ExpectFigures(std::initializer_list<std::pair<double, double>> ourAndPeers) {
        int place = 0;
        for (const auto& [our, peer] : ourAndPeers)
            EXPECT_NEAR(our, peer, 1e-6 * std::abs(peer)) << "figure " << ++place;
    }

    test::TestState program_;
    Connection file_;
    std::optional<Answers> answers_;
};

TEST_F(Figures, OfCrossTablesAreThoseOfPeers) {
    Association found = Cross("q6", "q5_1");
    ExpectFigures({{found.chiSquare, 17.737063},
                   {*found.chiSquareP, 0.023286506},
                   {found.likelihoodRatio, 17.405709},
                   {found.cramersV, 0.30553717},
                   {found.gamma->value, 0.18521817},
                   {found.tauB->value, 0.13296974},
                   {*found.tauB->ratio, 1.3505822}});
    EXPECT_TRUE(found.tooFewExpected);
    EXPECT_FALSE(found.fisherP);
    // A scale taken the other way round turns the sign, and nothing else.
    answers_->Reverse(Place("q5_1"));
    found = Cross("q6", "q5_1");
    ExpectFigures({{found.gamma->value, -0.18521817}, {found.chiSquare, 17.737063}});

    found = Cross("q2", "q4_1");
    EXPECT_NEAR(*found.fisherP, 1, 1e-12);
    ExpectFigures({{found.chiSquare, 0.0062222222}});
    // Nothing can be told of a table of one line, and nothing fails.
    Sample women{std::vector<std::uint8_t>(100), {}};
    for (std::size_t row = 0; row < 100; ++row)
        women.chosen[row] = answers_->Codes(Place("q2"))[row] == 0;
    EXPECT_FALSE(Cross("q2", "q4_1", women).chiSquareP);
}

TEST_F(Figures, OfNumbersAreThoseOfPeers) {
    const Description age = Describe(*answers_, Place("q3"), {});
    EXPECT_EQ(age.n, 88U);
    ExpectFigures({{age.mean, 47.8125},
                   {age.standardDeviation, 11.998638},
                   {age.low, 45.270232},
                   {age.high, 50.354768},
                   {age.lowerQuartile, 39.5},
                   {age.median, 49},
                   {age.upperQuartile, 55.75}});

    const Comparison bySex = Compare(*answers_, Place("q3"), Place("q2"), {});
    ExpectFigures({{bySex.welch->t, 1.1807980},
                   {bySex.welch->df, 79.859429},
                   {bySex.welch->p, 0.24118786},
                   {bySex.welch->low, -2.1149971},
                   {bySex.mannWhitney->u, 939.5},
                   {bySex.mannWhitney->p, 0.24490037}});
    const Comparison byRegion = Compare(*answers_, Place("q3"), Place("q1"), {});
    EXPECT_EQ(byRegion.groups.size(), 3U); // who is from Abroad was not asked
    EXPECT_FALSE(byRegion.welch);
    ExpectFigures({{byRegion.variance->f, 3.1969184},
                   {byRegion.variance->p, 0.045849614},
                   {byRegion.kruskalWallis->h, 6.0749135},
                   {byRegion.kruskalWallis->p, 0.047956700}});

    const Reliability matrix =
        CronbachsAlpha(*answers_, {Place("q5_1"), Place("q5_2"), Place("q5_3"), Place("q5_4")}, {});
    ExpectFigures({{matrix.alpha, 0.71845409},
                   {matrix.items[0].alphaWithout, 0.65648510},
                   {matrix.items[3].totalCorrelation, 0.55177180}});
}

TEST_F(Figures, OfWeightsAreThoseOfPeers) {
    RakingLimits limits;
    limits.difference = 1e-13;
    const RakedWeights raked = Rake(
        *answers_, {{Place("q1"), {25, 35, 25, 15}}, {Place("q6"), {0.3, 0.4, 0.3}}}, {}, limits);
    const Sample sample{{}, raked.weights};
    EXPECT_TRUE(raked.reached);
    const Association found = Cross("q2", "q5_1", sample);
    EXPECT_FALSE(found.chiSquareP);
    const Description age = Describe(*answers_, Place("q3"), sample);
    const Frequencies regions = CountFrequencies(*answers_, Place("q1"), sample);
    ExpectFigures({{raked.designEffect, 1.1789659},
                   {raked.smallest, 0.49585083},
                   {raked.largest, 2.0074078},
                   {found.raoScott->f, 1.4579664},
                   {found.raoScott->df1, 3.9846874},
                   {found.raoScott->df2, 354.63718},
                   {found.raoScott->p, 0.21471242},
                   {age.mean, 48.594408},
                   {age.standardError, 1.4557012},
                   {regions.lines[1].shareOfValid, 0.35}});

    // Weights of 1 are no weights.
    const Sample even{{}, std::vector<double>(100, 1.0)};
    ExpectFigures({{Describe(*answers_, Place("q3"), even).standardError, 1.2790591},
                   {Cross("q6", "q5_1", even).chiSquare, 17.737063}});
}

TEST(WilsonInterval, IsThatOfPeers) {
    // prop.test(x, n, correct = FALSE)
    const ShareInterval some = WilsonInterval(0.43, 100);
    EXPECT_NEAR(some.low, 0.3373330, 1e-6);
    EXPECT_NEAR(some.high, 0.5278460, 1e-6);
    const ShareInterval none = WilsonInterval(0, 10);
    EXPECT_EQ(none.low, 0);
    EXPECT_NEAR(none.high, 0.2775328, 1e-6);
}

} // namespace
} // namespace pollarix::statistics
