// Connected components by depth-first flood fill on a padded copy of the grid.
#include "toolkit/geobodies.hpp"

#include <cstdlib>

namespace nuvo {

std::vector<int> labelGeobodies(const nuvo_grid &g, const double *v, int connectivity) {
  // One layer of outside nodes around the grid lets every node look at all its
  // neighbours without a bounds test. In the padded grid 0 is outside the class,
  // -1 a class node not labelled yet, and a positive number a label.
  const long long px = g.nx + 2, pxy = px * (g.ny + 2);
  std::vector<int> padded(static_cast<std::size_t>(pxy * (g.nz + 2)), 0);
  const auto paddedIndex = [&](int x, int y, int z) {
    return x + 1 + px * (y + 1) + pxy * (z + 1);
  };
  for (int z = 0, i = 0; z < g.nz; ++z)
    for (int y = 0; y < g.ny; ++y)
      for (int x = 0; x < g.nx; ++x, ++i)
        if (inClass(v[i])) padded[paddedIndex(x, y, z)] = -1;

  // Offsets of the neighbours: the 26 around a node whose number of non-zero
  // coordinates is at most connectivity + 1.
  std::vector<long long> offsets;
  for (int dz = -1; dz <= 1; ++dz)
    for (int dy = -1; dy <= 1; ++dy)
      for (int dx = -1; dx <= 1; ++dx) {
        const int moves = std::abs(dx) + std::abs(dy) + std::abs(dz);
        if (moves > 0 && moves <= connectivity + 1) offsets.push_back(dx + px * dy + pxy * dz);
      }

  std::vector<int> labels(static_cast<std::size_t>(g.nxyz), 0);
  std::vector<long long> stack;
  int nextLabel = 0;
  for (int z = 0, i = 0; z < g.nz; ++z)
    for (int y = 0; y < g.ny; ++y)
      for (int x = 0; x < g.nx; ++x, ++i) {
        const long long start = paddedIndex(x, y, z);
        if (padded[start] == -1) {
          const int label = ++nextLabel;
          padded[start] = label;
          stack.push_back(start);
          while (!stack.empty()) {
            const long long node = stack.back();
            stack.pop_back();
            for (const long long d : offsets)
              if (padded[node + d] == -1) {
                padded[node + d] = label;
                stack.push_back(node + d);
              }
          }
        }
        labels[i] = padded[start];
      }
  return labels;
}

}  // namespace nuvo
