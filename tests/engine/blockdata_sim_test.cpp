// Simulations under block data on a 40 x 40 grid: channels (sand 1, background 0,
// about 0.28 of sand in the training image) and a smooth continuous field (about
// standard normal).
#include <gtest/gtest.h>

#include <array>
#include <functional>
#include <string>
#include <vector>

#include "channel_simulation.hpp"
#include "nuvo_sim.h"
#include "nuvo_synthetic.h"
#include "tests/constraints/test_files.hpp"
#include "tests/data/data_builders.hpp"
#include "tests/support/temp_stream.hpp"
#include "tests/support/warning_recorder.hpp"

namespace {

using nuvo_test::require;

using Warnings = nuvo::test::WarningList;

// A rectangle of nodes [x0, x1[ x [y0, y1[ with its target and tolerance.
struct Box {
  int x0, x1, y0, y1;
  double target, tolerance;
};

class BlockDataSimulation : public nuvo_test::ChannelSimulation {
 protected:
  void useContinuousField() {
    NUVOFreeImage(&si_.trainImage[0]);
    require(NUVOGenerateContinuousImage(&si_.trainImage[0], 80, 80, 1, 6.0, 3));
    std::snprintf(si_.simImage->varName[0], NUVO_VAR_NAME_MAX + 1, "value");
    si_.distanceType[0] = 1;
  }

  // Block data read from their file text.
  void setBlocks(const std::vector<Box> &boxes, double propMin = 0.0, double propMax = 1.0) {
    std::string text = std::to_string(boxes.size()) + "\n";
    for (const Box &b : boxes) {
      text += std::to_string((b.x1 - b.x0) * (b.y1 - b.y0)) + " " + std::to_string(b.target) + " " +
              std::to_string(b.tolerance) + " " + std::to_string(propMin) + " " +
              std::to_string(propMax) + "\n";
      for (int y = b.y0; y < b.y1; ++y)
        for (int x = b.x0; x < b.x1; ++x)
          text += std::to_string(x) + " " + std::to_string(y) + " 0\n";
    }
    nuvo_blockData &bd = si_.blockData[0];
    NUVOFreeBlockData(&bd);
    require(NUVOReadBlockData(&bd, nuvo::test::TempStream(text).get()));
    bd.blockDataUsage = NUVO_BLOCK_DATA_MEAN;
  }

  int simulate(nuvo_progressMonitor *pm = nullptr, nuvo_progressCallback cb = nullptr) {
    NUVOFreeSimOutput(&out_);
    return NUVOSim(&si_, &out_, pm, cb);
  }
  double mean(int r, const Box &b) const {
    const double *v = out_.outputSimImage->var + r * kN * kN;
    double sum = 0.0;
    for (int y = b.y0; y < b.y1; ++y)
      for (int x = b.x0; x < b.x1; ++x) sum += v[y * kN + x];
    return sum / ((b.x1 - b.x0) * (b.y1 - b.y0));
  }
  // Every block of every realization ends within its tolerance, and the data at
  // (5, 5) and (25, 30) are kept.
  void expectBlocksReached(const std::vector<Box> &boxes, double d1, double d2) {
    si_.nrealization = 2;
    si_.simImage->var[5 * kN + 5] = d1;
    si_.simImage->var[30 * kN + 25] = d2;
    setBlocks(boxes);
    ASSERT_EQ(simulate(), 0);
    for (int r = 0; r < 2; ++r) {
      for (const Box &b : boxes)
        EXPECT_NEAR(mean(r, b), b.target, b.tolerance) << "realization " << r << ", x0 " << b.x0;
      EXPECT_EQ(out_.outputSimImage->var[r * kN * kN + 5 * kN + 5], d1);
      EXPECT_EQ(out_.outputSimImage->var[r * kN * kN + 30 * kN + 25], d2);
    }
  }
};

// Targets above and below the training image's sand share (about 0.28) or the
// field's mean, one block holding a datum, blocks of different sizes and one
// overlapping another.
TEST_F(BlockDataSimulation, CategoricalAndContinuousBlockMeansEndWithinTolerance) {
  expectBlocksReached({{0, 10, 0, 10, 0.6, 0.05},
                       {20, 36, 25, 35, 0.05, 0.03},
                       {30, 40, 0, 12, 0.45, 0.05},
                       {5, 25, 15, 20, 0.15, 0.05},
                       {0, 40, 36, 40, 0.5, 0.05}},
                      1.0, 0.0);
  SCOPED_TRACE("continuous field");
  useContinuousField();
  expectBlocksReached({{0, 10, 0, 10, 1.2, 0.05},
                       {20, 36, 25, 35, -0.9, 0.05},
                       {30, 40, 0, 12, 0.4, 0.02},
                       {5, 25, 15, 20, -0.3, 0.05}},
                      2.0, -1.5);
}

// Two sand wells to connect across a band of blocks: the connecting path pasted
// into the grid counts in the block sums, so the simulated nodes around it make
// up the rest of the target instead of the whole of it.
TEST_F(BlockDataSimulation, PastedConnectingPathsCountInTheBlocks) {
  const nuvo::test::TestImage wells(kN, kN, 1, {"facies", "well"}, [](int x, int y, int, int) {
    return y == 20 && (x == 2 || x == 37) ? 1.0 : NUVO_MISSING_VALUE;
  });
  nuvo_test::addDataImage(&si_, wells.image);
  nuvo_connectivity &c = si_.connectivity[0];
  c.connectivityConstraintUsage = 1;
  c.connectivityType = 0;
  c.classOfValues = nuvo_test::newClasses("1  1 0.5 1.5");
  c.varName = nuvo_test::newText("well", NUVO_VAR_NAME_MAX + 1);
  c.tiAsRefFlag = 1;
  const std::vector<Box> band = {{0, 20, 14, 27, 0.3, 0.04}, {20, 40, 14, 27, 0.3, 0.04}};
  expectBlocksReached(band, 1.0, 0.0);
}

// Warning 150 for a categorical variable; 160 for a target that no block of the
// training image comes near.
TEST_F(BlockDataSimulation, WarningsOfThePreparation) {
  Warnings w;
  setBlocks({{0, 10, 0, 10, 0.3, 0.05}});
  ASSERT_EQ(simulate(&w.pm, Warnings::callback), 0);
  EXPECT_EQ(w.seen, std::vector<int>{150});
  w.seen.clear();
  setBlocks({{0, 30, 0, 30, 0.97, 0.01}});
  ASSERT_EQ(simulate(&w.pm, Warnings::callback), 0);
  EXPECT_EQ(w.seen, (std::vector<int>{150, 160}));
}

TEST_F(BlockDataSimulation, InconsistentInputsGiveTheirCodes) {
  const std::vector<std::pair<std::function<void()>, int>> cases = {
      {[&] { si_.blockData[0].ix[0][3] = -1; }, -3061},
      {[&] { si_.blockData[0].ix[0][3] = kN; }, -3062},
      {[&] { si_.blockData[0].iy[0][3] = -2; }, -3063},
      {[&] { si_.blockData[0].iy[0][3] = kN; }, -3064},
      {[&] { si_.blockData[0].iz[0][3] = -1; }, -3065},
      {[&] { si_.blockData[0].iz[0][3] = 1; }, -3066},
      {[&] { si_.blockData[0].ix[0][3] = 0; }, -3068},  // (0, 0) listed twice
      {[&] { si_.blockData[0].value[0] = NUVO_MISSING_VALUE; }, -3071},
      {[&] { si_.normalizingType = NORMALIZING_UNIFORM; }, -3055},
      {[&] {  // (3, 0) left out of the simulation
         const nuvo::test::TestImage mask(
             kN, kN, 1, {"mask"}, [](int x, int y, int, int) { return x + y == 3 ? 0.0 : 1.0; });
         nuvo_test::setMask(&si_, mask.image);
       },
       -3067},
  };
  for (const auto &[spoil, code] : cases) {
    TearDown();
    SetUp();
    setBlocks({{0, 4, 0, 4, 0.3, 0.05}});
    ASSERT_EQ(verdict(), 0);
    spoil();
    EXPECT_EQ(verdict(), code);
  }
  // Found by the preparation: a continuous target beyond the training range, and
  // a training image in which every placement of the block meets a missing value.
  TearDown();
  SetUp();
  useContinuousField();
  setBlocks({{0, 4, 0, 4, 9.0, 0.5}});
  EXPECT_EQ(simulate(), -3073);
  setBlocks({{0, 6, 0, 4, 0.3, 0.05}});
  for (int k = 0; k < 80 * 80; k += 5) si_.trainImage[0].var[k] = NUVO_MISSING_VALUE;
  EXPECT_EQ(simulate(), -3075);
}

}  // namespace
