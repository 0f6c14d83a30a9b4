#include "statistics/Raking.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <numeric>

#include "platform/base/Failure.h"

namespace pollarix::statistics {

namespace {

// Respondents with the same answers to all targets get the same weight, so they are one cell.
struct Cell {
    std::vector<Code> codes; // by target
    double count = 0;
    double weight = 1;
};

class Raker {
  public:
    Raker(const Answers& answers, const std::vector<RakingTarget>& targets,
          const std::vector<std::uint8_t>& chosen)
        : targets_(targets), cellOf_(answers.Respondents(), Nobody) {
        std::map<std::vector<Code>, std::size_t> places;
        std::vector<Code> codes(targets.size());
        for (std::size_t row = 0; row < answers.Respondents(); ++row) {
            if (!chosen.empty() && !chosen[row])
                continue;
            for (std::size_t i = 0; i < targets.size(); ++i)
                codes[i] = answers.Codes(targets[i].variable)[row];
            const auto [place, isNew] = places.try_emplace(codes, cells_.size());
            if (isNew)
                cells_.push_back({codes, 0, 1});
            ++cells_[place->second].count;
            cellOf_[row] = place->second;
            ++count_;
        }
        for (std::size_t i = 0; i < targets.size(); ++i)
            CheckTarget(answers.At(targets[i].variable), i);
    }

    // The sum of weights of each answer to the target; at the end, of those who have not answered.
    std::vector<double> Sums(std::size_t target) const {
        const std::size_t answers = targets_[target].shares.size();
        std::vector<double> sums(answers + 1);
        for (const Cell& cell : cells_)
            sums[std::min<std::size_t>(cell.codes[target], answers)] += cell.count * cell.weight;
        return sums;
    }

    void Fit(std::size_t target) {
        std::vector<double> factors = Sums(target);
        for (std::size_t code = 0; code < factors.size(); ++code)
            if (factors[code] > 0)
                factors[code] = wanted_[target][code] / factors[code];
        for (Cell& cell : cells_)
            cell.weight *= factors[std::min<std::size_t>(cell.codes[target], factors.size() - 1)];
    }

    // Sets the mean to 1, then what is out of bounds to the bound.
    void Bound(const RakingLimits& limits) {
        double sum = 0;
        for (const Cell& cell : cells_)
            sum += cell.count * cell.weight;
        for (Cell& cell : cells_) {
            cell.weight *= count_ / sum;
            cell.weight = std::clamp(cell.weight, limits.lowest.value_or(0),
                                     limits.highest.value_or(HUGE_VAL));
        }
    }

    double LargestDifference() const {
        double largest = 0;
        for (std::size_t target = 0; target < targets_.size(); ++target) {
            const std::vector<double> sums = Sums(target);
            for (std::size_t code = 0; code < sums.size(); ++code)
                largest = std::max(largest, std::abs(sums[code] - wanted_[target][code]) / count_);
        }
        return largest;
    }

    void Tell(const RakingLimits& limits, RakedWeights& result) const {
        result.weights.resize(cellOf_.size());
        for (std::size_t row = 0; row < cellOf_.size(); ++row)
            result.weights[row] = cellOf_[row] == Nobody ? 0 : cells_[cellOf_[row]].weight;
        double sum = 0;
        double squares = 0;
        result.smallest = HUGE_VAL;
        for (const Cell& cell : cells_) {
            sum += cell.count * cell.weight;
            squares += cell.count * cell.weight * cell.weight;
            result.smallest = std::min(result.smallest, cell.weight);
            result.largest = std::max(result.largest, cell.weight);
            if (cell.weight <= limits.lowest.value_or(-1) ||
                cell.weight >= limits.highest.value_or(HUGE_VAL))
                result.atBounds += static_cast<std::size_t>(cell.count);
        }
        result.designEffect = count_ * squares / sum / sum;
        result.effectiveSize = count_ / result.designEffect;
    }

  private:
    static constexpr std::size_t Nobody = static_cast<std::size_t>(-1);

    void CheckTarget(const Variable& variable, std::size_t target) {
        const std::vector<double>& shares = targets_[target].shares;
        const auto refuse = [&](const QString& why) {
            throw Failure(failure::InvalidArgument,
                          "The shares of \"" + variable.label + "\" can't be reached: " + why);
        };
        if (shares.size() != variable.categories.size())
            refuse("there has to be one for each answer.");
        const double sum = std::accumulate(shares.begin(), shares.end(), 0.0);
        if (!std::isfinite(sum) || sum <= 0)
            refuse("they have to be numbers, not all of them 0.");
        const std::vector<double> present = Sums(target);
        std::vector<double> wanted;
        for (std::size_t code = 0; code < shares.size(); ++code) {
            if (shares[code] < 0)
                refuse("that of \"" + variable.categories[code] + "\" is below 0.");
            if (shares[code] > 0 && present[code] == 0)
                refuse("nobody answered \"" + variable.categories[code] + "\".");
            wanted.push_back(shares[code] / sum * (count_ - present.back()));
        }
        wanted.push_back(present.back());
        wanted_.push_back(std::move(wanted));
    }

    const std::vector<RakingTarget>& targets_;
    std::vector<std::vector<double>> wanted_; // what Sums should give
    std::vector<Cell> cells_;
    std::vector<std::size_t> cellOf_; // by respondent
    double count_ = 0;
};

} // namespace

RakedWeights Rake(const Answers& answers, const std::vector<RakingTarget>& targets,
                  const std::vector<std::uint8_t>& chosen, const RakingLimits& limits) {
    if (targets.empty())
        throw Failure(failure::InvalidArgument,
                      "Weights need the shares of at least one question.");
    if (limits.lowest.value_or(0) > 1 || limits.highest.value_or(1) < 1)
        throw Failure(failure::InvalidArgument,
                      "The bounds of the weights have to leave room for 1, their mean.");
    Raker raker(answers, targets, chosen);
    RakedWeights result;
    do {
        for (std::size_t target = 0; target < targets.size(); ++target)
            raker.Fit(target);
        raker.Bound(limits);
        ++result.rounds;
        result.largestDifference = raker.LargestDifference();
        result.reached = result.largestDifference <= limits.difference;
    } while (!result.reached && result.rounds < limits.rounds);
    raker.Tell(limits, result);
    return result;
}

} // namespace pollarix::statistics
