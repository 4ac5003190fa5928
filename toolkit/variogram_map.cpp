// Experimental variogram map over a box of lags.
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <initializer_list>

#include "nuvo_variogram.h"
#include "toolkit/lag_pairs.hpp"

namespace nuvo {
namespace {

constexpr int kInvalidLag = -2011;

struct LagRange {
  int min, max, step;
  int count() const { return (max - min) / step + 1; }
};

// Checks one axis's lags against the grid size n; the step is 1 for a single lag.
int checkLags(LagRange *r, int n) {
  if (std::abs(r->min) >= n || std::abs(r->max) >= n) return kInvalidLag;
  if (r->min == r->max) r->step = 1;
  return 0;
}

}  // namespace
}  // namespace nuvo

extern "C" int NUVOImageVariogram(const nuvo_image *image, nuvo_image *map, int iv, int hxMin,
                                  int hxMax, int hxStep, int hyMin, int hyMax, int hyStep,
                                  int hzMin, int hzMax, int hzStep, signed char progressFlag) {
  using nuvo::LagRange;
  if (iv < 0 || iv >= image->nvar) return -1100;
  const nuvo_grid &g = *image->grid;
  LagRange x{hxMin, hxMax, hxStep}, y{hyMin, hyMax, hyStep}, z{hzMin, hzMax, hzStep};
  if (int rc = nuvo::checkLags(&x, g.nx); rc != 0) return rc;
  if (int rc = nuvo::checkLags(&y, g.ny); rc != 0) return rc;
  if (int rc = nuvo::checkLags(&z, g.nz); rc != 0) return rc;
  for (const LagRange *r : {&x, &y, &z})
    if (r->min > r->max || r->step < 1) return nuvo::kInvalidLag;
  const int mx = x.count(), my = y.count(), mz = z.count();
  const int nlag = mx * my * mz;  // each count is below the grid size: no overflow

  if (int rc = NUVOMallocImage(map, nlag, 1); rc != 0) return rc;
  nuvo_grid &mg = *map->grid;
  mg.nx = mx;
  mg.ny = my;
  mg.nz = mz;
  mg.sx = x.step * g.sx;
  mg.sy = y.step * g.sy;
  mg.sz = z.step * g.sz;
  mg.ox = x.min * g.sx - 0.5 * mg.sx;
  mg.oy = y.min * g.sy - 0.5 * mg.sy;
  mg.oz = z.min * g.sz - 0.5 * mg.sz;
  mg.nxy = mx * my;
  mg.nxyz = nlag;
  map->nvar = 1;
  map->nxyzv = nlag;
  std::snprintf(map->varName[0], 128, "%.117s_variogram", image->varName[iv]);

  const double *v = image->var + static_cast<long long>(iv) * g.nxyz;
  const auto squaredDifference = [](double a, double b) { return (a - b) * (a - b); };
  int done = 0, lastPrinted = 0;
  for (int kz = 0; kz < mz; ++kz)
    for (int ky = 0; ky < my; ++ky)
      for (int kx = 0; kx < mx; ++kx) {
        const nuvo::LagSum s = nuvo::sumOverLag(g, v, x.min + kx * x.step, y.min + ky * y.step,
                                                z.min + kz * z.step, squaredDifference);
        map->var[done] = s.pairs > 0 ? s.sum * 0.5 / s.pairs : NUVO_MISSING_VALUE;
        ++done;
        if (progressFlag) {
          const int p = static_cast<int>(done * (100.0 / nlag));
          if (p > lastPrinted) {
            std::printf("Progress: %3d %%\n", p);
            lastPrinted = p;
          }
        }
      }
  return 0;
}
