#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numeric>
#include <tuple>
#include <vector>

#include "engine/pattern_scan.hpp"
#include "engine/scan_window.hpp"
#include "nuvo_random.h"
#include "tests/data/data_builders.hpp"
#include "tests/support/random.hpp"

namespace {

using nuvo::test::makeGrid;

TEST(ScanWindow, IsTheImageLessTheEventExtent) {
  nuvo::EventExtent e;
  e.include(-2, 1, 0);
  e.include(3, -1, 0);
  nuvo::ScanWindow w;
  ASSERT_TRUE(nuvo::makeScanWindow(makeGrid(10, 8, 1), e, &w));
  EXPECT_EQ(std::tuple(w.nx, w.ny, w.nz, w.x0, w.y0), std::tuple(10 - 5, 8 - 2, 1, 2, 1));
  e.include(0, 0, 1);
  EXPECT_FALSE(nuvo::makeScanWindow(makeGrid(10, 8, 1), e, &w));
}

// A full scan of every box shape visits each candidate exactly once, in the order
// start + j * stride (mod N), whatever the stride drawn.
TEST(ScanOrder, FullScansArePermutationsInStrideOrder) {
  nuvo_randContext ctx = nuvo_test::seededContext(3);
  const int shapes[][3] = {{1, 1, 1}, {2, 1, 1}, {7, 1, 1},  {1, 13, 1},  {6, 5, 1},
                           {9, 1, 4}, {4, 6, 5}, {97, 1, 1}, {30, 30, 1}, {16, 16, 16}};
  for (const auto &s : shapes) {
    const nuvo_grid ti = makeGrid(s[0] + 3, s[1] + 2, s[2] + 1);
    nuvo::EventExtent e;
    e.include(-1, -2, 0);
    e.include(2, 0, 1);
    nuvo::ScanWindow w;
    ASSERT_TRUE(nuvo::makeScanWindow(ti, e, &w));
    const int n = w.count();
    for (int nscan : {n, std::max(1, n / 3)}) {
      const nuvo::ScanOrder order = nuvo::drawScanOrder(w, nscan, &ctx);
      ASSERT_GE(order.start, 0);
      ASSERT_LT(order.start, n);
      ASSERT_EQ(std::gcd(order.stride, n), 1);
      nuvo::ScanWalker walker(w, ti, order);
      std::vector<int> seen(ti.nxyz, 0);
      for (int j = 0; j < n; ++j, walker.advance()) {
        const long long p = (order.start + static_cast<long long>(j) * order.stride) % n;
        const int x = static_cast<int>(p % w.nx), y = static_cast<int>(p / w.nx % w.ny),
                  z = static_cast<int>(p / (w.nx * w.ny));
        const int node = (w.x0 + x) + ti.nx * (w.y0 + y) + ti.nxy * (w.z0 + z);
        ASSERT_EQ(walker.tiNode(), node) << "shape " << s[0] << "x" << s[1] << "x" << s[2];
        ++seen[node];
      }
      EXPECT_EQ(std::count(seen.begin(), seen.end(), 1), n);
    }
  }
}

// Reproducibility is checked on whole realizations; here the spread of a
// partial scan, which strides across the box rather than along one row.
TEST(ScanOrder, APartialScanStridesAcrossTheBox) {
  nuvo::ScanWindow w{50, 40, 1, 0, 0, 0};
  nuvo_randContext ctx = nuvo_test::seededContext(77);
  EXPECT_GT(nuvo::drawScanOrder(w, 100, &ctx).stride, 20);
}

// The formula of the candidate error, written plainly, for comparison.
double referenceError(int type, const std::vector<double> &a, const std::vector<double> &b,
                      const std::vector<double> &w, double t, double p, bool relative) {
  double ma = 0, mb = 0;
  if (relative) {
    for (double v : a) ma += v / a.size();
    for (double v : b) mb += v / b.size();
  }
  double c = 0;
  for (size_t i = 0; i < a.size(); ++i) {
    const double d = std::fabs((a[i] - ma) - (b[i] - mb));
    switch (type) {
      case 0:
        c += w[i] * (a[i] != b[i]);
        break;
      case 1:
        c += w[i] * d;
        break;
      case 2:
        c += w[i] * d * d;
        break;
      case 3:
        c += w[i] * std::pow(d, p);
        break;
      case 4:
        c = std::max(c, d);
        break;
    }
  }
  if (type == 2) c = std::sqrt(c);
  if (type == 3) c = std::pow(c, 1 / p);
  return std::max(0.0, c / t - 1);
}

TEST(DistanceKernels, MatchTheFormulaAndNeverAbandonABetterCandidate) {
  nuvo_randContext ctx = nuvo_test::seededContext(5);
  auto u = [&] { return NUVODoubleRand(0, &ctx); };
  for (int trial = 0; trial < 3000; ++trial) {
    const int type = trial % 5;
    const bool uniform = trial % 2 == 0;
    const bool relative = type != 0 && trial % 3 == 0;
    const int n = 1 + static_cast<int>(u() * 12);
    std::vector<double> ti(n), a(n), w(n);
    std::vector<int> offset(n);
    double wsum = 0;
    for (int i = 0; i < n; ++i) {
      offset[i] = i;
      ti[i] = type == 0 ? std::floor(u() * 3) : u();
      a[i] = type == 0 ? (u() < 0.7 ? ti[i] : std::floor(u() * 3)) : ti[i] + 0.1 * (u() - 0.5);
      w[i] = uniform ? 1.0 / n : u();
      wsum += w[i];
    }
    if (!uniform)
      for (double &x : w) x /= wsum;
    std::vector<double> centred(a);
    if (relative) {
      double m = 0;
      for (double v : a) m += v / n;
      for (double &v : centred) v -= m;
    }
    const double t = 0.02 + 0.2 * u();
    const nuvo::VariableEvent ev{.count = n,
                                 .offset = offset.data(),
                                 .value = centred.data(),
                                 .weight = w.data(),
                                 .uniformWeight = 1.0 / n,
                                 .invThreshold = 1.0 / t,
                                 .power = 3.0,
                                 .invPower = 1.0 / 3.0,
                                 .ti = ti.data(),
                                 .codeCount = {}};
    const nuvo::VariableKernel k = nuvo::variableKernel(type, uniform, relative);
    const double expected = referenceError(type, a, ti, w, t, 3.0, relative);

    const double full = k(ev, 0, 0.0, nuvo::kNoMatchError);
    ASSERT_NEAR(full, expected, 1e-12 * (1 + expected)) << "type " << type;
    const double best = u() * 2 * expected;
    const double bounded = k(ev, 0, 0.0, best);
    if (bounded <= best)
      EXPECT_EQ(bounded, full);
    else
      EXPECT_GT(full, best) << "abandoned a candidate with error " << full << " <= " << best;
  }
}

TEST(PatternScan, KeepsTheFirstBestAndStopsAtAPerfectMatch) {
  // A 1D training image 0 1 2 3 ... scanned for the single-node event "value 5
  // one node to the right": the candidate at x = 4 matches exactly.
  const nuvo_grid ti = makeGrid(12, 1, 1);
  std::vector<double> values(12);
  std::iota(values.begin(), values.end(), 0.0);
  const int offset[] = {1};
  const double a[] = {5.0};
  nuvo::DataEvent event;
  event.nvar = 1;
  event.kernel[0] = nuvo::variableKernel(1, true, false);
  event.event[0].count = 1;
  event.event[0].offset = offset;
  event.event[0].value = a;
  event.event[0].uniformWeight = 1.0;
  event.event[0].invThreshold = 1.0 / 0.5;
  event.event[0].ti = values.data();
  nuvo::EventExtent e;
  e.include(1, 0, 0);
  nuvo::ScanWindow w;
  ASSERT_TRUE(nuvo::makeScanWindow(ti, e, &w));
  const auto always = [](int) { return true; };

  nuvo::ScanResult r =
      nuvo::scanTrainingImage(nuvo::ScanWalker(w, ti, {0, 1}), w.count(), event, always);
  EXPECT_EQ(r.tiNode, 4);
  EXPECT_EQ(r.error, 0.0);
  EXPECT_EQ(r.iterations, 5);

  // Without node 4 the two nearest (errors 1 at x = 3 and x = 5) tie: the first
  // met in scan order wins.
  const auto not4 = [](int node) { return node != 4; };
  r = nuvo::scanTrainingImage(nuvo::ScanWalker(w, ti, {0, 1}), w.count(), event, not4);
  EXPECT_EQ(r.tiNode, 3);
  EXPECT_EQ(r.iterations, w.count());
  r = nuvo::scanTrainingImage(nuvo::ScanWalker(w, ti, {5, 1}), w.count(), event, not4);
  EXPECT_EQ(r.tiNode, 5);

  // Nothing usable: no candidate, the best error stays at its start.
  r = nuvo::scanTrainingImage(nuvo::ScanWalker(w, ti, {0, 1}), 3, event, [](int) { return false; });
  EXPECT_EQ(r.tiNode, -1);
  EXPECT_EQ(r.error, nuvo::kNoMatchError);
}

}  // namespace
