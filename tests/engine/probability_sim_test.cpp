// Simulations under probability constraints: channels (sand 1, background 0) from
// a training image holding about 0.28 of sand, on a 40 x 40 grid.
#include <gtest/gtest.h>

#include <functional>
#include <vector>

#include "channel_simulation.hpp"
#include "nuvo_sim.h"
#include "nuvo_synthetic.h"
#include "tests/constraints/test_files.hpp"
#include "tests/data/data_builders.hpp"
#include "tests/support/checksum.hpp"

namespace {

using nuvo_test::require;

class ProbabilitySimulation : public nuvo_test::ChannelSimulation {
 protected:
  // Two classes, background [-0.5, 0.5[ and sand [0.5, 1.5[, with the method and
  // constant threshold given.
  nuvo_softProbability &constrain(int usage, int method, double threshold) {
    nuvo_softProbability &sp = si_.softProbability[0];
    NUVOFreeSoftProbability(&sp);
    sp.probabilityConstraintUsage = usage;
    sp.classOfValues = nuvo_test::newClasses("2  1 -0.5 0.5  1 0.5 1.5");
    sp.comparingPdfMethod = method;
    sp.constantThreshold = threshold;
    return sp;
  }
  void constrainGlobal(double sand, int method, double threshold) {
    constrain(NUVO_PROBABILITY_CONSTRAINT_GLOBAL, method, threshold).globalPdf =
        nuvo_test::valuesOf<double>({1.0 - sand, sand});
  }

  // The sand proportion over the columns [x0, x1[ of every realization of the
  // last run.
  double sandIn(int x0, int x1) const {
    int sand = 0;
    for (int r = 0; r < out_.nreal; ++r)
      for (int y = 0; y < kN; ++y)
        for (int x = x0; x < x1; ++x)
          sand += out_.outputSimImage->var[(r * kN + y) * kN + x] == 1.0;
    return static_cast<double>(sand) / (out_.nreal * kN * (x1 - x0));
  }
  // Runs the simulation; the sand proportion of all its realizations.
  double meanSand() {
    EXPECT_EQ(simulate(), 0);
    return sandIn(0, kN);
  }
};

// MAE over two classes is |q - p| of the sand class: the constraint pushes while
// the running proportion is more than the threshold (0.05) from the target, so
// the result ends within the threshold of it; 0.03 more allows for the spread of
// a 1600-node realization. Every other method and a dynamic threshold push
// towards the target too.
TEST_F(ProbabilitySimulation, GlobalTargetIsReachedByEveryMethodWithDataAndChannelsKept) {
  si_.nrealization = 3;
  si_.simImage->var[5 * kN + 5] = 0.0;
  si_.simImage->var[20 * kN + 30] = 1.0;
  const double free = meanSand();
  constrainGlobal(0.45, NUVO_COMPARING_PDF_MAE, 0.05);
  const double constrained = meanSand();
  EXPECT_LT(free, 0.35);
  EXPECT_GT(constrained, 0.45 - 0.05 - 0.03);
  EXPECT_LT(constrained, 0.45 + 0.05);
  for (int r = 0; r < 3; ++r) {
    const double *v = out_.outputSimImage->var + r * kN * kN;
    EXPECT_EQ(v[5 * kN + 5], 0.0);
    EXPECT_EQ(v[20 * kN + 30], 1.0);
    // Channels run along x: a sand node's neighbour along x is mostly sand.
    int sand = 0, continued = 0;
    for (int i = 0; i < kN * kN; ++i)
      if (v[i] == 1.0 && i % kN + 1 < kN) {
        ++sand;
        continued += v[i + 1] == 1.0;
      }
    EXPECT_GT(continued, 0.75 * sand);
  }
  const double threshold[] = {0.05, 0.05, 0.01, 0.01, 0.02, 0.02};
  for (int method = 0; method <= 5; ++method) {
    constrainGlobal(0.5, method, threshold[method]);
    EXPECT_GT(meanSand(), free + 0.08) << "method " << method;
  }
  constrainGlobal(0.5, NUVO_COMPARING_PDF_MAE, 0.0);
  nuvo_softProbability &sp = si_.softProbability[0];
  sp.probabilityConstraintThresholdType = NUVO_PROBABILITY_THRESHOLD_DYNAMIC;
  sp.dynamicThresholdParameters = nuvo_test::valuesOf<double>({10, 100, 1000, 0.5, 0.2, 0.05, 0.5});
  EXPECT_GT(meanSand(), free + 0.08) << "dynamic threshold";
  // A target below the training image's proportion pulls down.
  constrainGlobal(0.1, NUVO_COMPARING_PDF_MAE, 0.05);
  EXPECT_LT(meanSand(), free - 0.08);
}

// A sand probability rising from 0.1 to 0.6 across x: the proportion of sand in
// each third of the columns follows it, in both ways of counting the local pdf.
TEST_F(ProbabilitySimulation, LocalTrendIsFollowedAcrossTheGrid) {
  si_.nrealization = 2;
  for (int mode : {NUVO_LOCAL_CURRENT_PDF_COMPLETE, NUVO_LOCAL_CURRENT_PDF_APPROXIMATE}) {
    nuvo_softProbability &sp =
        constrain(NUVO_PROBABILITY_CONSTRAINT_LOCAL, NUVO_COMPARING_PDF_MAE, 0.05);
    sp.localPdfImage = nuvo_test::newImage(kN, kN, 1, {"p0", "p1"}, [](int x, int, int, int iv) {
      const double sand = 0.1 + 0.5 * x / (kN - 1);
      return iv == 1 ? sand : 1.0 - sand;
    });
    sp.localPdfSupportRadius = nuvo_test::valuesOf<double>({6.0});
    sp.localCurrentPdfComputation = mode;
    ASSERT_EQ(simulate(), 0);
    const double left = sandIn(0, kN / 3), right = sandIn(2 * kN / 3, kN);
    EXPECT_NEAR(left, 0.1 + 0.5 / 6, 0.1) << "mode " << mode;
    EXPECT_NEAR(right, 0.6 - 0.5 / 6, 0.12) << "mode " << mode;
  }
}

// Speed work must leave the realizations under constraints unchanged too.
TEST_F(ProbabilitySimulation, RealizationsArePinned) {
  constrainGlobal(0.45, NUVO_COMPARING_PDF_MLIKROPT, 0.02);
  ASSERT_EQ(simulate(), 0);
  EXPECT_EQ(nuvo_test::checksum(*out_.outputSimImage), 0xd0041d262bfaf285ull);
  nuvo_softProbability &sp =
      constrain(NUVO_PROBABILITY_CONSTRAINT_LOCAL, NUVO_COMPARING_PDF_JSD, 0.01);
  sp.localPdfImage = nuvo_test::newImage(kN, kN, 1, {"p0", "p1"}, [](int, int y, int, int iv) {
    return iv == 1 ? 0.6 - 0.01 * y : 0.4 + 0.01 * y;
  });
  sp.localPdfSupportRadius = nuvo_test::valuesOf<double>({4.0});
  sp.deactivationDistance = 1.5;
  ASSERT_EQ(simulate(), 0);
  EXPECT_EQ(nuvo_test::checksum(*out_.outputSimImage), 0xa312446d304f98b8ull);
}

TEST_F(ProbabilitySimulation, InconsistentInputsGiveTheirCodes) {
  constrainGlobal(0.45, NUVO_COMPARING_PDF_MAE, 0.05);
  ASSERT_EQ(verdict(), 0);
  const std::vector<std::pair<std::function<void()>, int>> cases = {
      {[&] {
         si_.distanceType[0] = 1;
         si_.relativeDistanceFlag[0] = 1;
       },
       -1943},
      {[&] { si_.neighboringNodeDensity[0] = 0.5; }, -1944},
      {[&] { si_.trainImage[0].var[7] = 3.0; }, -1928},
      {[&] { si_.simImage->var[7] = 2.0; }, -1929},
      {[&] {
         nuvo::test::EmptyPointSet ps;
         require(NUVOSampleImage(&si_.trainImage[0], 3, 1, &ps.ps));
         ps->val[1] = 7.0;
         nuvo_test::addDataPointSet(&si_, ps.ps);
       },
       -1930},
  };
  for (const auto &[spoil, code] : cases) {
    TearDown();
    SetUp();
    constrainGlobal(0.45, NUVO_COMPARING_PDF_MAE, 0.05);
    spoil();
    EXPECT_EQ(verdict(), code);
  }

  // The local pdf image, node 3 spoiled in turn.
  const std::vector<std::pair<std::vector<double>, int>> local = {
      {{0.5, NUVO_MISSING_VALUE}, -1942},
      {{-0.1, 1.1}, -1946},
      {{0.5, 1.2}, -1947},
      {{0.5, 0.52}, -1948},
      {{0.5, 0.509}, 0},
      {{NUVO_MISSING_VALUE, NUVO_MISSING_VALUE}, 0}};
  for (const auto &[values, code] : local) {
    TearDown();
    SetUp();
    nuvo_softProbability &sp =
        constrain(NUVO_PROBABILITY_CONSTRAINT_LOCAL, NUVO_COMPARING_PDF_MAE, 0.05);
    sp.localPdfImage =
        nuvo_test::newImage(kN, kN, 1, {"p0", "p1"}, [](int, int, int, int) { return 0.5; });
    sp.localPdfSupportRadius = nuvo_test::valuesOf<double>({6.0});
    sp.localPdfImage->var[3] = values[0];
    sp.localPdfImage->var[kN * kN + 3] = values[1];
    EXPECT_EQ(verdict(), code);
    sp.localPdfImage->grid->nx = kN - 1;
    if (code == 0) {
      EXPECT_EQ(verdict(), -1945);
    }
  }
}

}  // namespace
