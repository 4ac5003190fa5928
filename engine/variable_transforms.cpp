#include "engine/variable_transforms.hpp"

#include <cmath>
#include <cstdint>
#include <numbers>

#include "foundation/check.hpp"

namespace nuvo {
namespace {

// Acklam's approximation for 0 < p <= 0.5, before refinement.
double acklamLowerHalf(double p) {
  static constexpr double a[] = {-3.969683028665376e+01, 2.209460984245205e+02,
                                 -2.759285104469687e+02, 1.383577518672690e+02,
                                 -3.066479806614716e+01, 2.506628277459239e+00};
  static constexpr double b[] = {-5.447609879822406e+01, 1.615858368580409e+02,
                                 -1.556989798598866e+02, 6.680131188771972e+01,
                                 -1.328068155288572e+01};
  static constexpr double c[] = {-7.784894002430293e-03, -3.223964580411365e-01,
                                 -2.400758277161838e+00, -2.549732539343734e+00,
                                 4.374664141464968e+00,  2.938163982698783e+00};
  static constexpr double d[] = {7.784695709041462e-03, 3.224671290700398e-01,
                                 2.445134137142996e+00, 3.754408661907416e+00};
  if (p < 0.02425) {
    const double q = std::sqrt(-2.0 * std::log(p));
    return (((((c[0] * q + c[1]) * q + c[2]) * q + c[3]) * q + c[4]) * q + c[5]) /
           ((((d[0] * q + d[1]) * q + d[2]) * q + d[3]) * q + 1.0);
  }
  const double q = p - 0.5;
  const double r = q * q;
  return (((((a[0] * r + a[1]) * r + a[2]) * r + a[3]) * r + a[4]) * r + a[5]) * q /
         (((((b[0] * r + b[1]) * r + b[2]) * r + b[3]) * r + b[4]) * r + 1.0);
}

double refinedLowerHalf(double p) {
  const double x = acklamLowerHalf(p);
  const double e = 0.5 * std::erfc(-x / std::numbers::sqrt2) - p;
  const double u = e * std::sqrt(2.0 * std::numbers::pi) * std::exp(0.5 * x * x);
  return x - u / (1.0 + 0.5 * x * u);
}

}  // namespace

double standardNormalQuantile(double p) {
  if (p <= 0.0) return -HUGE_VAL;
  if (p >= 1.0) return HUGE_VAL;
  return p <= 0.5 ? refinedLowerHalf(p) : -refinedLowerHalf(1.0 - p);
}

std::vector<double> normalizedValues(const VariableMeasure &m, int type) {
  const std::size_t n = m.value.size();
  std::vector<double> y(n, 0.0);
  if (n < 2) return y;
  std::int64_t total = 0;
  for (std::int64_t c : m.count) total += c;
  const double t = static_cast<double>(total);
  std::int64_t below = 0;  // training nodes holding a smaller value
  for (std::size_t i = 0; i < n; ++i) {
    const double c = static_cast<double>(m.count[i]);
    const double step = static_cast<double>(below);
    if (type == NORMALIZING_UNIFORM)
      y[i] = (step + static_cast<double>(i) / static_cast<double>(n - 1) * c) / t;
    else
      y[i] = standardNormalQuantile((step + 0.5 * c) / t);
    below += m.count[i];
  }
  return y;
}

bool isNormalized(const nuvo_simInput &si, int v) {
  return si.normalizingType != NORMALIZING_LINEAR && si.distanceType[v] != 0 &&
         si.relativeDistanceFlag[v] == 0;
}

LinearMap rescalingMap(const nuvo_simInput &si, const nuvo_image *trainImage, int v) {
  const int mode = si.rescalingMode[v];
  if (mode == RESCALING_NONE) return {};
  std::int64_t count = 0;
  double sum = 0.0, lo = HUGE_VAL, hi = -HUGE_VAL;
  for (int t = 0; t < si.ntrainImage; ++t) {
    int n = 0;
    double mn = 0.0, mx = 0.0, range = 0.0, mean = 0.0;
    NUVOGetImageOneVarValueRange(&trainImage[t], v, &n, &mn, &mx, &range);
    if (n == 0) continue;
    NUVOGetImageOneVarValueMean(&trainImage[t], v, &mean);
    count += n;
    sum += mean * n;
    lo = std::fmin(lo, mn);
    hi = std::fmax(hi, mx);
  }
  // An empty or constant variable is refused later by the data preparation.
  if (count == 0 || !(hi > lo)) return {};
  if (mode == RESCALING_MIN_MAX) {
    const double a = (si.rescalingTargetMax[v] - si.rescalingTargetMin[v]) / (hi - lo);
    return {a, si.rescalingTargetMin[v] - a * lo};
  }
  const double a = si.rescalingTargetLength[v] / (hi - lo);
  return {a, si.rescalingTargetMean[v] - a * (sum / static_cast<double>(count))};
}

int rescaleTrainCopies(const nuvo_simInput &si, nuvo_image *copies) {
  for (int v = 0; v < si.nvar; ++v) {
    if (si.rescalingMode[v] == RESCALING_NONE) continue;
    const LinearMap map = rescalingMap(si, si.trainImage, v);
    for (int t = 0; t < si.ntrainImage; ++t)
      if (!si.simGridAsTiFlag[t])
        NUVO_TRY(NUVOTransformLinearImageVar(&copies[t], v, map.a, map.b));
  }
  return 0;
}

}  // namespace nuvo
