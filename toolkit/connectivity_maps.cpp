// Connectivity-function maps over a box of lags, one per neighbourhood of the
// geobodies: the share of the pairs of class nodes that lie in one geobody.
#include "nuvo_variogram.h"
#include "toolkit/geobodies.hpp"
#include "toolkit/lag_map.hpp"
#include "toolkit/lag_pairs.hpp"

namespace nuvo {
namespace {

// The connectivity function for one neighbourhood (see labelGeobodies).
LagStatistic connectivityFunction(int connectivity) {
  return [connectivity](const nuvo_grid &g, const double *v) -> LagValue {
    return [&g, labels = labelGeobodies(g, v, connectivity)](int hx, int hy, int hz) {
      long long both = 0, connected = 0;
      forEachLagPair(g, labels.data(), hx, hy, hz, [&](int a, int b) {
        const bool inside = (a != 0) & (b != 0);
        both += inside;
        connected += inside & (a == b);
      });
      return classShare(connected, both);
    };
  };
}

int connectivityMap(const nuvo_image *image, nuvo_image *map, int iv, LagRange x, LagRange y,
                    LagRange z, signed char progressFlag, int connectivity) {
  const char *suffix[] = {"_connectivity0", "_connectivity1", "_connectivity2"};
  return buildLagMap(*image, map, iv, x, y, z, progressFlag, suffix[connectivity],
                     connectivityFunction(connectivity));
}

}  // namespace
}  // namespace nuvo

extern "C" int NUVOImageConnectivityFunction0(const nuvo_image *image, nuvo_image *map, int iv,
                                              int hxMin, int hxMax, int hxStep, int hyMin,
                                              int hyMax, int hyStep, int hzMin, int hzMax,
                                              int hzStep, signed char progressFlag) {
  return nuvo::connectivityMap(image, map, iv, {hxMin, hxMax, hxStep}, {hyMin, hyMax, hyStep},
                               {hzMin, hzMax, hzStep}, progressFlag, 0);
}

extern "C" int NUVOImageConnectivityFunction1(const nuvo_image *image, nuvo_image *map, int iv,
                                              int hxMin, int hxMax, int hxStep, int hyMin,
                                              int hyMax, int hyStep, int hzMin, int hzMax,
                                              int hzStep, signed char progressFlag) {
  return nuvo::connectivityMap(image, map, iv, {hxMin, hxMax, hxStep}, {hyMin, hyMax, hyStep},
                               {hzMin, hzMax, hzStep}, progressFlag, 1);
}

extern "C" int NUVOImageConnectivityFunction2(const nuvo_image *image, nuvo_image *map, int iv,
                                              int hxMin, int hxMax, int hxStep, int hyMin,
                                              int hyMax, int hyStep, int hzMin, int hzMax,
                                              int hzStep, signed char progressFlag) {
  return nuvo::connectivityMap(image, map, iv, {hxMin, hxMax, hxStep}, {hyMin, hyMax, hyStep},
                               {hzMin, hzMax, hzStep}, progressFlag, 2);
}
