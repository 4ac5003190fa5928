// Separable filtering with missing nodes.
//
// Each direction is one pass that turns a (weighted sum, weight sum) pair of grids
// into the pair of the next grid; the weight sum of a node is the share of its
// filter that fell on informed, in-grid nodes, so the final division renormalises
// kernels truncated by borders or by missing nodes. The grid is seen, for the
// pass along one direction, as `outer` slabs of `n` lines of `inner` contiguous
// values: the innermost loop always runs over contiguous memory (whole x lines for
// the y and z passes), which the compiler vectorises. Every output line of a pass
// is written by one thread from the input alone, so the threads share a pass's
// lines and the result does not depend on their number.
#include "pyramid/separable_filter.hpp"

#include <algorithm>
#include <cstdlib>

#include "data/values.hpp"

namespace nuvo {
namespace {

// A pair of grids: the weighted sums and the weight sums (null for the input,
// whose informed nodes weigh 1).
struct Sums {
  const double *value;
  const double *weight;
};

struct Layout {
  std::size_t inner, n, outer;
};

Layout layoutAlong(const Dims &dims, int axis) {
  Layout l{1, dims[axis], 1};
  for (int a = 0; a < axis; ++a) l.inner *= dims[a];
  for (int a = axis + 1; a < 3; ++a) l.outer *= dims[a];
  return l;
}

// The x pass: each output node is a short scalar sum over its taps.
template <bool kWeighted>
void linePass(Sums in, const Layout &l, const TapTable &taps, double *outValue, double *outWeight,
              int nthread) {
  const std::size_t nOut = taps.first.size() - 1;
#pragma omp parallel for num_threads(nthread) schedule(static)
  for (std::size_t o = 0; o < l.outer; ++o) {
    const double *sv = in.value + o * l.n;
    const double *sw = kWeighted ? in.weight + o * l.n : nullptr;
    for (std::size_t i = 0; i < nOut; ++i) {
      double v = 0.0, w = 0.0;
      for (std::size_t t = taps.first[i]; t < taps.first[i + 1]; ++t) {
        const int j = taps.index[t];
        const double c = taps.weight[t];
        if constexpr (kWeighted) {
          if (sw[j] != 0.0) {
            v += c * sv[j];
            w += c * sw[j];
          }
        } else if (!isMissing(sv[j])) {
          v += c * sv[j];
          w += c;
        }
      }
      outValue[o * nOut + i] = v;
      outWeight[o * nOut + i] = w;
    }
  }
}

template <bool kWeighted>
void pass(Sums in, const Layout &l, const TapTable &taps, double *outValue, double *outWeight,
          int nthread) {
  if (l.inner == 1) return linePass<kWeighted>(in, l, taps, outValue, outWeight, nthread);
  const std::size_t nOut = taps.first.size() - 1;
#pragma omp parallel for num_threads(nthread) collapse(2) schedule(static)
  for (std::size_t o = 0; o < l.outer; ++o)
    for (std::size_t i = 0; i < nOut; ++i) {
      double *dv = outValue + (o * nOut + i) * l.inner;
      double *dw = outWeight + (o * nOut + i) * l.inner;
      std::fill(dv, dv + l.inner, 0.0);
      std::fill(dw, dw + l.inner, 0.0);
      for (std::size_t t = taps.first[i]; t < taps.first[i + 1]; ++t) {
        const std::size_t from = (o * l.n + static_cast<std::size_t>(taps.index[t])) * l.inner;
        const double *sv = in.value + from;
        const double c = taps.weight[t];
        if constexpr (kWeighted) {
          const double *sw = in.weight + from;
          for (std::size_t q = 0; q < l.inner; ++q)
            if (sw[q] != 0.0) {
              dv[q] += c * sv[q];
              dw[q] += c * sw[q];
            }
        } else {
          for (std::size_t q = 0; q < l.inner; ++q)
            if (!isMissing(sv[q])) {
              dv[q] += c * sv[q];
              dw[q] += c;
            }
        }
      }
    }
}

}  // namespace

TapTable reductionTaps(int n, int k, const double *w, int shift, int nOut) {
  TapTable t;
  t.first.reserve(static_cast<std::size_t>(nOut) + 1);
  t.first.push_back(0);
  for (int i = 0; i < nOut; ++i) {
    const long long c = shift + static_cast<long long>(i) * k;
    for (int d = -k; d <= k; ++d)
      if (c + d >= 0 && c + d < n) {
        t.index.push_back(static_cast<int>(c + d));
        t.weight.push_back(w[std::abs(d)]);
      }
    t.first.push_back(t.index.size());
  }
  return t;
}

TapTable expansionTaps(int n, int k, const double *w, int nOut) {
  TapTable t;
  t.first.reserve(static_cast<std::size_t>(nOut) + 1);
  t.first.push_back(0);
  for (int i = 0; i < nOut; ++i) {
    // Coarse nodes j with j k in [i - k, i + k].
    const long long jmin = std::max(0LL, (i + k - 1LL) / k - 1);
    const long long jmax = std::min(n - 1LL, i / k + 1LL);
    for (long long j = jmin; j <= jmax; ++j) {
      const long long d = std::llabs(i - j * k);
      if (d > k) continue;
      t.index.push_back(static_cast<int>(j));
      t.weight.push_back(k * w[d]);
    }
    t.first.push_back(t.index.size());
  }
  return t;
}

void filterSeparable(std::span<const double> in, Dims inDims,
                     const std::array<const TapTable *, 3> &taps, double *out, double *outWeight,
                     double minWeight, int nthread) {
  int last = -1;
  for (int a = 0; a < 3; ++a)
    if (taps[a] != nullptr) last = a;
  if (last < 0) {
    std::copy(in.begin(), in.end(), out);
    for (std::size_t i = 0; i < in.size(); ++i) outWeight[i] = isMissing(in[i]) ? 0.0 : 1.0;
    return;
  }
  std::vector<double> buffer[2][2];  // [grid][value or weight]
  Sums current{in.data(), nullptr};
  Dims dims = inDims;
  for (int a = 0, used = 0; a <= last; ++a) {
    if (taps[a] == nullptr) continue;
    const Layout l = layoutAlong(dims, a);
    dims[a] = taps[a]->first.size() - 1;
    double *value = out, *weight = outWeight;
    if (a != last) {
      auto &b = buffer[used % 2];
      const std::size_t size = dims[0] * dims[1] * dims[2];
      b[0].resize(size);
      b[1].resize(size);
      value = b[0].data();
      weight = b[1].data();
    }
    if (current.weight == nullptr)
      pass<false>(current, l, *taps[a], value, weight, nthread);
    else
      pass<true>(current, l, *taps[a], value, weight, nthread);
    current = Sums{value, weight};
    ++used;
  }
  const std::size_t size = dims[0] * dims[1] * dims[2];
#pragma omp parallel for num_threads(nthread) schedule(static)
  for (std::size_t i = 0; i < size; ++i)
    out[i] = (outWeight[i] > 0.0 && outWeight[i] >= minWeight) ? out[i] / outWeight[i]
                                                               : NUVO_MISSING_VALUE;
}

}  // namespace nuvo
