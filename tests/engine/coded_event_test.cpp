#include <gtest/gtest.h>

#include <cstdint>
#include <random>
#include <span>
#include <vector>

#include "engine/coded_event.hpp"
#include "engine/packed_event.hpp"
#include "engine/realization.hpp"
#include "tests/data/data_builders.hpp"

namespace {

// Random events (foreign codes, repeated nodes, awkward thresholds) on a random
// image with missing codes: every scan, partial or not, ends on the candidate,
// with the error and after the iterations of the general event's scan, on the
// byte codes and on their two-bit image.
TEST(CodedEvent, ScansAsTheGeneralEvent) {
  std::mt19937 rng(11);
  const auto draw = [&](int n) { return static_cast<int>(rng() % static_cast<unsigned>(n)); };
  const nuvo_grid grid = nuvo::test::makeGrid(24, 20, 3);
  std::vector<std::int8_t> ti(static_cast<std::size_t>(grid.nxyz) + nuvo::kCodePadding, -1);
  std::vector<int> holders(3, 0);
  for (std::size_t k = 0; k < static_cast<std::size_t>(grid.nxyz); ++k) {
    ti[k] = static_cast<std::int8_t>(draw(9) < 6 ? 0 : draw(4) - 1);
    if (ti[k] >= 0) ++holders[static_cast<std::size_t>(ti[k])];
  }
  const std::vector<std::uint8_t> packed =
      nuvo::packCodes(std::span(ti).first(static_cast<std::size_t>(grid.nxyz)));
  const auto informed = [&](int node) { return ti[static_cast<std::size_t>(node)] >= 0; };
  for (int trial = 0; trial < 300; ++trial) {
    const int n = 1 + draw(40);
    std::vector<int> offset;
    std::vector<std::int8_t> code;
    nuvo::EventExtent extent;
    for (int i = 0; i < n; ++i) {
      const int dx = draw(17) - 8, dy = draw(7) - 3, dz = draw(2);
      extent.include(dx, dy, dz);
      offset.push_back(dx + grid.nx * dy + grid.nxy * dz);
      code.push_back(static_cast<std::int8_t>(draw(12) == 0 ? nuvo::kForeignCode : draw(3)));
    }
    nuvo::DataEvent general;
    general.nvar = 1;
    general.kernel[0] = nuvo::variableKernel(0, true, false, true);
    general.event[0] = {.count = n,
                        .offset = offset.data(),
                        .uniformWeight = 1.0 / n,
                        .invThreshold = 1.0 / (0.01 + 0.3 * draw(1000) / 1000.0),
                        .valueCode = code.data(),
                        .tiCode = ti.data(),
                        .codeCount = holders};
    nuvo::CodedEvent coded;
    ASSERT_TRUE(coded.prepare(general));
    nuvo::ScanWindow window;
    ASSERT_TRUE(nuvo::makeScanWindow(grid, extent, &window));
    const int nscan = 1 + draw(window.count());
    const nuvo::ScanOrder order{draw(window.count()), 1};
    const nuvo::ScanResult a =
        nuvo::scanTrainingImage(nuvo::ScanWalker(window, grid, order), nscan, general, informed);
    const nuvo::ScanResult b =
        nuvo::scanTrainingImage(nuvo::ScanWalker(window, grid, order), nscan, coded, informed);
    nuvo::PackedEvent twoBit;
    twoBit.prepare(coded, packed.data());
    const nuvo::ScanResult c =
        nuvo::scanTrainingImage(nuvo::ScanWalker(window, grid, order), nscan, twoBit, informed);
    for (const nuvo::ScanResult &r : {b, c}) {
      ASSERT_EQ(a.tiNode, r.tiNode) << "trial " << trial;
      ASSERT_EQ(a.error, r.error);
      ASSERT_EQ(a.iterations, r.iterations);
    }
  }
}

}  // namespace
