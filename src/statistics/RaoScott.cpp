#include "statistics/RaoScott.h"

#include <cmath>
#include <limits>

#include "statistics/Distributions.h"

namespace pollarix::statistics {

namespace {

// What rows and columns alone do not explain: for each pair of a row and a column, the last of each
// left out, the product of the two indicators with their means taken off. A line for each cell.
Cells Interactions(std::size_t rows, std::size_t columns) {
    Cells contrasts(rows * columns, (rows - 1) * (columns - 1));
    for (std::size_t r = 0; r < rows; ++r)
        for (std::size_t c = 0; c < columns; ++c)
            for (std::size_t i = 0; i + 1 < rows; ++i)
                for (std::size_t j = 0; j + 1 < columns; ++j)
                    contrasts(r * columns + c, i * (columns - 1) + j) =
                        ((r == i) - 1.0 / static_cast<double>(rows)) *
                        ((c == j) - 1.0 / static_cast<double>(columns));
    return contrasts;
}

// The first one with rows and columns exchanged, times the second.
Cells ProductOfTransposed(const Cells& a, const Cells& b) {
    Cells product(a.Columns(), b.Columns());
    for (std::size_t k = 0; k < a.Rows(); ++k)
        for (std::size_t i = 0; i < a.Columns(); ++i) {
            const double factor = a(k, i);
            if (factor != 0)
                for (std::size_t j = 0; j < b.Columns(); ++j)
                    product(i, j) += factor * b(k, j);
        }
    return product;
}

// Replaces `right` by the x of base * x = right, by Cholesky's factors. False if the base is not
// positive definite.
bool Solve(Cells base, Cells& right) {
    const std::size_t n = base.Rows();
    for (std::size_t i = 0; i < n; ++i)
        for (std::size_t j = 0; j <= i; ++j) {
            double sum = base(i, j);
            for (std::size_t k = 0; k < j; ++k)
                sum -= base(i, k) * base(j, k);
            if (i == j && !(sum > 0))
                return false;
            base(i, j) = i == j ? std::sqrt(sum) : sum / base(j, j);
        }
    for (std::size_t c = 0; c < right.Columns(); ++c) {
        for (std::size_t i = 0; i < n; ++i) {
            for (std::size_t k = 0; k < i; ++k)
                right(i, c) -= base(i, k) * right(k, c);
            right(i, c) /= base(i, i);
        }
        for (std::size_t i = n; i-- > 0;) {
            for (std::size_t k = i + 1; k < n; ++k)
                right(i, c) -= base(k, i) * right(k, c);
            right(i, c) /= base(i, i);
        }
    }
    return true;
}

} // namespace

RaoScottTest CorrectForWeights(const Cells& counts, const Cells& squares, double pearson,
                               std::size_t respondents) {
    const std::size_t cells = counts.Rows() * counts.Columns();
    const auto n = static_cast<double>(respondents);
    std::vector<double> shares(cells);
    std::vector<double> spread(cells);
    double total = 0;
    double allSquares = 0;
    for (std::size_t r = 0; r < counts.Rows(); ++r)
        for (std::size_t c = 0; c < counts.Columns(); ++c) {
            shares[r * counts.Columns() + c] = counts(r, c);
            spread[r * counts.Columns() + c] = squares(r, c);
            total += counts(r, c);
            allSquares += squares(r, c);
        }
    for (double& share : shares)
        share /= total;

    // Covariances of the shares, by linearisation.
    const double scale = n / (n - 1) / total / total;
    Cells covariance(cells, cells);
    for (std::size_t a = 0; a < cells; ++a)
        for (std::size_t b = 0; b < cells; ++b)
            covariance(a, b) = scale * ((a == b ? spread[a] : 0) - shares[b] * spread[a] -
                                        shares[a] * spread[b] + shares[a] * shares[b] * allSquares);

    // The generalised design effects are the eigenvalues of `effects`; only their sum and the sum
    // of their squares are needed. An empty cell counts as nothing.
    const Cells contrasts = Interactions(counts.Rows(), counts.Columns());
    Cells weighted = contrasts;
    Cells divided = contrasts;
    for (std::size_t a = 0; a < cells; ++a)
        for (std::size_t j = 0; j < contrasts.Columns(); ++j) {
            weighted(a, j) = shares[a] > 0 ? contrasts(a, j) / shares[a] : 0;
            divided(a, j) = weighted(a, j) / n;
        }
    const Cells base = ProductOfTransposed(contrasts, divided);
    Cells effects = ProductOfTransposed(weighted, ProductOfTransposed(covariance, weighted));
    if (!Solve(base, effects)) {
        constexpr double Unknown = std::numeric_limits<double>::quiet_NaN();
        return {Unknown, Unknown, Unknown, Unknown};
    }

    double sum = 0;
    double sumOfSquares = 0;
    for (std::size_t i = 0; i < effects.Rows(); ++i) {
        sum += effects(i, i);
        for (std::size_t j = 0; j < effects.Rows(); ++j)
            sumOfSquares += effects(i, j) * effects(j, i);
    }
    RaoScottTest test;
    test.f = pearson / sum;
    test.df1 = sum * sum / sumOfSquares;
    test.df2 = test.df1 * (n - 1);
    test.p = FTail(test.f, test.df1, test.df2);
    return test;
}

} // namespace pollarix::statistics
