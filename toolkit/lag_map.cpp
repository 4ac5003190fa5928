// The frame shared by the lag-map functions (see lag_map.hpp).
#include "toolkit/lag_map.hpp"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <initializer_list>

#include "foundation/check.hpp"
#include "nuvo_text.h"

namespace nuvo {
namespace {

constexpr int kInvalidLag = -2011;

int count(const LagRange &r) {
  return (r.max - r.min) / r.step + 1;
}

// Checks one axis's lags against the grid size n; the step is 1 for a single lag.
int checkLags(LagRange *r, int n) {
  if (std::abs(r->min) >= n || std::abs(r->max) >= n) return kInvalidLag;
  if (r->min == r->max) r->step = 1;
  return 0;
}

// The map's grid: one node per lag, the centre of node (0, 0, 0) at the physical
// lag vector of the smallest lags, so that a lag of 0 sits on a node centre.
void layOut(const nuvo_grid &g, const LagRange &x, const LagRange &y, const LagRange &z,
            nuvo_grid *mg) {
  mg->nx = count(x);
  mg->ny = count(y);
  mg->nz = count(z);
  mg->sx = x.step * g.sx;
  mg->sy = y.step * g.sy;
  mg->sz = z.step * g.sz;
  mg->ox = x.min * g.sx - 0.5 * mg->sx;
  mg->oy = y.min * g.sy - 0.5 * mg->sy;
  mg->oz = z.min * g.sz - 0.5 * mg->sz;
  mg->nxy = mg->nx * mg->ny;
  mg->nxyz = mg->nxy * mg->nz;
}

}  // namespace

int buildLagMap(const nuvo_image &image, nuvo_image *map, int iv, LagRange x, LagRange y,
                LagRange z, signed char progressFlag, const char *suffix,
                const LagStatistic &statistic) {
  NUVO_FAIL_IF(iv < 0 || iv >= image.nvar, -1100);
  const nuvo_grid &g = *image.grid;
  NUVO_TRY(checkLags(&x, g.nx));
  NUVO_TRY(checkLags(&y, g.ny));
  NUVO_TRY(checkLags(&z, g.nz));
  for (const LagRange *r : {&x, &y, &z}) NUVO_FAIL_IF(r->min > r->max || r->step < 1, kInvalidLag);
  // Each count is below the grid size along its axis, so their product fits.
  const int nlag = count(x) * count(y) * count(z);

  return guardedCall([&] {
    const double *v = image.var + static_cast<long long>(iv) * g.nxyz;
    const LagValue valueAt = statistic(g, v);
    NUVO_TRY(NUVOMallocImage(map, nlag, 1));
    layOut(g, x, y, z, map->grid);
    map->nvar = 1;
    map->nxyzv = nlag;
    const int room = NUVO_VAR_NAME_MAX - static_cast<int>(std::strlen(suffix));
    std::snprintf(map->varName[0], NUVO_VAR_NAME_MAX + 1, "%.*s%s", room, image.varName[iv],
                  suffix);

    int done = 0, lastPrinted = 0;
    for (int kz = 0; kz < map->grid->nz; ++kz)
      for (int ky = 0; ky < map->grid->ny; ++ky)
        for (int kx = 0; kx < map->grid->nx; ++kx) {
          map->var[done] = valueAt(x.min + kx * x.step, y.min + ky * y.step, z.min + kz * z.step);
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
  });
}

}  // namespace nuvo
