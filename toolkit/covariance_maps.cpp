// Covariance, non-centred covariance and correlogram maps over a box of lags:
// three readings of the same moments of the pairs at each lag.
#include <cmath>

#include "data/values.hpp"
#include "nuvo_variogram.h"
#include "toolkit/lag_map.hpp"
#include "toolkit/lag_pairs.hpp"

namespace nuvo {
namespace {

// Sums over the pairs (a, b) = (v(i) - shift, v(i + h) - shift) of one lag.
struct PairMoments {
  double a = 0.0, b = 0.0, aa = 0.0, bb = 0.0, ab = 0.0;
  long long n = 0;
};

PairMoments momentsAt(const nuvo_grid &g, const double *v, double shift, int hx, int hy, int hz) {
  PairMoments m;
  forEachLagPair(g, v, hx, hy, hz, [&](double a, double b) {
    // An uninformed pair becomes (0, 0), which adds nothing to the sums.
    const bool informed = informedPair(a, b);
    a = informed ? a - shift : 0.0;
    b = informed ? b - shift : 0.0;
    m.a += a;
    m.b += b;
    m.aa += a * a;
    m.bb += b * b;
    m.ab += a * b;
    m.n += informed;
  });
  return m;
}

// Mean of the informed values, 0 when there is none. Centred statistics do not
// depend on a shift of the values, so the pairs are summed around this mean: the
// difference of products that gives a covariance then loses no digits to a large
// common offset of the values.
double informedMean(const nuvo_grid &g, const double *v) {
  const InformedSummary s = summarizeInformed({v, static_cast<std::size_t>(g.nxyz)});
  return s.n > 0 ? s.mean() : 0.0;
}

double covariance(const PairMoments &m) {
  return m.ab / m.n - (m.a / m.n) * (m.b / m.n);
}

// A statistic of the moments summed around `shift` (the mean when `centred`).
template <typename FromMoments>
LagStatistic momentStatistic(bool centred, FromMoments fromMoments) {
  return [centred, fromMoments](const nuvo_grid &g, const double *v) -> LagValue {
    const double shift = centred ? informedMean(g, v) : 0.0;
    return [&g, v, shift, fromMoments](int hx, int hy, int hz) {
      const PairMoments m = momentsAt(g, v, shift, hx, hy, hz);
      return m.n > 0 ? fromMoments(m) : NUVO_MISSING_VALUE;
    };
  };
}

}  // namespace
}  // namespace nuvo

extern "C" int NUVOImageCovariance(const nuvo_image *image, nuvo_image *map, int iv, int hxMin,
                                   int hxMax, int hxStep, int hyMin, int hyMax, int hyStep,
                                   int hzMin, int hzMax, int hzStep, signed char progressFlag) {
  return nuvo::buildLagMap(*image, map, iv, {hxMin, hxMax, hxStep}, {hyMin, hyMax, hyStep},
                           {hzMin, hzMax, hzStep}, progressFlag, "_covariance",
                           nuvo::momentStatistic(true, nuvo::covariance));
}

extern "C" int NUVOImageCovarianceNotCentred(const nuvo_image *image, nuvo_image *map, int iv,
                                             int hxMin, int hxMax, int hxStep, int hyMin, int hyMax,
                                             int hyStep, int hzMin, int hzMax, int hzStep,
                                             signed char progressFlag) {
  return nuvo::buildLagMap(
      *image, map, iv, {hxMin, hxMax, hxStep}, {hyMin, hyMax, hyStep}, {hzMin, hzMax, hzStep},
      progressFlag, "_covarianceNotCentred",
      nuvo::momentStatistic(false, [](const nuvo::PairMoments &m) { return m.ab / m.n; }));
}

extern "C" int NUVOImageCorrelogram(const nuvo_image *image, nuvo_image *map, int iv, int hxMin,
                                    int hxMax, int hxStep, int hyMin, int hyMax, int hyStep,
                                    int hzMin, int hzMax, int hzStep, signed char progressFlag) {
  const auto correlation = [](const nuvo::PairMoments &m) {
    const double ma = m.a / m.n, mb = m.b / m.n;
    const double va = m.aa / m.n - ma * ma, vb = m.bb / m.n - mb * mb;
    if (!(va > 0.0 && vb > 0.0)) return NUVO_MISSING_VALUE;
    return nuvo::covariance(m) / std::sqrt(va * vb);
  };
  return nuvo::buildLagMap(*image, map, iv, {hxMin, hxMax, hxStep}, {hyMin, hyMax, hyStep},
                           {hzMin, hzMax, hzStep}, progressFlag, "_correlogram",
                           nuvo::momentStatistic(true, correlation));
}
