#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <set>
#include <vector>

#include "nuvo_classofvalues.h"
#include "nuvo_variogram.h"
#include "pyramid/pyramid_variables.hpp"
#include "tests/engine/channel_simulation.hpp"
#include "tests/support/pyramid_input.hpp"
#include "tests/support/temp_stream.hpp"

namespace {

using nuvo_test::valuesOf;

// A 100 x 100 simulation of a channel image (150 x 150, channels along x, five
// nodes wide) with 12 neighbours in a 7 x 7 window, scanning a tenth of the
// training image (1.6 times it on the coarsest level), kept in memory.
class PyramidSimulation : public nuvo_test::InMemorySimulation {
 protected:
  void SetUp() override {
    build([](nuvo_image *ti) { return NUVOGenerateChannelImage(ti, 150, 150, 1, 0.3, 5.0, 4); },
          100);
    si_.consoleAppFlag = 0;
    si_.nneighboringNode[0] = 12;
    si_.maxScanFraction[0] = 0.1;
    NUVOInitProgressMonitor(&pm_);
  }

  void usePyramid(int mode, int type) { nuvo_test::usePyramid(&si_, mode, type); }
  void resize(int n) { nuvo_test::setSimGrid(&si_, n, n, 1); }
  double value(int k) const { return out_.outputSimImage->var[k]; }

  nuvo_progressMonitor pm_;
};

// Mean absolute difference between the channel connectivity of `image` and of
// the training image along x, at lags 20 to 60.
double connectivityGap(const nuvo_image &image, const nuvo_image &ti) {
  const auto profile = [](const nuvo_image &im) {
    nuvo::test::EmptyImage map;
    EXPECT_EQ(NUVOImageConnectivityFunction0(&im, &map.image, 0, 20, 60, 10, 0, 0, 1, 0, 0, 1, 0),
              0);
    return nuvo::test::imageValues(map.image);
  };
  const std::vector<double> a = profile(image), b = profile(ti);
  double gap = 0.0;
  for (std::size_t i = 0; i < a.size(); ++i) gap += std::fabs(a[i] - b[i]) / a.size();
  return gap;
}

TEST_F(PyramidSimulation, ReproducesLongChannelsBetterThanTheSingleGrid) {
  ASSERT_EQ(simulate(), 0);
  const double flat = connectivityGap(*out_.outputSimImage, si_.trainImage[0]);
  usePyramid(PYRAMID_SIM_HIERARCHICAL, PYRAMID_CATEGORICAL_AUTO);
  ASSERT_EQ(simulate(), 0);
  const double pyramid = connectivityGap(*out_.outputSimImage, si_.trainImage[0]);
  std::printf("connectivity gap: single grid %.3f, pyramid %.3f\n", flat, pyramid);
  EXPECT_LT(pyramid, 0.7 * flat);
}

// Every mode with every categorical type, with and without a rotation map: the
// data stay, only training categories appear, and a stop is honoured.
TEST_F(PyramidSimulation, ModesHonourDataAndCategories) {
  resize(40);
  const int data[][2] = {{0, 1}, {417, 0}, {818, 1}, {1599, 1}, {1230, 0}};
  for (const auto &d : data) si_.simImage->var[d[0]] = d[1];
  // An azimuth map turning from -10 to 29 degrees along x, reduced per level.
  si_.rotationAzimuthImageFlag = 1;
  si_.rotationAzimuthImage =
      nuvo_test::newImage(40, 40, 1, {"azimuth"}, [](int ix, int, int, int) { return ix - 10.0; });
  si_.rotationDipValue = valuesOf<double>({0.0});
  si_.rotationPlungeValue = valuesOf<double>({0.0});
  for (int mode : {PYRAMID_SIM_HIERARCHICAL, PYRAMID_SIM_HIERARCHICAL_USING_EXPANSION,
                   PYRAMID_SIM_ALL_LEVEL_ONE_BY_ONE})
    for (int type : {PYRAMID_CATEGORICAL_AUTO, PYRAMID_CATEGORICAL_CUSTOM,
                     PYRAMID_CATEGORICAL_TO_CONTINUOUS}) {
      SCOPED_TRACE(testing::Message() << "mode " << mode << ", type " << type);
      usePyramid(mode, type);
      si_.rotationUsage = type == PYRAMID_CATEGORICAL_TO_CONTINUOUS ? 1 : 0;
      ASSERT_EQ(simulate(), 0);
      for (const auto &d : data) EXPECT_EQ(value(d[0]), d[1]);
      std::set<double> seen(out_.outputSimImage->var, out_.outputSimImage->var + 1600);
      EXPECT_EQ(seen, (std::set<double>{0.0, 1.0}));
    }
  // The layout of the last run, and its steps in order.
  nuvo::test::TempStream report;
  NUVOFreeSimOutput(&out_);
  ASSERT_EQ(NUVOSimPyramid(&si_, &out_, report.get(), &pm_, nullptr), 0);
  const std::string text = report.contents();
  for (const char *line :
       {"Number of pyramid levels:  2\n",
        "SG   :   1 |     20 x     20 x      1 |  2 x  2 x  0 | 0 x 0 x 0 |  1 |   1 | -\n",
        "TI  0:   2 |     38 x     38 x      1 |  2 x  2 x  0 | 0 x 0 x 0 |  1 |   1 | 1.60E+00 "
        "(3.20E+00)\n",
        "Pyramid simulation mode: PYRAMID_SIM_ALL_LEVEL_ONE_BY_ONE\n",
        "- simulating pyramid level 1 of 2\n"})
    EXPECT_NE(text.find(line), std::string::npos) << line;
  pm_.stopFlag = 1;
  NUVOFreeSimOutput(&out_);
  EXPECT_EQ(NUVOSimPyramid(&si_, &out_, nullptr, &pm_, nullptr), -1000);
  pm_.stopFlag = 0;
  // A single category leaves the coarse levels without indicator to simulate.
  resize(40);
  usePyramid(PYRAMID_SIM_HIERARCHICAL, PYRAMID_CATEGORICAL_AUTO);
  std::fill_n(si_.trainImage[0].var, si_.trainImage[0].nxyzv, 0.0);
  EXPECT_EQ(simulate(), -3670);
}

// Three categories in stripes 0 0 0 2 1 1 2 along x: 0 is the most frequent and
// touches only 2, which touches 1, so the continuous order is 0, 2, 1.
TEST(PyramidVariables, OrderCategoriesByConnection) {
  const double stripe[] = {0, 0, 0, 2, 1, 1, 2};
  const nuvo::test::TestImage ti(14, 3, 1, {"facies"},
                                 [&](int ix, int, int, int) { return stripe[ix % 7]; });
  nuvo::test::TestImage simImage(3, 1, 1, {"facies"}, {1.0, 2.0, NUVO_MISSING_VALUE});
  nuvo_image &sim = simImage.image;
  nuvo::test::EmptyImage out;
  nuvo_test::OwnedSimInput in(sim, {0});
  nuvo_test::addTrainImage(&in.si, &ti.image);
  in.si.pyramidParameters =
      nuvo_test::initialisedRecords<nuvo_pyramidParameters>(1, NUVOInitPyramidParameters);
  in.si.pyramidParameters[0] = {1, PYRAMID_CATEGORICAL_TO_CONTINUOUS, nullptr};
  nuvo::PyramidVariables vars;
  ASSERT_EQ(vars.prepare(in.si, {in.si.trainImage, 1}), 0);
  ASSERT_EQ(vars.transform(sim, true, &out.image), 0);
  EXPECT_EQ(nuvo::test::imageValues(out.image),
            (std::vector<double>{1.0, 0.5, NUVO_MISSING_VALUE}));
  sim.var[2] = 5.0;
  EXPECT_EQ(vars.transform(sim, true, &out.image), -554);
}

}  // namespace
