// The pair walk shared by every lag statistic: the pairs of nodes (i, i + h) of
// an image variable at one lag h, and the sums over them used by the variogram
// map and the range estimates.
#pragma once

#include <cstdlib>

#include "nuvo_image.h"

namespace nuvo {

// Calls visit(v[i], v[i + h]) for every node i whose partner i + h lies inside
// the grid, i running x fastest. The first node runs over rows of x with a fixed
// partner offset, so the inner loop walks memory straight and nothing is copied.
// `v` holds one value per node: an image variable, or a map derived from one.
template <typename T, typename Visit>
void forEachLagPair(const nuvo_grid &g, const T *v, int hx, int hy, int hz, Visit &&visit) {
  const int lx = g.nx - std::abs(hx), ly = g.ny - std::abs(hy), lz = g.nz - std::abs(hz);
  if (lx <= 0 || ly <= 0 || lz <= 0) return;
  const long long offset =
      hx + static_cast<long long>(g.nx) * hy + static_cast<long long>(g.nxy) * hz;
  const int x0 = hx < 0 ? -hx : 0, y0 = hy < 0 ? -hy : 0, z0 = hz < 0 ? -hz : 0;
  for (int z = z0; z < z0 + lz; ++z)
    for (int y = y0; y < y0 + ly; ++y) {
      const T *tail = v + x0 + static_cast<long long>(g.nx) * y + static_cast<long long>(g.nxy) * z;
      const T *head = tail + offset;
      for (int x = 0; x < lx; ++x) visit(tail[x], head[x]);
    }
}

// True when both values of a pair are informed. The statistics below take every
// pair and let this flag zero the uninformed ones instead of branching on it: the
// pair walk then runs without a mispredicted branch at each missing value, and
// adding a zero leaves a sum as it was.
inline bool informedPair(double a, double b) {
  return (a != NUVO_MISSING_VALUE) & (b != NUVO_MISSING_VALUE);
}

struct LagSum {
  double sum = 0.0;  // sum of the pair statistic
  long long pairs = 0;
};

// Sums stat(v(i), v(i + h)) over the pairs of informed values at lag h.
template <typename PairStat>
LagSum sumOverLag(const nuvo_grid &g, const double *v, int hx, int hy, int hz, PairStat &&stat) {
  LagSum r;
  forEachLagPair(g, v, hx, hy, hz, [&](double a, double b) {
    const bool informed = informedPair(a, b);
    const double s = stat(a, b);
    r.sum += informed ? s : 0.0;
    r.pairs += informed;
  });
  return r;
}

}  // namespace nuvo
