// Approximate variogram ranges of a training-image variable along the axes.
#include <algorithm>
#include <vector>

#include "foundation/check.hpp"
#include "nuvo_variogram.h"
#include "toolkit/lag_pairs.hpp"

namespace nuvo {
namespace {

constexpr double kSillFraction = 0.95;
constexpr int kNotApplicable = -1061;

// First lag along `axis` at which the variogram of the values seen through
// `transform` reaches kSillFraction of `sill`; the largest lag when none does.
template <typename Transform>
double axisRange(const nuvo_grid &g, const double *v, int axis, double sill, Transform &&t) {
  const int n = axis == 0 ? g.nx : axis == 1 ? g.ny : g.nz;
  const auto squared = [&](double a, double b) {
    const double d = t(a) - t(b);
    return d * d;
  };
  for (int h = 1; h < n; ++h) {
    const LagSum s =
        sumOverLag(g, v, axis == 0 ? h : 0, axis == 1 ? h : 0, axis == 2 ? h : 0, squared);
    if (s.pairs > 0 && 0.5 * s.sum / s.pairs >= kSillFraction * sill) return h;
  }
  return n - 1;
}

template <typename Transform>
void ranges(const nuvo_grid &g, const double *v, double sill, Transform &&t, double r[3]) {
  for (int axis = 0; axis < 3; ++axis) r[axis] = axisRange(g, v, axis, sill, t);
}

int continuousRanges(const nuvo_grid &g, const double *v, double r[3]) {
  double sum = 0.0, sum2 = 0.0;
  long long n = 0;
  for (int i = 0; i < g.nxyz; ++i) {
    if (v[i] == NUVO_MISSING_VALUE) continue;
    sum += v[i];
    sum2 += v[i] * v[i];
    ++n;
  }
  if (n < 2) return kNotApplicable;
  const double mean = sum / n;
  const double variance = sum2 / n - mean * mean;
  if (!(variance > 0.0)) return kNotApplicable;
  ranges(
      g, v, variance, [](double a) { return a; }, r);
  return 0;
}

int categoricalRanges(const nuvo_grid &g, const double *v, double r[3]) {
  std::vector<double> values;
  for (int i = 0; i < g.nxyz; ++i)
    if (v[i] != NUVO_MISSING_VALUE) values.push_back(v[i]);
  if (values.size() < 2) return kNotApplicable;
  std::sort(values.begin(), values.end());
  const double n = static_cast<double>(values.size());
  double weightSum = 0.0;
  std::fill(r, r + 3, 0.0);
  for (auto first = values.begin(); first != values.end();) {
    const auto last = std::upper_bound(first, values.end(), *first);
    const double p = (last - first) / n;
    const double sill = p * (1.0 - p);
    if (sill > 0.0) {
      const double category = *first;
      double rk[3];
      ranges(
          g, v, sill, [category](double a) { return a == category ? 1.0 : 0.0; }, rk);
      for (int axis = 0; axis < 3; ++axis) r[axis] += sill * rk[axis];
      weightSum += sill;
    }
    first = last;
  }
  if (weightSum == 0.0) return kNotApplicable;
  for (int axis = 0; axis < 3; ++axis) r[axis] /= weightSum;
  return 0;
}

}  // namespace
}  // namespace nuvo

extern "C" int NUVOComputeVariogramRangeApprox(const nuvo_image *ti, int iv,
                                               signed char categorical, double *rx, double *ry,
                                               double *rz) {
  if (iv < 0 || iv >= ti->nvar) return -1100;
  return nuvo::guardedCall([&] {
    const nuvo_grid &g = *ti->grid;
    const double *v = ti->var + static_cast<long long>(iv) * g.nxyz;
    double r[3];
    NUVO_TRY(categorical ? nuvo::categoricalRanges(g, v, r) : nuvo::continuousRanges(g, v, r));
    *rx = r[0];
    *ry = r[1];
    *rz = r[2];
    return 0;
  });
}
