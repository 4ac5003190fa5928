// Experimental variogram map over a box of lags.
#include "nuvo_variogram.h"
#include "toolkit/lag_map.hpp"
#include "toolkit/lag_pairs.hpp"

extern "C" int NUVOImageVariogram(const nuvo_image *image, nuvo_image *map, int iv, int hxMin,
                                  int hxMax, int hxStep, int hyMin, int hyMax, int hyStep,
                                  int hzMin, int hzMax, int hzStep, signed char progressFlag) {
  const auto variogram = [](const nuvo_grid &g, const double *v) -> nuvo::LagValue {
    return [&g, v](int hx, int hy, int hz) {
      const nuvo::LagSum s =
          nuvo::sumOverLag(g, v, hx, hy, hz, [](double a, double b) { return (a - b) * (a - b); });
      return s.pairs > 0 ? s.sum * 0.5 / s.pairs : NUVO_MISSING_VALUE;
    };
  };
  return nuvo::buildLagMap(*image, map, iv, {hxMin, hxMax, hxStep}, {hyMin, hyMax, hyStep},
                           {hzMin, hzMax, hzStep}, progressFlag, "_variogram", variogram);
}
