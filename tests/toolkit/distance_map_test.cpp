#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

#include "nuvo_distancemap.h"
#include "nuvo_random.h"
#include "tests/data/data_builders.hpp"
#include "tests/support/random.hpp"

namespace {

nuvo_grid makeGrid(int nx, int ny, int nz, double sx, double sy, double sz) {
  nuvo_grid g = nuvo::test::makeGrid(nx, ny, nz);
  g.sx = sx, g.sy = sy, g.sz = sz;
  return g;
}

// Each node informed with the given probability.
std::vector<signed char> randomMask(int nxyz, double density, int seed) {
  nuvo_randContext ctx = nuvo_test::seededContext(seed);
  std::vector<signed char> mask(nxyz);
  for (auto &m : mask) m = NUVODoubleRand(0, &ctx) < density;
  return mask;
}

enum class Metric { kEuclidean, kL1 };

// Distance to every informed node, kept at its minimum.
std::vector<double> bruteForce(const nuvo_grid &g, const std::vector<signed char> &mask,
                               Metric metric) {
  std::vector<double> d(g.nxyz, std::numeric_limits<double>::infinity());
  for (int k = 0; k < g.nxyz; ++k) {
    int kx = k % g.nx, ky = (k / g.nx) % g.ny, kz = k / g.nxy;
    for (int j = 0; j < g.nxyz; ++j) {
      if (!mask[j]) continue;
      double dx = g.sx * (kx - j % g.nx);
      double dy = g.sy * (ky - (j / g.nx) % g.ny);
      double dz = g.sz * (kz - j / g.nxy);
      double dist = metric == Metric::kEuclidean ? std::sqrt(dx * dx + dy * dy + dz * dz)
                                                 : std::fabs(dx) + std::fabs(dy) + std::fabs(dz);
      d[k] = std::min(d[k], dist);
    }
  }
  return d;
}

struct Case {
  int nx, ny, nz;
  double sx, sy, sz, density;
};

const Case kCases[] = {
    {9, 7, 5, 1.5, 0.7, 2.25, 0.05}, {9, 7, 5, 1.0, 1.0, 1.0, 0.3},
    {13, 1, 6, 0.3, 5.0, 1.1, 0.1},  {1, 11, 8, 2.0, 0.9, 0.4, 0.08},
    {20, 1, 1, 0.6, 1.0, 1.0, 0.15}, {6, 6, 6, 3.0, 0.25, 1.0, 0.01},
    {4, 3, 2, 1.0, 1.0, 1.0, 0.0},  // nothing informed: infinity everywhere
};

TEST(DistanceMap, EuclideanAndL1MatchBruteForce) {
  int seed = 1;
  for (const Case &c : kCases) {
    nuvo_grid g = makeGrid(c.nx, c.ny, c.nz, c.sx, c.sy, c.sz);
    std::vector<signed char> mask = randomMask(g.nxyz, c.density, seed++);
    if (c.density > 0.0) mask[g.nxyz / 2] = 1;  // at least one informed node
    std::vector<double> d(g.nxyz);
    ASSERT_EQ(NUVOEuclideanDistanceMap(&g, mask.data(), d.data()), 0);
    std::vector<double> e = bruteForce(g, mask, Metric::kEuclidean);
    for (int k = 0; k < g.nxyz; ++k) ASSERT_DOUBLE_EQ(d[k], e[k]) << "node " << k;
    ASSERT_EQ(NUVOL1DistanceMap(&g, mask.data(), d.data()), 0);
    e = bruteForce(g, mask, Metric::kL1);
    for (int k = 0; k < g.nxyz; ++k) ASSERT_DOUBLE_EQ(d[k], e[k]) << "node " << k;
  }
}

// A NaN spacing is no valid spacing.
TEST(DistanceMap, RefusesBadGrids) {
  std::vector<signed char> mask(8, 1);
  std::vector<double> d(8);
  nuvo_grid g = makeGrid(2, 2, 2, 1.0, 1.0, 0.0);
  EXPECT_EQ(NUVOL1DistanceMap(&g, mask.data(), d.data()), -606);
  g = makeGrid(2, 2, 2, std::nan(""), 1.0, 1.0);
  EXPECT_EQ(NUVOEuclideanDistanceMap(&g, mask.data(), d.data()), -604);
  g.sx = 1.0;
  g.nx = g.ny = g.nz = 2000;
  EXPECT_EQ(NUVOEuclideanDistanceMap(&g, mask.data(), d.data()), -610);
}

TEST(ImageDistanceMap, InformedNodesAreThoseNotMissing) {
  constexpr double kMissing = nuvo::test::kMissing;
  nuvo::test::TestImage t(5, 1, 1, {"a", "b"},
                          {kMissing, 3.0, kMissing, kMissing, kMissing,  //
                           0.0, kMissing, kMissing, kMissing, -1.0});
  t.image.grid->sx = 2.0;
  std::vector<double> d(5);
  ASSERT_EQ(NUVOImageEuclideanDistanceMap(&t.image, 0, d.data()), 0);
  EXPECT_EQ(d, (std::vector<double>{2.0, 0.0, 2.0, 4.0, 6.0}));
  ASSERT_EQ(NUVOImageL1DistanceMap(&t.image, 1, d.data()), 0);
  EXPECT_EQ(d, (std::vector<double>{0.0, 2.0, 4.0, 2.0, 0.0}));
  EXPECT_EQ(NUVOImageEuclideanDistanceMap(&t.image, 2, d.data()), -1100);
  EXPECT_EQ(NUVOImageL1DistanceMap(&t.image, -1, d.data()), -1100);
}

}  // namespace
