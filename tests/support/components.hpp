// Connected components of the nodes of a grid, by a flood fill of the test's own.
#pragma once

#include <vector>

namespace nuvo_test {

// The component of every node k of an nx x ny x nz grid for which in(k) holds,
// two nodes being neighbours when they differ by at most 1 along each axis in at
// most type + 1 axes (type 0: faces, 1: and edges, 2: and corners); -1 elsewhere.
template <typename In>
std::vector<int> components(int nx, int ny, int nz, int type, In in) {
  const int nxyz = nx * ny * nz;
  std::vector<int> comp(nxyz, -1);
  int next = 0;
  for (int seed = 0; seed < nxyz; ++seed) {
    if (!in(seed) || comp[seed] >= 0) continue;
    std::vector<int> stack{seed};
    comp[seed] = next;
    while (!stack.empty()) {
      const int k = stack.back();
      stack.pop_back();
      const int x = k % nx, y = k / nx % ny, z = k / (nx * ny);
      for (int dz = -1; dz <= 1; ++dz)
        for (int dy = -1; dy <= 1; ++dy)
          for (int dx = -1; dx <= 1; ++dx) {
            const int moved = (dx != 0) + (dy != 0) + (dz != 0);
            const int xx = x + dx, yy = y + dy, zz = z + dz;
            if (moved == 0 || moved > type + 1 || xx < 0 || yy < 0 || zz < 0 || xx >= nx ||
                yy >= ny || zz >= nz)
              continue;
            const int n = xx + nx * (yy + ny * zz);
            if (!in(n) || comp[n] >= 0) continue;
            comp[n] = next;
            stack.push_back(n);
          }
    }
    ++next;
  }
  return comp;
}

}  // namespace nuvo_test
