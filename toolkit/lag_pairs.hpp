// Sums over the pairs of nodes (i, i + h) of an image variable at one lag h,
// shared by the variogram map and the range estimates.
#pragma once

#include <cstdlib>

#include "nuvo_image.h"

namespace nuvo {

struct LagSum {
  double sum = 0.0;  // sum of the pair statistic
  long long pairs = 0;
};

// Sums stat(v(i), v(i + h)) over the pairs with both nodes inside the grid and
// both values informed. The first node runs over rows of x with a fixed partner
// offset, so the inner loop walks memory straight.
template <typename PairStat>
LagSum sumOverLag(const nuvo_grid &g, const double *v, int hx, int hy, int hz, PairStat &&stat) {
  LagSum r;
  const int lx = g.nx - std::abs(hx), ly = g.ny - std::abs(hy), lz = g.nz - std::abs(hz);
  if (lx <= 0 || ly <= 0 || lz <= 0) return r;
  const long long offset =
      hx + static_cast<long long>(g.nx) * hy + static_cast<long long>(g.nxy) * hz;
  const int x0 = hx < 0 ? -hx : 0, y0 = hy < 0 ? -hy : 0, z0 = hz < 0 ? -hz : 0;
  for (int z = z0; z < z0 + lz; ++z)
    for (int y = y0; y < y0 + ly; ++y) {
      const double *row =
          v + x0 + static_cast<long long>(g.nx) * y + static_cast<long long>(g.nxy) * z;
      for (int x = 0; x < lx; ++x) {
        const double a = row[x], b = row[x + offset];
        if (a == NUVO_MISSING_VALUE || b == NUVO_MISSING_VALUE) continue;
        r.sum += stat(a, b);
        ++r.pairs;
      }
    }
  return r;
}

}  // namespace nuvo
