// The simulation grid as the path functions see it: node counts, variables and
// cell sizes, and the check of its sizes.
#pragma once

#include <limits>

namespace nuvo {

struct PathGrid {
  int nx, ny, nz, nvar;
  double sx, sy, sz;

  int nxy() const { return nx * ny; }
  int nxyz() const { return nx * ny * nz; }

  // Node coordinates of node k.
  void coordinates(int k, int *ix, int *iy, int *iz) const {
    *iz = k / nxy();
    int rest = k - *iz * nxy();
    *iy = rest / nx;
    *ix = rest - *iy * nx;
  }
};

// -3 when a count is zero or negative, -610 when nx*ny*nz*nvar does not fit in 32 bits.
inline int checkPathGrid(const PathGrid &g) {
  if (g.nx <= 0 || g.ny <= 0 || g.nz <= 0 || g.nvar <= 0) return -3;
  long long entries = static_cast<long long>(g.nx) * g.ny * g.nz * g.nvar;
  if (entries > std::numeric_limits<int>::max()) return -610;
  return 0;
}

}  // namespace nuvo
