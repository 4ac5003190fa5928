// Separable filtering of a grid of values with missing nodes: the common engine of
// the pyramid reduction and expansion.
#pragma once

#include <array>
#include <cstddef>
#include <span>
#include <vector>

namespace nuvo {

// The taps of one direction: output node i takes the input nodes index[t] with
// the weights weight[t], for t in [first[i], first[i + 1]). Built once per call,
// so that the passes allocate nothing per node.
struct TapTable {
  std::vector<std::size_t> first;
  std::vector<int> index;
  std::vector<double> weight;
};

// Taps of a reduction by k > 0 of n nodes onto nOut nodes: output i is centred on
// input shift + i * k and takes the offsets -k..k inside the grid, weighted by
// w[|d|].
TapTable reductionTaps(int n, int k, const double *w, int shift, int nOut);

// Taps of an expansion by k > 0 of n coarse nodes onto nOut fine nodes: fine node
// i takes the coarse nodes j with |i - j k| <= k, weighted by k * w[|i - j k|].
TapTable expansionTaps(int n, int k, const double *w, int nOut);

// Dimensions of a grid, x fastest.
using Dims = std::array<std::size_t, 3>;

// Filters `in` (dims `inDims`) direction after direction, x, y then z, with the
// tap table of each direction that has one (null: untouched), then divides each
// node's weighted sum by its weight. out and outWeight hold the grid whose
// dimensions are those of the tables' outputs. A node whose informed share of
// the filter is below minWeight (or zero) is missing. Intermediate grids are
// allocated once per call. The passes run on nthread threads, with the same
// result for any number.
void filterSeparable(std::span<const double> in, Dims inDims,
                     const std::array<const TapTable *, 3> &taps, double *out, double *outWeight,
                     double minWeight, int nthread);

}  // namespace nuvo
