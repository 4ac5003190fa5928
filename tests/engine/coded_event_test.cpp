#include <gtest/gtest.h>

#include <cstdint>
#include <random>
#include <span>
#include <vector>

#include "engine/coded_event.hpp"
#include "engine/realization.hpp"
#include "engine/scan_window.hpp"
#include "tests/data/data_builders.hpp"

namespace {

// Random events on a random 3-code image (with missing and foreign codes),
// thresholds whose steps round awkwardly, and best errors on and around the
// errors of the counts: every candidate gets the error of DataEvent, or is
// dropped exactly when DataEvent's error is not below the best, and whole
// scans, partial or not, end on the same candidate after the same iterations.
TEST(CodedEvent, GivesEveryCandidateTheErrorOfTheGeneralEvent) {
  std::mt19937 rng(11);
  const auto uniform = [&](int n) { return static_cast<int>(rng() % static_cast<unsigned>(n)); };
  const nuvo_grid grid = nuvo::test::makeGrid(24, 20, 3);
  std::vector<std::int8_t> ti(static_cast<std::size_t>(grid.nxyz) + nuvo::kCodePadding);
  std::vector<int> holders(3, 0);
  for (std::int8_t &c : std::span(ti).first(static_cast<std::size_t>(grid.nxyz))) {
    c = static_cast<std::int8_t>(uniform(9) < 6 ? 0 : uniform(4) - 1);  // mostly 0, some -1
    if (c >= 0) ++holders[static_cast<std::size_t>(c)];
  }
  const auto informed = [&](int node) { return ti[static_cast<std::size_t>(node)] >= 0; };

  for (int trial = 0; trial < 300; ++trial) {
    const int n = 1 + uniform(40);
    std::vector<int> offset(static_cast<std::size_t>(n));
    std::vector<std::int8_t> code(static_cast<std::size_t>(n));
    nuvo::EventExtent extent;
    for (int i = 0; i < n; ++i) {
      const int dx = uniform(9) - 4, dy = uniform(7) - 3, dz = uniform(2);
      extent.include(dx, dy, dz);
      offset[static_cast<std::size_t>(i)] = dx + grid.nx * dy + grid.nxy * dz;
      code[static_cast<std::size_t>(i)] =
          static_cast<std::int8_t>(uniform(12) == 0 ? nuvo::kForeignCode : uniform(3));
    }
    nuvo::DataEvent general;
    general.nvar = 1;
    general.kernel[0] = nuvo::variableKernel(0, true, false, true);
    nuvo::VariableEvent &ev = general.event[0];
    ev.count = n;
    ev.offset = offset.data();
    ev.valueCode = code.data();
    ev.tiCode = ti.data();
    ev.codeCount = holders;
    ev.uniformWeight = 1.0 / n;
    ev.invThreshold = 1.0 / (0.01 + 0.3 * std::generate_canonical<double, 53>(rng));
    nuvo::CodedEvent coded;
    ASSERT_TRUE(coded.prepare(general));

    nuvo::ScanWindow window;
    ASSERT_TRUE(nuvo::makeScanWindow(grid, extent, &window));
    const int first = (window.x0 + grid.nx * window.y0 + grid.nxy * window.z0);
    const double step = ev.uniformWeight * ev.invThreshold;
    const double best = nuvo::kernel::mismatchError(0.0, uniform(n + 1), step) +
                        (uniform(3) - 1) * 1e-17 * uniform(2);
    coded.bound(best);
    for (int node = first; node < first + window.nx; ++node) {
      const double e = general.errorAt(node, best);
      const double c = coded.errorAt(node, best);
      if (e < best)
        ASSERT_EQ(c, e) << "trial " << trial;
      else
        ASSERT_FALSE(c < best) << "trial " << trial;
    }

    nuvo_randContext ctx;
    NUVOInitRandContext(&ctx);
    NUVODoubleRand(trial, &ctx);
    const int nscan = 1 + uniform(window.count());
    const nuvo::ScanOrder order = nuvo::drawScanOrder(window, nscan, &ctx);
    const nuvo::ScanResult a =
        nuvo::scanTrainingImage(nuvo::ScanWalker(window, grid, order), nscan, general, informed);
    const nuvo::ScanResult b =
        nuvo::scanTrainingImage(nuvo::ScanWalker(window, grid, order), nscan, coded, informed);
    ASSERT_EQ(a.tiNode, b.tiNode) << "trial " << trial;
    ASSERT_EQ(a.error, b.error);
    ASSERT_EQ(a.iterations, b.iterations);
  }

  // Other kinds of event are left to DataEvent.
  nuvo::DataEvent weighted;
  weighted.nvar = 1;
  weighted.kernel[0] = nuvo::variableKernel(0, false, false, true);
  nuvo::CodedEvent coded;
  EXPECT_FALSE(coded.prepare(weighted));
}

}  // namespace
