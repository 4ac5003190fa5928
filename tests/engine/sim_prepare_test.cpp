#include <gtest/gtest.h>

#include <vector>

#include "manual_neighborhood.hpp"
#include "nuvo_path.h"
#include "nuvo_simneighborhoods.h"
#include "tests/data/data_builders.hpp"

namespace {

using nuvo_test::manualNeighborhood;

// A simulation input whose members point into storage owned by the fixture (so
// it is never given to NUVOFreeSimInput).
class SimPrepare : public ::testing::Test {
 protected:
  void SetUp() override {
    NUVOInitSimInput(&in_);
    simGrid_ = nuvo::test::makeGrid(10, 8, 3);
    tiGrid_ = nuvo::test::makeGrid(20, 5, 4);
    simImage_ = nuvo_image{&simGrid_, 3, 0, nullptr, nullptr};
    trainImage_[0] = nuvo_image{&tiGrid_, 3, 0, nullptr, nullptr};
    trainImage_[1] = nuvo_image{};
    params_ = {manualNeighborhood(2.0, 1.0, 1.0, 0.0), manualNeighborhood(3.0, 2.0, 0.0, 1.0),
               manualNeighborhood(2.0, 1.0, 1.0, 0.0)};
    params_[2].rotationFlag = SEARCHNEIGHBORHOOD_ROTATION_ON;  // not compared
    in_.simImage = &simImage_;
    in_.nvar = 3;
    in_.ntrainImage = 2;
    in_.simGridAsTiFlag = asTi_;
    in_.trainImage = trainImage_;
    in_.searchNeighborhoodParameters = params_.data();
    in_.conditioningWeightFactor = factor_;
    in_.simAndPathParameters = &path_;
    flag_.assign(3 * simGrid_.nxyz, 1);
    NUVOInitSimSearchNeighborhoods(&s_);
    NUVOInitRandContext(&ctx_);
    NUVOInitProgressMonitor(&pm_);
  }
  void TearDown() override { NUVOFreeSimSearchNeighborhoods(&s_); }

  nuvo_simInput in_;
  nuvo_grid simGrid_, tiGrid_;
  nuvo_image simImage_, trainImage_[2];
  signed char asTi_[2] = {0, 1};
  std::vector<nuvo_searchNeighborhoodParameters> params_;
  double factor_[3] = {1.0, 1.0, 1.0};
  nuvo_simAndPathParameters path_{};
  std::vector<signed char> flag_;
  nuvo_simSearchNeighborhoods s_;
  nuvo_randContext ctx_;
  nuvo_progressMonitor pm_;
};

TEST_F(SimPrepare, VariablesWithEqualParametersShareOneList) {
  ASSERT_EQ(NUVOSimPrepareSearchNeighborhood(&in_, flag_.data(), &s_, &ctx_, &pm_), 0);
  ASSERT_EQ(s_.nsearchNeighborhood, 2);
  EXPECT_EQ(std::vector<int>(s_.searchNeighborhoodIndex, s_.searchNeighborhoodIndex + 3),
            (std::vector<int>{0, 1, 0}));
  const nuvo_searchNeighborhood &a = s_.searchNeighborhood[0], &b = s_.searchNeighborhood[1];
  EXPECT_EQ(std::vector<int>(s_.start, s_.start + 2), (std::vector<int>{0, a.size}));
  EXPECT_EQ(s_.totalSize, a.size + b.size);
  ASSERT_EQ(s_.ntiOffset, 2);
  for (int j = 0; j < b.size; ++j) {
    int i = s_.start[1] + j;
    EXPECT_EQ(s_.simGridOffset[i], b.ix[j] + 10 * b.iy[j] + 80 * b.iz[j]);
    EXPECT_EQ(s_.tiOffset[0][i], b.ix[j] + 20 * b.iy[j] + 100 * b.iz[j]);
    EXPECT_EQ(s_.tiOffset[1][i], s_.simGridOffset[i]);  // the simulation grid as TI
  }
}

TEST_F(SimPrepare, WeightsAreUniformWithPowerZeroUnlessConditioningWeighsOtherwise) {
  factor_[2] = 2.0;
  ASSERT_EQ(NUVOSimPrepareSearchNeighborhood(&in_, flag_.data(), &s_, &ctx_, &pm_), 0);
  // Variable 1 has power 1; variable 2 factor 2, but no datum.
  EXPECT_EQ(std::vector<int>(s_.weightUnifFlag, s_.weightUnifFlag + 3),
            (std::vector<int>{1, 0, 1}));
  NUVOFreeSimSearchNeighborhoods(&s_);

  flag_[2 * simGrid_.nxyz + 17] = 0;  // one datum of variable 2
  ASSERT_EQ(NUVOSimPrepareSearchNeighborhood(&in_, flag_.data(), &s_, &ctx_, &pm_), 0);
  EXPECT_EQ(std::vector<int>(s_.weightUnifFlag, s_.weightUnifFlag + 3),
            (std::vector<int>{1, 0, 0}));
}

TEST_F(SimPrepare, RefusesNoVariableAndStopsOnRequest) {
  in_.nvar = 0;
  EXPECT_EQ(NUVOSimPrepareSearchNeighborhood(&in_, flag_.data(), &s_, &ctx_, &pm_), -3);
  in_.nvar = 3;
  pm_.stopFlag = 1;
  EXPECT_EQ(NUVOSimPrepareSearchNeighborhood(&in_, flag_.data(), &s_, &ctx_, &pm_), -1000);
}

TEST_F(SimPrepare, PathTemplateSplitsInformedAndMaskedEntriesFromTheOthers) {
  simGrid_ = nuvo::test::makeGrid(3, 2, 1);
  simImage_.nvar = in_.nvar = 2;
  // Node 4 is masked; variable 0 is known at nodes 0 and 1, variable 1 at node 1.
  double mask[6] = {1, 1, 1, 1, 0, 1};
  nuvo_image maskImage{&simGrid_, 1, 6, nullptr, mask};
  in_.maskImageFlag = 1;
  in_.maskImage = &maskImage;
  signed char flag[12] = {0, 0, 1, 1, 1, 1, 1, 0, 1, 1, 1, 1};
  int path[12], vectorPath[6], n[4];

  path_.simType = SIM_ONE_BY_ONE;
  ASSERT_EQ(NUVOSimPrepareSimulationPath(&in_, flag, 12, path, &n[0], &n[1], nullptr, &n[2], &n[3]),
            0);
  EXPECT_EQ(std::vector<int>(path, path + 12),
            (std::vector<int>{0, 1, 4, 7, 10, 11, 9, 8, 6, 5, 3, 2}));
  EXPECT_EQ(std::vector<int>(n, n + 4), (std::vector<int>{5, 7, 0, 0}));

  path_.simType = SIM_VARIABLE_VECTOR;
  ASSERT_EQ(
      NUVOSimPrepareSimulationPath(&in_, flag, 12, path, &n[0], &n[1], vectorPath, &n[2], &n[3]),
      0);
  EXPECT_EQ(std::vector<int>(vectorPath, vectorPath + 6), (std::vector<int>{1, 4, 5, 3, 2, 0}));
  EXPECT_EQ(std::vector<int>(n + 2, n + 4), (std::vector<int>{2, 4}));
}

}  // namespace
