// Every lag-map function against a direct computation from its formula, on small
// random images with missing values, in 2D and 3D, over odd and negative lags;
// the layout of a variogram map, and the approximate variogram ranges.
#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "nuvo_random.h"
#include "nuvo_synthetic.h"
#include "nuvo_variogram.h"
#include "tests/data/data_builders.hpp"
#include "tests/support/components.hpp"
#include "tests/support/random.hpp"

namespace {

using nuvo::test::kMissing;
using nuvo::test::TestImage;
using Image = nuvo::test::EmptyImage;
using LagMap = int (*)(const nuvo_image *, nuvo_image *, int, int, int, int, int, int, int, int,
                       int, int, signed char);

// Values of variable 1 of a random image: with `classes` one of 0, 1, 2 (so the
// class, informed and not 0, holds two values), else a real in [10, 11); about
// one node in seven missing. Variable 0 is all missing, to be sure iv is used.
std::vector<double> randomValues(int nxyz, bool classes, int seed) {
  nuvo_randContext rc = nuvo_test::seededContext(seed);
  std::vector<double> values(2 * nxyz, kMissing);
  for (int i = nxyz; i < 2 * nxyz; ++i) {
    const double u = NUVODoubleRand(0, &rc);
    if (u < 1.0 / 7.0) continue;
    values[i] = classes ? std::floor(3.0 * NUVODoubleRand(0, &rc)) : 10.0 + u;
  }
  return values;
}

struct Pair {
  double a, b;  // tail and head values
  int i, j;     // their nodes
};

// The pairs (x, x + h) inside the grid, missing values included.
std::vector<Pair> pairsAt(const nuvo_image &image, int hx, int hy, int hz) {
  const nuvo_grid &g = *image.grid;
  const double *v = image.var + g.nxyz;
  std::vector<Pair> pairs;
  for (int z = 0; z < g.nz; ++z)
    for (int y = 0; y < g.ny; ++y)
      for (int x = 0; x < g.nx; ++x) {
        const int x2 = x + hx, y2 = y + hy, z2 = z + hz;
        if (x2 < 0 || x2 >= g.nx || y2 < 0 || y2 >= g.ny || z2 < 0 || z2 >= g.nz) continue;
        const int i = x + g.nx * (y + g.ny * z), j = x2 + g.nx * (y2 + g.ny * z2);
        pairs.push_back({v[i], v[j], i, j});
      }
  return pairs;
}

std::vector<Pair> informed(std::vector<Pair> pairs) {
  std::erase_if(pairs, [](const Pair &p) { return p.a == kMissing || p.b == kMissing; });
  return pairs;
}

bool inClass(double v) {
  return v != 0.0 && v != kMissing;
}

double moments(const std::vector<Pair> &all, bool centred, bool correlate) {
  const std::vector<Pair> pairs = informed(all);
  const double n = static_cast<double>(pairs.size());
  if (pairs.empty()) return kMissing;
  double ma = 0, mb = 0, ab = 0;
  for (const Pair &p : pairs) {
    ma += p.a / n;
    mb += p.b / n;
    ab += p.a * p.b / n;
  }
  if (!centred) return ab;
  double c = 0, va = 0, vb = 0;
  for (const Pair &p : pairs) {
    c += (p.a - ma) * (p.b - mb) / n;
    va += (p.a - ma) * (p.a - ma) / n;
    vb += (p.b - mb) * (p.b - mb) / n;
  }
  if (!correlate) return c;
  return va > 1e-12 && vb > 1e-12 ? c / std::sqrt(va * vb) : kMissing;
}

double share(const std::vector<Pair> &pairs, const std::function<bool(const Pair &)> &whole,
             const std::function<bool(const Pair &)> &part) {
  long long w = 0, p = 0;
  for (const Pair &q : pairs)
    if (whole(q)) ++w, p += part(q);
  return w > 0 ? static_cast<double>(p) / w : kMissing;
}

struct Statistic {
  LagMap function;
  std::string suffix;
  bool classes;
  std::function<double(const nuvo_image &, const std::vector<Pair> &)> direct;
};

std::vector<Statistic> statistics() {
  std::vector<Statistic> s = {
      {NUVOImageVariogram, "_variogram", false,
       [](const nuvo_image &, const std::vector<Pair> &all) {
         const auto pairs = informed(all);
         double sum = 0;
         for (const Pair &p : pairs) sum += (p.a - p.b) * (p.a - p.b);
         return pairs.empty() ? kMissing : sum / (2.0 * pairs.size());
       }},
      {NUVOImageCovariance, "_covariance", false,
       [](const nuvo_image &, const std::vector<Pair> &p) { return moments(p, true, false); }},
      {NUVOImageCovarianceNotCentred, "_covarianceNotCentred", false,
       [](const nuvo_image &, const std::vector<Pair> &p) { return moments(p, false, false); }},
      {NUVOImageCorrelogram, "_correlogram", false,
       [](const nuvo_image &, const std::vector<Pair> &p) { return moments(p, true, true); }},
      {NUVOImageTransiogram, "_transiogram", true,
       [](const nuvo_image &, const std::vector<Pair> &all) {
         return share(
             informed(all), [](const Pair &p) { return inClass(p.a); },
             [](const Pair &p) { return inClass(p.b); });
       }}};
  const LagMap connectivity[] = {NUVOImageConnectivityFunction0, NUVOImageConnectivityFunction1,
                                 NUVOImageConnectivityFunction2};
  for (int k = 0; k < 3; ++k)
    s.push_back({connectivity[k], "_connectivity" + std::to_string(k), true,
                 [k](const nuvo_image &image, const std::vector<Pair> &pairs) {
                   const nuvo_grid &g = *image.grid;
                   const double *v = image.var + g.nxyz;
                   const std::vector<int> label = nuvo_test::components(
                       g.nx, g.ny, g.nz, k, [v](int i) { return inClass(v[i]); });
                   return share(
                       pairs, [](const Pair &p) { return inClass(p.a) && inClass(p.b); },
                       [&](const Pair &p) { return label[p.i] == label[p.j]; });
                 }});
  return s;
}

TEST(LagMaps, MatchTheirFormulasOverOddAndNegativeLags) {
  struct Shape {
    int nx, ny, nz;
  };
  for (const Shape shape : {Shape{9, 7, 1}, Shape{6, 5, 4}}) {
    const int nxyz = shape.nx * shape.ny * shape.nz;
    for (const Statistic &stat : statistics()) {
      SCOPED_TRACE(stat.suffix + " on " + std::to_string(shape.nz) + " layers");
      TestImage image(shape.nx, shape.ny, shape.nz, {"none", "v"},
                      randomValues(nxyz, stat.classes, nxyz));
      // x by steps of 3 from 1 - nx (odd and even, negative and positive lags,
      // the last short of nx - 1), every y and z lag.
      const int hx0 = 1 - shape.nx;
      Image map;
      ASSERT_EQ(stat.function(&image.image, &map.image, 1, hx0, shape.nx - 1, 3, 1 - shape.ny,
                              shape.ny - 1, 1, 1 - shape.nz, shape.nz - 1, 1, 0),
                0);
      EXPECT_EQ(map.image.varName[0], "v" + stat.suffix);
      const nuvo_grid &mg = *map.image.grid;
      int checked = 0;
      for (int k = 0; k < mg.nxyz; ++k) {
        const int hx = hx0 + 3 * (k % mg.nx), hy = 1 - shape.ny + k / mg.nx % mg.ny,
                  hz = 1 - shape.nz + k / mg.nxy;
        const double expected = stat.direct(image.image, pairsAt(image.image, hx, hy, hz));
        const double got = map.image.var[k];
        if (expected == kMissing) {
          EXPECT_EQ(got, kMissing) << hx << " " << hy << " " << hz;
        } else {
          EXPECT_NEAR(got, expected, 1e-9) << hx << " " << hy << " " << hz;
          ++checked;
        }
      }
      EXPECT_GT(checked, mg.nxyz / 2);
    }
  }
}

TEST(LagMaps, ShareTheChecksOfTheVariogram) {
  TestImage image(4, 3, 2, {"v"}, std::vector<double>(24, 1.0));
  for (const Statistic &stat : statistics()) {
    Image map;
    EXPECT_EQ(stat.function(&image.image, &map.image, 1, 0, 0, 1, 0, 0, 1, 0, 0, 1, 0), -1100);
    EXPECT_EQ(stat.function(&image.image, &map.image, 0, 0, 0, 1, 0, 0, 1, -2, 0, 1, 0), -2011);
    EXPECT_EQ(stat.function(&image.image, &map.image, 0, 0, 1, 0, 0, 0, 1, 0, 0, 1, 0), -2011);
  }
}

// One channel crossing the grid along x on row y = 1 with a spur down to (5, 2),
// another on row 3 ending at x = 4: only a diagonal step joins (4, 3) to the spur.
TEST(LagMaps, ConnectivityFollowsTheNeighbourhoodOfTheGeobodies) {
  std::vector<double> v(6 * 5, 0.0);
  for (int x = 0; x < 6; ++x) v[x + 6 * 1] = 1.0;
  for (int x = 0; x < 5; ++x) v[x + 6 * 3] = 1.0;
  v[5 + 6 * 2] = 1.0;
  TestImage image(6, 5, 1, {"sand"}, v);
  // Lag (0, 2): the five sand pairs of rows 1 and 3, apart by faces, joined by corners.
  for (const auto &[function, expected] :
       {std::pair<LagMap, double>{NUVOImageConnectivityFunction0, 0.0},
        {NUVOImageConnectivityFunction2, 1.0}}) {
    Image map;
    ASSERT_EQ(function(&image.image, &map.image, 0, 0, 0, 1, 2, 2, 1, 0, 0, 1, 0), 0);
    EXPECT_EQ(map.image.var[0], expected);
  }
}

// The refused lags and variables are checked for every lag map above.
TEST(VariogramMap, LaysOutTheMap) {
  TestImage a(4, 3, 1, {"v"}, {0, 1, 2, 3, 1, 2, 3, 4, 2, 3, 4, kMissing});
  Image map;
  // Lags -3..3 along x, -2..2 along y; a zero step is fine for the single z lag.
  ASSERT_EQ(NUVOImageVariogram(&a.image, &map.image, 0, -3, 3, 1, -2, 2, 2, 0, 0, 0, 0), 0);
  const nuvo_grid &g = *map.image.grid;
  EXPECT_EQ(std::tuple(g.nx, g.ny, g.nz, g.sy, g.ox, g.oy), std::tuple(7, 3, 1, 2.0, -3.5, -3.0));
  auto at = [&](int hx, int hy) { return map.image.var[(hx + 3) + 7 * ((hy + 2) / 2)]; };
  EXPECT_EQ(at(0, 0), 0.0);
  // Along x every informed pair one apart differs by 1.
  EXPECT_EQ(at(1, 0), 0.5);
  // Lag 3 pairs only the first and last columns: (0,3) and (1,4); (2,missing) is skipped.
  EXPECT_EQ(at(3, 0), 0.5 * 9);
  EXPECT_EQ(at(3, 2), kMissing);  // its only pair, (0, 0) to (3, 2), lacks a value
  for (int hx = -3; hx <= 3; ++hx)
    for (int hy : {-2, 0, 2}) EXPECT_EQ(at(hx, hy), at(-hx, -hy));
}

TEST(VariogramRange, FollowsTheStructureOfTheImageAndNeedsASpread) {
  Image field;
  ASSERT_EQ(NUVOGenerateContinuousImage(&field.image, 150, 150, 1, 6.0, 3), 0);
  double rx, ry, rz;
  ASSERT_EQ(NUVOComputeVariogramRangeApprox(&field.image, 0, 0, &rx, &ry, &rz), 0);
  // A Gaussian covariance of scale 6 reaches 95 % of its sill near 2.45 * 6.
  EXPECT_GT(rx, 7.0);
  EXPECT_LT(rx, 30.0);
  EXPECT_GT(ry, 7.0);
  EXPECT_LT(ry, 30.0);
  EXPECT_EQ(rz, 0.0);

  Image channels;
  ASSERT_EQ(NUVOGenerateChannelImage(&channels.image, 120, 120, 1, 0.3, 6.0, 3), 0);
  ASSERT_EQ(NUVOComputeVariogramRangeApprox(&channels.image, 0, 1, &rx, &ry, &rz), 0);
  EXPECT_GT(rx, 2.0 * ry);
  EXPECT_GE(ry, 3.0);

  // A constant variable, or one beyond the image, has no range.
  TestImage a(3, 1, 1, {"v"}, {2, 2, 2});
  EXPECT_EQ(NUVOComputeVariogramRangeApprox(&a.image, 0, 0, &rx, &ry, &rz), -1061);
  EXPECT_EQ(NUVOComputeVariogramRangeApprox(&a.image, 0, 1, &rx, &ry, &rz), -1061);
  EXPECT_EQ(NUVOComputeVariogramRangeApprox(&a.image, 1, 1, &rx, &ry, &rz), -1100);
}

}  // namespace
