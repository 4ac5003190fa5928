// Transiogram map over a box of lags: the share of the pairs leaving the class
// (informed, not 0) that land in it again.
#include "nuvo_variogram.h"
#include "toolkit/class_share.hpp"
#include "toolkit/lag_map.hpp"
#include "toolkit/lag_pairs.hpp"

namespace nuvo {
namespace {

LagValue transiogram(const nuvo_grid &g, const double *v) {
  return [&g, v](int hx, int hy, int hz) {
    long long from = 0, to = 0;
    forEachLagPair(g, v, hx, hy, hz, [&](double a, double b) {
      // Pairs from the class to an informed head, and those of them that land
      // in the class.
      const bool leaves = inClass(a) & (b != NUVO_MISSING_VALUE);
      from += leaves;
      to += leaves & (b != 0.0);
    });
    return classShare(to, from);
  };
}

}  // namespace
}  // namespace nuvo

extern "C" int NUVOImageTransiogram(const nuvo_image *image, nuvo_image *map, int iv, int hxMin,
                                    int hxMax, int hxStep, int hyMin, int hyMax, int hyStep,
                                    int hzMin, int hzMax, int hzStep, signed char progressFlag) {
  return nuvo::buildLagMap(*image, map, iv, {hxMin, hxMax, hxStep}, {hyMin, hyMax, hyStep},
                           {hzMin, hzMax, hzStep}, progressFlag, "_transiogram", nuvo::transiogram);
}
