#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "engine/realization.hpp"
#include "tests/data/data_builders.hpp"
#include "tests/engine/bare_setup.hpp"
#include "tests/support/temp_stream.hpp"

namespace {

// A three-node line: node 0 holds a datum (1), node 1 then node 2 are simulated
// from the line 0 0 0 0 0 1 2. Node 1 sees the datum alone and matches it exactly
// (it takes the 2 after the only 1), but no place of the line continues 1 2, so
// node 2 matches poorly: node 2 and node 1, of its data event, are flagged; the
// datum is not.
TEST(PostProcessingFlags, PoorMatchFlagsTheSimulatedNodesOfItsDataEvent) {
  const nuvo::test::TestImage ti(7, 1, 1, {"facies"}, {0, 0, 0, 0, 0, 1, 2});
  nuvo::test::TestImage sim(3, 1, 1, {"facies"}, {1, NUVO_MISSING_VALUE, NUVO_MISSING_VALUE});
  const nuvo_test::BuiltNeighborhood nb(2.0, 0.0, 0.0);
  ASSERT_EQ(nb.rc, 0);
  const nuvo::RealizationSetup setup = nuvo_test::bareSetup(ti.image, nb.nb, 2, 0.05);

  const std::vector<signed char> toSimulate = {0, 1, 1};
  const std::vector<int> path = {1, 2};
  nuvo::test::TempStream report;
  ASSERT_EQ(nuvo::simulateRealization(setup, &sim.image, toSimulate, path, 5, {}, report.get(),
                                      nullptr, nullptr),
            0);
  EXPECT_EQ(sim.image.var[1], 2.0);
  EXPECT_NE(report.contents().find("#flagged nodes (for resimul.) :         2\n"),
            std::string::npos)
      << report.contents();
}

}  // namespace
