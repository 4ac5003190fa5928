#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "engine/realization.hpp"
#include "nuvo_path.h"
#include "nuvo_synthetic.h"
#include "tests/data/data_builders.hpp"
#include "tests/engine/bare_setup.hpp"
#include "tests/support/random.hpp"
#include "tests/support/temp_stream.hpp"
#include "tests/support/warning_recorder.hpp"

namespace {

// A categorical simulation of a 40 x 40 grid from an 80 x 80 channel image, with
// a few conditioning data, ready to run.
class ChannelRealization : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_EQ(NUVOGenerateChannelImage(&ti_, 80, 80, 1, 0.3, 6.0, 21), 0);
    ASSERT_EQ(NUVOResizeImage(&ti_, &sim_, 0, 39, 0, 39, 0, 0, 0, 0), 0);
    for (int i = 0; i < sim_.nxyzv; ++i) sim_.var[i] = NUVO_MISSING_VALUE;
    for (int k : kData) sim_.var[k] = k % 2;
    toSimulate_.assign(sim_.nxyzv, 1);
    for (int k : kData) toSimulate_[k] = 0;

    ASSERT_EQ(nb_.rc, 0);
    setup_ = nuvo_test::bareSetup(ti_, nb_.nb, 24, 0.05);
    scanHalf();
  }
  // Scans half of the training images of setup_ for each node.
  void scanHalf() {
    const double fraction[] = {0.5};
    setup_.initial.maxScan = setup_.postProcessing.maxScan = nuvo::maxScanTable(setup_, fraction);
  }

  std::vector<int> randomPath(int seed) const {
    std::vector<int> path;
    for (int k = 0; k < sim_.nxyzv; ++k)
      if (toSimulate_[k]) path.push_back(k);
    nuvo_randContext ctx = nuvo_test::seededContext(seed);
    NUVOPathRandom(static_cast<int>(path.size()), path.data(), &ctx);
    return path;
  }

  // Runs a realization from the conditioned state and returns its values.
  std::vector<double> run(int seed, const nuvo::RealizationMaps &maps = {}) {
    std::vector<double> start(sim_.var, sim_.var + sim_.nxyzv);
    const std::vector<int> path = randomPath(seed);
    EXPECT_EQ(nuvo::simulateRealization(setup_, &sim_, toSimulate_, path, seed, maps, nullptr,
                                        nullptr, nullptr),
              0);
    std::vector<double> result(sim_.var, sim_.var + sim_.nxyzv);
    std::copy(start.begin(), start.end(), sim_.var);
    return result;
  }

  static constexpr int kData[] = {0, 41, 170, 555, 903, 1210, 1599};
  nuvo::test::EmptyImage tiImage_, simImage_;
  nuvo_image &ti_ = tiImage_.image, &sim_ = simImage_.image;
  const nuvo_test::BuiltNeighborhood nb_{8.0, 8.0, 0.0};
  std::vector<signed char> toSimulate_;
  nuvo::RealizationSetup setup_;
};

double proportionOfOnes(const std::vector<double> &v) {
  return std::count(v.begin(), v.end(), 1.0) / static_cast<double>(v.size());
}

TEST_F(ChannelRealization, HonoursDataReproducesTheProportionAndFollowsItsSeed) {
  const std::vector<double> a = run(7);
  for (double v : a) ASSERT_TRUE(v == 0.0 || v == 1.0);
  for (int k : kData) EXPECT_EQ(a[k], k % 2);
  EXPECT_NEAR(proportionOfOnes(a), 0.3, 0.12);
  EXPECT_EQ(run(7), a);
  EXPECT_NE(run(8), a);
}

TEST_F(ChannelRealization, FillsTheAdditionalMaps) {
  nuvo::test::EmptyImage maps[4];
  for (nuvo::test::EmptyImage &m : maps) ASSERT_EQ(NUVOCopyImage(&sim_, &m.image), 0);
  run(3, {&maps[0].image, &maps[1].image, &maps[2].image, &maps[3].image});
  const std::vector<int> path = randomPath(3);
  for (std::size_t k = 0; k < path.size(); ++k) {
    const int node = path[k];
    EXPECT_EQ(maps[0]->var[node], static_cast<double>(k));
    EXPECT_GE(maps[1]->var[node], 0.0);
    EXPECT_EQ(maps[3]->var[node], 0.0);
    const int tiNode = static_cast<int>(maps[2]->var[node]);
    ASSERT_GE(tiNode, 0);
    ASSERT_LT(tiNode, ti_.nxyzv);
  }
}

TEST_F(ChannelRealization, WarnsOnceWhenDataEventsOutgrowTheTrainingImage) {
  nuvo::test::EmptyImage small;
  ASSERT_EQ(NUVOGenerateChannelImage(&small.image, 6, 6, 1, 0.3, 2.0, 1), 0);
  setup_.ti = {&small.image};
  scanHalf();
  nuvo::test::WarningList log;
  const std::vector<int> path = randomPath(4);
  ASSERT_EQ(nuvo::simulateRealization(setup_, &sim_, toSimulate_, path, 4, {}, nullptr, &log.pm,
                                      nuvo::test::WarningList::callback),
            0);
  EXPECT_EQ(log.seen, std::vector<int>{38});
  for (int i = 0; i < sim_.nxyzv; ++i) ASSERT_TRUE(sim_.var[i] == 0.0 || sim_.var[i] == 1.0);
}

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
