#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "engine/realization.hpp"
#include "tests/engine/bare_setup.hpp"
#include "tests/support/make_image.hpp"
#include "tests/support/temp_stream.hpp"

namespace {

// A three-node line: node 0 holds a datum (1), node 1 then node 2 are simulated
// from the line 0 0 0 0 0 1 2. Node 1 sees the datum alone and matches it exactly
// (it takes the 2 after the only 1), but no place of the line continues 1 2, so
// node 2 matches poorly: node 2 and node 1, of its data event, are flagged; the
// datum is not.
TEST(PostProcessingFlags, PoorMatchFlagsTheSimulatedNodesOfItsDataEvent) {
  const double line[] = {0, 0, 0, 0, 0, 1, 2};
  nuvo_image ti, sim;
  NUVOInitImage(&ti);
  NUVOInitImage(&sim);
  ASSERT_EQ(
      nuvo_test::makeImage(&ti, 7, 1, 1, {"facies"}, [&](int x, int, int, int) { return line[x]; }),
      0);
  ASSERT_EQ(
      nuvo_test::makeImage(&sim, 3, 1, 1, {"facies"},
                           [](int x, int, int, int) { return x == 0 ? 1.0 : NUVO_MISSING_VALUE; }),
      0);
  const nuvo_test::BuiltNeighborhood nb(2.0, 0.0, 0.0);
  ASSERT_EQ(nb.rc, 0);

  const nuvo::RealizationSetup setup = nuvo_test::bareSetup(ti, nb.nb, 2, 0.05);

  const std::vector<signed char> toSimulate = {0, 1, 1};
  const std::vector<int> path = {1, 2};
  nuvo::test::TempStream report;
  ASSERT_EQ(nuvo::simulateRealization(setup, &sim, toSimulate, path, 5, {}, report.get(), nullptr,
                                      nullptr),
            0);
  EXPECT_EQ(sim.var[1], 2.0);
  EXPECT_NE(report.contents().find("#flagged nodes (for resimul.) :         2\n"),
            std::string::npos)
      << report.contents();

  NUVOFreeImage(&ti);
  NUVOFreeImage(&sim);
}

}  // namespace
