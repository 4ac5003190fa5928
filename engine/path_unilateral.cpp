// Unilateral paths: entries ordered along the grid axes by rank, with sections of
// the unranked coordinates visited at random.
#include <algorithm>
#include <array>
#include <cstdlib>
#include <vector>

#include "engine/path_grid.hpp"
#include "foundation/check.hpp"
#include "nuvo_path.h"

namespace nuvo {
namespace {

constexpr int kAxes = 4;  // x, y, z, variable

// Position of an entry along each axis, from its index v*nxyz + k.
std::array<int, kAxes> coordinatesOf(const PathGrid &g, int entry) {
  std::array<int, kAxes> c{};
  c[3] = entry / g.nxyz();
  g.coordinates(entry - c[3] * g.nxyz(), &c[0], &c[1], &c[2]);
  return c;
}

// Section key of an entry: the coordinates of non-zero rank, the rank-1 axis with
// weight 1, the next with the extent of the first, and so on; a negative rank
// counts its axis backwards.
class SectionKey {
 public:
  SectionKey(const PathGrid &g, const int *order) : grid_(g), extent_{g.nx, g.ny, g.nz, g.nvar} {
    std::array<int, kAxes> axes{0, 1, 2, 3};
    std::stable_sort(axes.begin(), axes.end(),
                     [&](int a, int b) { return std::abs(order[a]) < std::abs(order[b]); });
    sections_ = 1;
    for (int a : axes) {
      sign_[a] = order[a] > 0 ? 1 : (order[a] < 0 ? -1 : 0);
      weight_[a] = sections_;
      if (sign_[a] != 0) sections_ *= extent_[a];
    }
  }

  // Number of distinct keys; at most the number of entries of the grid.
  int sections() const { return sections_; }
  bool hasRandomAxis() const { return std::count(sign_.begin(), sign_.end(), 0) > 0; }

  int operator()(int entry) const {
    std::array<int, kAxes> c = coordinatesOf(grid_, entry);
    int key = 0;
    for (int a = 0; a < kAxes; ++a) {
      if (sign_[a] == 0) continue;
      key += weight_[a] * (sign_[a] > 0 ? c[a] : extent_[a] - 1 - c[a]);
    }
    return key;
  }

 private:
  PathGrid grid_;
  std::array<int, kAxes> extent_;
  std::array<int, kAxes> sign_{};
  std::array<int, kAxes> weight_{};
  int sections_ = 1;
};

// Shuffle, then a stable counting sort by section: linear in n plus the sections.
int unilateral(int n, int *entries, const PathGrid &g, const int *order, nuvo_randContext *ctx) {
  NUVO_TRY(checkPathGrid(g));
  if (n < 2) return 0;
  SectionKey key(g, order);
  if (key.hasRandomAxis()) NUVO_TRY(NUVOPathRandom(n, entries, ctx));
  if (key.sections() == 1) return 0;
  return guardedCall([&] {
    std::vector<int> keys(n);
    std::vector<int> start(static_cast<std::size_t>(key.sections()) + 1, 0);
    for (int i = 0; i < n; ++i) {
      keys[i] = key(entries[i]);
      ++start[keys[i] + 1];
    }
    for (int s = 0; s < key.sections(); ++s) start[s + 1] += start[s];
    std::vector<int> sorted(n);
    for (int i = 0; i < n; ++i) sorted[start[keys[i]]++] = entries[i];
    std::copy(sorted.begin(), sorted.end(), entries);
    return 0;
  });
}

}  // namespace
}  // namespace nuvo

extern "C" {

int NUVOPathUnilateral3D(int n, int *entries, int nx, int ny, int nz, const int *order,
                         nuvo_randContext *ctx) {
  const int order4[4] = {order[0], order[1], order[2], 0};
  return nuvo::unilateral(n, entries, nuvo::PathGrid{nx, ny, nz, 1, 1.0, 1.0, 1.0}, order4, ctx);
}

int NUVOPathUnilateral4D(int n, int *entries, int nx, int ny, int nz, int nvar, const int *order,
                         nuvo_randContext *ctx) {
  return nuvo::unilateral(n, entries, nuvo::PathGrid{nx, ny, nz, nvar, 1.0, 1.0, 1.0}, order, ctx);
}

}  // extern "C"
