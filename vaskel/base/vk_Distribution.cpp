#include "vaskel/base/vk_Distribution.h"

#include <algorithm>

namespace
{
// Adds up n weights to n + 1 shares of their sum, which is returned.
float cumulate(const float *weights, int n, float *shares)
{
    // A double, so that roundings of many weights do not add up: densities come from the weights
    // themselves and have to agree with these shares.
    double sum = 0;
    shares[0] = 0;
    for (int i = 0; i < n; ++i) {
        sum += static_cast<double>(weights[i]);
        shares[i + 1] = static_cast<float>(sum);
    }
    const auto whole = static_cast<float>(sum);
    // Where nothing weighs anything, even steps: 0 / 0 would send samples nowhere.
    for (int i = 1; i <= n; ++i)
        shares[i] = whole > 0 ? shares[i] / whole : static_cast<float>(i) / static_cast<float>(n);
    return whole;
}

// The cell in which x lies, and how far along that: a binary search without branches, which
// no processor could foresee.
int cellAt(const float *shares, int n, float x, float &along)
{
    int cell = 0;
    for (int left = n; left > 1; left -= left / 2)
        cell += shares[cell + left / 2] <= x ? left / 2 : 0;
    const float width = shares[cell + 1] - shares[cell];
    // Only the very end of the scale can meet a cell without width.
    along = width > 0 ? std::clamp((x - shares[cell]) / width, 0.0f, 1.0f) : .5f;
    return cell;
}
} // namespace

vk_Distribution::vk_Distribution(int columns, int rows, const std::vector<float> &weights)
    : myColumns(columns), myRows(rows), myPdf(weights.size(), 1),
      myAcross(static_cast<std::size_t>((columns + 1) * rows)),
      myUp(static_cast<std::size_t>(rows + 1))
{
    std::vector<float> ofRows;
    for (int row = 0; row < rows; ++row)
        ofRows.push_back(cumulate(&weights[static_cast<std::size_t>(row * columns)], columns,
                                  &myAcross[static_cast<std::size_t>(row * (columns + 1))]));
    const float whole = cumulate(ofRows.data(), rows, myUp.data());
    const auto cells = static_cast<float>(columns * rows);
    for (std::size_t i = 0; i < weights.size() && whole > 0; ++i)
        myPdf[i] = weights[i] * cells / whole;
}

vk_Square vk_Distribution::sample(const vk_Square &at) const
{
    // What the choice of a cell leaves of a coordinate tells the place in it: no third number is
    // drawn, and strata stay strata.
    vk_Square along;
    const int row = cellAt(myUp.data(), myRows, at.v, along.v);
    const float *const shares = &myAcross[static_cast<std::size_t>(row * (myColumns + 1))];
    const int column = cellAt(shares, myColumns, at.u, along.u);
    return {(static_cast<float>(column) + along.u) / static_cast<float>(myColumns),
            (static_cast<float>(row) + along.v) / static_cast<float>(myRows)};
}
