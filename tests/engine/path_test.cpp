#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>
#include <vector>

#include "nuvo_path.h"
#include "tests/support/random.hpp"

namespace {

using nuvo_test::seededContext;

bool samePermutation(std::vector<int> a, std::vector<int> b) {
  std::sort(a.begin(), a.end());
  std::sort(b.begin(), b.end());
  return a == b;
}

// A 3D grid with nvar variables, its flags (1 = to be simulated) and spacings.
struct Grid {
  int nx, ny, nz, nvar;
  double sx = 1.0, sy = 1.0, sz = 1.0;
  std::vector<signed char> flag;

  Grid(int x, int y, int z, int v) : nx(x), ny(y), nz(z), nvar(v), flag(x * y * z * v, 1) {}
  int nxyz() const { return nx * ny * nz; }
  void inform(int v, int ix, int iy, int iz) { flag[v * nxyz() + ix + nx * (iy + ny * iz)] = 0; }

  // Entries to be simulated (one-by-one form), or nodes with something to simulate.
  std::vector<int> entries() const {
    std::vector<int> e;
    for (int i = 0; i < nxyz() * nvar; ++i)
      if (flag[i] != 0) e.push_back(i);
    return e;
  }
  std::vector<int> nodes() const {
    std::vector<int> e;
    for (int k = 0; k < nxyz(); ++k)
      for (int v = 0; v < nvar; ++v)
        if (flag[v * nxyz() + k] != 0) {
          e.push_back(k);
          break;
        }
    return e;
  }

  double distance(int a, int b) const {
    double dx = sx * (a % nx - b % nx), dy = sy * ((a / nx) % ny - (b / nx) % ny),
           dz = sz * (a / (nx * ny) - b / (nx * ny));
    return std::sqrt(dx * dx + dy * dy + dz * dz);
  }
  // Nearest informed node of variable v.
  double nearest(int v, int k) const {
    double d = std::numeric_limits<double>::infinity();
    for (int j = 0; j < nxyz(); ++j)
      if (flag[v * nxyz() + j] == 0) d = std::min(d, distance(k, j));
    return d;
  }
};

using OneByOne = int (*)(int, int *, const signed char *, int, int, int, int, double, double,
                         double, double, nuvo_randContext *);
using Summed = int (*)(int, int *, const signed char *, int, int, int, int, double, double, double,
                       double, double, nuvo_randContext *);

int run(OneByOne f, const Grid &g, std::vector<int> *e, double s, int seed) {
  nuvo_randContext ctx = seededContext(seed);
  return f(static_cast<int>(e->size()), e->data(), g.flag.data(), g.nx, g.ny, g.nz, g.nvar, g.sx,
           g.sy, g.sz, s, &ctx);
}

int run(Summed f, const Grid &g, std::vector<int> *e, double s, double p, int seed) {
  nuvo_randContext ctx = seededContext(seed);
  return f(static_cast<int>(e->size()), e->data(), g.flag.data(), g.nx, g.ny, g.nz, g.nvar, g.sx,
           g.sy, g.sz, s, p, &ctx);
}

std::vector<int> randomPath(std::vector<int> e, int seed) {
  nuvo_randContext ctx = seededContext(seed);
  NUVOPathRandom(static_cast<int>(e.size()), e.data(), &ctx);
  return e;
}

TEST(PathRandom, IsASeededPermutation) {
  std::vector<int> e(50);
  std::iota(e.begin(), e.end(), 100);
  std::vector<int> a = randomPath(e, 3), b = randomPath(e, 3), c = randomPath(e, 4);
  EXPECT_TRUE(samePermutation(a, e));
  EXPECT_EQ(a, b);
  EXPECT_NE(a, c);
  EXPECT_NE(a, e);
  EXPECT_EQ(randomPath({8}, 3), std::vector<int>{8});
}

TEST(GuidedPath, EveryFormReordersExactlyTheGivenEntries) {
  Grid g(9, 7, 3, 2);
  g.sx = 2.0, g.sz = 0.5;
  g.inform(0, 1, 1, 0);
  g.inform(0, 5, 2, 1);
  g.inform(1, 8, 6, 2);
  g.inform(1, 1, 1, 0);
  std::vector<int> entries = g.entries();
  entries.erase(entries.begin() + 10, entries.begin() + 30);  // as if masked out
  std::vector<int> nodes = g.nodes();
  nodes.erase(nodes.begin() + 5, nodes.begin() + 12);
  // Runs f on a copy of `given` and returns the path, which must reorder it.
  const auto reordered = [&](auto f, const std::vector<int> &given, auto... parameters) {
    std::vector<int> e = given;
    EXPECT_EQ(run(f, g, &e, parameters..., 11), 0);
    EXPECT_TRUE(samePermutation(e, given));
    return e;
  };
  for (OneByOne f : {NUVOPathDistancePdfRandom, NUVOPathDistanceSortRandom})
    EXPECT_NE(reordered(f, entries, 0.7), entries);
  for (Summed f : {NUVOPathDistanceSumPdfRandom, NUVOPathDistanceSumSortRandom})
    reordered(f, entries, 0.7, 1.5);
  for (OneByOne f : {NUVOVectorPathDistancePdfRandom, NUVOVectorPathDistanceSortRandom})
    reordered(f, nodes, 0.7);
  for (Summed f : {NUVOVectorPathDistanceSumPdfRandom, NUVOVectorPathDistanceSumSortRandom})
    reordered(f, nodes, 0.7, 0.5);
}

// Mean distance to the data of the first 2% of the path, over several seeds. (Further
// on, the PDF paths at high strength mostly take the entry currently last, as the
// weighted shuffle favours it once the heavy entries are placed.)
double earlyDistance(OneByOne f, const Grid &g, double s) {
  double sum = 0.0;
  int count = 0;
  for (int seed = 1; seed <= 8; ++seed) {
    std::vector<int> e = g.entries();
    EXPECT_EQ(run(f, g, &e, s, seed), 0);
    for (std::size_t i = 0; i < e.size() / 50; ++i, ++count) sum += g.nearest(0, e[i]);
  }
  return sum / count;
}

TEST(GuidedPath, NearEntriesComeFirstAsTheStrengthGrows) {
  Grid g(40, 30, 1, 1);
  g.sy = 1.5;
  g.inform(0, 5, 5, 0);
  g.inform(0, 30, 22, 0);
  double overall = 0.0;
  for (int e : g.entries()) overall += g.nearest(0, e);
  overall /= static_cast<double>(g.entries().size());
  for (OneByOne f : {NUVOPathDistancePdfRandom, NUVOPathDistanceSortRandom}) {
    double random = earlyDistance(f, g, 0.0);
    double half = earlyDistance(f, g, 0.5);
    double full = earlyDistance(f, g, 1.0);
    EXPECT_NEAR(random, overall, 0.15 * overall);  // s = 0: no preference
    EXPECT_LT(half, 0.6 * random);
    EXPECT_LT(full, 0.9 * half);
  }
}

TEST(GuidedPath, FullStrengthSortFollowsTheCombinedDistance) {
  // Variable 0 known at node 0, variable 1 at node 9 of a line: an entry of v
  // is at its own distance plus half the other variable's.
  Grid g(10, 1, 1, 2);
  g.inform(0, 0, 0, 0);
  g.inform(1, 9, 0, 0);
  std::vector<int> e = g.entries();
  ASSERT_EQ(run(NUVOPathDistanceSortRandom, g, &e, 1.0, 5), 0);
  auto combined = [&](int entry) {
    int v = entry / 10, k = entry % 10;
    return g.nearest(v, k) + g.nearest(1 - v, k) / 2.0;
  };
  for (std::size_t i = 1; i < e.size(); ++i) EXPECT_LE(combined(e[i - 1]), combined(e[i]));
}

// With s = 1 the keys are the distances, many of them equal: such entries keep the
// order they had in the list. A datum in a corner gives small groups of equal
// distances; a row of data, groups of a whole row (sorted apart as large buckets).
TEST(GuidedPath, FullStrengthSortKeepsTheListOrderAmongEqualDistances) {
  Grid corner(23, 19, 1, 1);
  corner.inform(0, 0, 0, 0);
  Grid row(45, 12, 1, 1);
  for (int ix = 0; ix < 45; ++ix) row.inform(0, ix, 0, 0);
  for (const Grid *g : {&corner, &row}) {
    const std::vector<int> shuffled = randomPath(g->entries(), 8);
    std::vector<int> e = shuffled;
    ASSERT_EQ(run(NUVOPathDistanceSortRandom, *g, &e, 1.0, 5), 0);
    std::vector<int> listed(g->nxyz(), -1);
    for (std::size_t i = 0; i < shuffled.size(); ++i) listed[shuffled[i]] = static_cast<int>(i);
    int ties = 0;
    for (std::size_t i = 1; i < e.size(); ++i) {
      const double before = g->nearest(0, e[i - 1]), after = g->nearest(0, e[i]);
      ASSERT_LE(before, after);
      if (before < after) continue;
      ++ties;
      EXPECT_LT(listed[e[i - 1]], listed[e[i]]) << "entries " << e[i - 1] << " and " << e[i];
    }
    EXPECT_GT(ties, 100);
  }
}

TEST(GuidedPath, VectorFormConditionsOnNodesWithAllVariablesKnown) {
  // Variable 2 is known everywhere and left out; node 0 has both others known,
  // node 19 only variable 0, so only node 0 conditions the distances.
  Grid g(20, 1, 1, 3);
  for (int k = 0; k < 20; ++k) g.inform(2, k, 0, 0);
  g.inform(0, 0, 0, 0);
  g.inform(1, 0, 0, 0);
  g.inform(0, 19, 0, 0);
  std::vector<int> e = g.nodes();
  ASSERT_EQ(run(NUVOVectorPathDistanceSortRandom, g, &e, 1.0, 5), 0);
  std::vector<int> expected(19);
  std::iota(expected.begin(), expected.end(), 1);
  EXPECT_EQ(e, expected);
}

TEST(GuidedPath, WithoutDataOneEntryStandsInAsTheSeed) {
  Grid g(15, 12, 1, 1);
  std::vector<int> e = g.entries();
  ASSERT_EQ(run(NUVOPathDistanceSortRandom, g, &e, 1.0, 9), 0);
  for (std::size_t i = 2; i < e.size(); ++i)
    EXPECT_LE(g.distance(e[0], e[i - 1]), g.distance(e[0], e[i]) + 1e-12);
  std::vector<int> other = g.entries();
  ASSERT_EQ(run(NUVOPathDistanceSortRandom, g, &other, 1.0, 10), 0);
  EXPECT_NE(other[0], e[0]);
  EXPECT_TRUE(std::all_of(g.flag.begin(), g.flag.end(), [](signed char f) { return f == 1; }));
}

TEST(GuidedPath, EqualDistancesOrNoDataGiveTheRandomPath) {
  Grid line(3, 1, 1, 1);
  line.inform(0, 1, 0, 0);
  std::vector<int> e = line.entries();
  ASSERT_EQ(run(NUVOPathDistancePdfRandom, line, &e, 1.0, 21), 0);
  EXPECT_EQ(e, randomPath(line.entries(), 21));

  Grid empty(6, 5, 2, 2);
  for (Summed f : {NUVOPathDistanceSumPdfRandom, NUVOPathDistanceSumSortRandom}) {
    std::vector<int> path = empty.entries();
    ASSERT_EQ(run(f, empty, &path, 1.0, 2.0, 21), 0);
    EXPECT_EQ(path, randomPath(empty.entries(), 21));
  }
}

TEST(GuidedPath, FullStrengthSumSortFollowsThePowerMean) {
  Grid g(11, 9, 2, 1);
  g.sx = 0.5, g.sz = 3.0;
  g.inform(0, 0, 0, 0);
  g.inform(0, 10, 3, 1);
  g.inform(0, 4, 8, 0);
  std::vector<int> data;
  for (int k = 0; k < g.nxyz(); ++k)
    if (g.flag[k] == 0) data.push_back(k);
  for (double p : {0.5, 1.0, 2.0, 3.0}) {
    auto mean = [&](int k) {
      double sum = 0.0;
      for (int j : data) sum += std::pow(g.distance(k, j), p);
      return std::pow(sum / data.size(), 1.0 / p);
    };
    std::vector<int> e = g.entries();
    ASSERT_EQ(run(NUVOPathDistanceSumSortRandom, g, &e, 1.0, p, 3), 0);
    for (std::size_t i = 1; i < e.size(); ++i) EXPECT_LE(mean(e[i - 1]), mean(e[i]) + 1e-9) << p;
  }
}

TEST(GuidedPath, RefusesEmptyOrOversizedGrids) {
  Grid g(4, 4, 1, 1);
  std::vector<int> e = g.entries();
  nuvo_randContext ctx = seededContext(1);
  int n = static_cast<int>(e.size());
  const signed char *f = g.flag.data();
  EXPECT_EQ(NUVOPathDistancePdfRandom(n, e.data(), f, 4, 0, 1, 1, 1, 1, 1, 1, &ctx), -3);
  EXPECT_EQ(NUVOVectorPathDistanceSumSortRandom(n, e.data(), f, 4, 4, 1, 0, 1, 1, 1, 1, 1, &ctx),
            -3);
  EXPECT_EQ(NUVOPathDistanceSortRandom(n, e.data(), f, 2000, 2000, 1000, 1, 1, 1, 1, 1, &ctx),
            -610);
  EXPECT_EQ(NUVOPathDistanceSortRandom(n, e.data(), f, 4, 4, 1, 1, 1, 0.0, 1, 1, &ctx), -605);
}

// Coordinates (x, y, z, v) of a one-by-one entry.
struct Coords {
  int x, y, z, v;
};
Coords coordsOf(int e, int nx, int ny, int nz) {
  int nxyz = nx * ny * nz;
  int k = e % nxyz;
  return {k % nx, (k / nx) % ny, k / (nx * ny), e / nxyz};
}

TEST(PathUnilateral, OneByOneVisitsRandomXvSectionsZFirstThenYDown) {
  const int nx = 3, ny = 4, nz = 2, nvar = 2;
  std::vector<int> e(nx * ny * nz * nvar);
  std::iota(e.begin(), e.end(), 0);
  const int order[4] = {0, -2, 1, 0};
  nuvo_randContext ctx = seededContext(8);
  ASSERT_EQ(
      NUVOPathUnilateral4D(static_cast<int>(e.size()), e.data(), nx, ny, nz, nvar, order, &ctx), 0);
  bool shuffled = false;
  for (std::size_t i = 0; i < e.size(); ++i) {
    int section = static_cast<int>(i) / (nx * nvar);
    Coords c = coordsOf(e[i], nx, ny, nz);
    EXPECT_EQ(c.z, section % nz);
    EXPECT_EQ(c.y, ny - 1 - section / nz);
    if (i % (nx * nvar) != 0 && e[i] < e[i - 1]) shuffled = true;
  }
  EXPECT_TRUE(shuffled);
  std::vector<int> all(e.size());
  std::iota(all.begin(), all.end(), 0);
  EXPECT_TRUE(samePermutation(e, all));
}

TEST(PathUnilateral, VectorVisitsRandomXLinesZFirstThenYUp) {
  const int nx = 5, ny = 3, nz = 3;
  std::vector<int> e;
  for (int k = 0; k < nx * ny * nz; ++k)
    if (k % 4 != 0) e.push_back(k);  // a subset of the nodes
  std::vector<int> given = e;
  const int order[3] = {0, 2, 1};
  nuvo_randContext ctx = seededContext(8);
  ASSERT_EQ(NUVOPathUnilateral3D(static_cast<int>(e.size()), e.data(), nx, ny, nz, order, &ctx), 0);
  EXPECT_TRUE(samePermutation(e, given));
  for (std::size_t i = 1; i < e.size(); ++i) {
    Coords a = coordsOf(e[i - 1], nx, ny, nz), b = coordsOf(e[i], nx, ny, nz);
    EXPECT_LE(a.y * nz + a.z, b.y * nz + b.z);
  }
}

TEST(PathUnilateral, FullyRankedOrdersAreDeterministicAndUnrankedOnesRandom) {
  const int nx = 4, ny = 3, nz = 2;
  std::vector<int> all(nx * ny * nz);
  std::iota(all.begin(), all.end(), 0);
  std::vector<int> e = randomPath(all, 2);
  const int order[3] = {-1, 3, 2};  // x down fastest, then z up, then y up
  nuvo_randContext ctx = seededContext(1);
  ASSERT_EQ(NUVOPathUnilateral3D(static_cast<int>(e.size()), e.data(), nx, ny, nz, order, &ctx), 0);
  std::vector<int> expected;
  for (int y = 0; y < ny; ++y)
    for (int z = 0; z < nz; ++z)
      for (int x = nx - 1; x >= 0; --x) expected.push_back(x + nx * (y + ny * z));
  EXPECT_EQ(e, expected);

  const int none[3] = {0, 0, 0};
  e = all;
  ctx = seededContext(6);
  ASSERT_EQ(NUVOPathUnilateral3D(static_cast<int>(e.size()), e.data(), nx, ny, nz, none, &ctx), 0);
  EXPECT_EQ(e, randomPath(all, 6));
}

}  // namespace
