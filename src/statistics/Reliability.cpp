#include "statistics/Reliability.h"

#include <algorithm>
#include <cmath>

#include "statistics/CrossTable.h"

namespace pollarix::statistics {

namespace {

// Of `k` items with the sum of their variances and the variance of their sum.
double Alpha(double k, double variances, double ofSum) {
    return k > 1 && ofSum > 0 ? k / (k - 1) * (1 - variances / ofSum) : std::nan("");
}

} // namespace

Reliability CronbachsAlpha(const Answers& answers, const std::vector<std::size_t>& items,
                           const Sample& sample) {
    Reliability result;
    const std::size_t k = items.size();
    const auto complete = [&](std::size_t row) {
        return sample.Has(row) && std::all_of(items.begin(), items.end(), [&](std::size_t item) {
                   return IsAnswer(answers.Codes(item)[row]);
               });
    };
    const auto number = [&](std::size_t item, std::size_t row) {
        return answers.At(items[item]).values[answers.Codes(items[item])[row]];
    };

    std::vector<double> means(k);
    double weights = 0;
    for (std::size_t row = 0; row < answers.Respondents(); ++row) {
        if (!complete(row))
            continue;
        ++result.respondents;
        weights += sample.WeightOf(row);
        for (std::size_t i = 0; i < k; ++i)
            means[i] += sample.WeightOf(row) * number(i, row);
    }
    for (double& mean : means)
        mean /= weights;

    const auto n = static_cast<double>(result.respondents);
    const double scale = n / (n - 1) / weights;
    Cells covariances(k, k);
    std::vector<double> away(k);
    for (std::size_t row = 0; row < answers.Respondents(); ++row) {
        if (!complete(row))
            continue;
        for (std::size_t i = 0; i < k; ++i)
            away[i] = number(i, row) - means[i];
        for (std::size_t i = 0; i < k; ++i)
            for (std::size_t j = 0; j <= i; ++j)
                covariances(i, j) += scale * sample.WeightOf(row) * away[i] * away[j];
    }
    std::vector<double> withAll(k); // of each item with the sum of all
    double variances = 0;
    double ofSum = 0;
    for (std::size_t i = 0; i < k; ++i) {
        variances += covariances(i, i);
        for (std::size_t j = 0; j < k; ++j)
            withAll[i] += covariances(std::max(i, j), std::min(i, j));
        ofSum += withAll[i];
    }
    const auto count = static_cast<double>(k);
    result.alpha = Alpha(count, variances, ofSum);
    for (std::size_t i = 0; i < k; ++i) {
        ItemReliability item;
        const double own = covariances(i, i);
        const double others = ofSum - 2 * withAll[i] + own; // variance of the sum without it
        item.label = answers.At(items[i]).label;
        item.mean = means[i];
        item.standardDeviation = std::sqrt(own);
        item.totalCorrelation = (withAll[i] - own) / std::sqrt(own * others);
        item.alphaWithout = Alpha(count - 1, variances - own, others);
        result.items.push_back(std::move(item));
    }
    return result;
}

} // namespace pollarix::statistics
