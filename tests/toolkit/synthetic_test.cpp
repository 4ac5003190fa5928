#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

#include "nuvo_synthetic.h"
#include "tests/data/data_builders.hpp"

namespace {

// An image owned by the test, with its value at a node and the share of a value.
struct Image : nuvo::test::EmptyImage {
  double at(int ix, int iy) const { return image.var[ix + image.grid->nx * iy]; }
  double proportion(double value) const {
    return std::count(image.var, image.var + image.nxyzv, value) / double(image.nxyzv);
  }
};

// The channels' direction is checked through the variogram ranges, in
// variogram_test.cpp.
TEST(ChannelImage, ReachesItsProportionAndIsDeterministicBySeed) {
  Image a, b, c;
  ASSERT_EQ(NUVOGenerateChannelImage(&a.image, 150, 150, 1, 0.28, 8.0, 7), 0);
  EXPECT_STREQ(a.image.varName[0], "facies");
  EXPECT_NEAR(a.proportion(1.0), 0.28, 0.05);
  EXPECT_NEAR(a.proportion(0.0) + a.proportion(1.0), 1.0, 1e-12);
  ASSERT_EQ(NUVOGenerateChannelImage(&b.image, 150, 150, 1, 0.28, 8.0, 7), 0);
  ASSERT_EQ(NUVOGenerateChannelImage(&c.image, 150, 150, 1, 0.28, 8.0, 8), 0);
  EXPECT_EQ(std::memcmp(a.image.var, b.image.var, sizeof(double) * a.image.nxyzv), 0);
  EXPECT_NE(std::memcmp(a.image.var, c.image.var, sizeof(double) * a.image.nxyzv), 0);
  EXPECT_EQ(NUVOGenerateChannelImage(&c.image, 60, 40, 5, 1.0, 6.0, 1), -4301);
  EXPECT_EQ(NUVOGenerateChannelImage(&c.image, 60, 40, 5, 0.3, 0.5, 1), -4301);
  EXPECT_EQ(NUVOGenerateChannelImage(&c.image, 0, 40, 5, 0.3, 6.0, 1), -3);
  EXPECT_EQ(NUVOGenerateChannelImage(&c.image, 100000, 100000, 1, 0.3, 6.0, 1), -3);
}

TEST(LensImage, HoldsThreeFaciesNearTheirProportions) {
  Image a;
  ASSERT_EQ(NUVOGenerateLensImage(&a.image, 80, 60, 20, 3), 0);
  const double sand = a.proportion(1.0), shale = a.proportion(2.0);
  EXPECT_NEAR(sand + shale + a.proportion(0.0), 1.0, 1e-12);
  EXPECT_GT(sand, 0.1);
  EXPECT_GT(shale, 0.1);
  EXPECT_LT(sand + shale, 0.6);
}

TEST(ContinuousImage, IsRoughlyStandardAndSmooth) {
  Image a;
  ASSERT_EQ(NUVOGenerateContinuousImage(&a.image, 120, 120, 1, 6.0, 5), 0);
  double sum = 0, sum2 = 0, dsum2 = 0;
  for (int iy = 0; iy < 120; ++iy)
    for (int ix = 0; ix < 120; ++ix) {
      const double v = a.at(ix, iy);
      sum += v;
      sum2 += v * v;
      if (ix > 0) dsum2 += (v - a.at(ix - 1, iy)) * (v - a.at(ix - 1, iy));
    }
  const double n = 120.0 * 120.0;
  const double var = sum2 / n - (sum / n) * (sum / n);
  EXPECT_NEAR(sum / n, 0.0, 0.5);
  EXPECT_GT(var, 0.3);
  // Neighbours one node apart are strongly correlated at a range of 6 nodes.
  EXPECT_LT(dsum2 / (119.0 * 120.0), 0.2 * var);
  EXPECT_EQ(NUVOGenerateContinuousImage(&a.image, 10, 10, 1, 0.0, 5), -4302);
}

TEST(SampleImage, TakesDistinctInformedNodesWithTheirValues) {
  Image a;
  ASSERT_EQ(NUVOGenerateChannelImage(&a.image, 40, 30, 1, 0.3, 4.0, 9), 0);
  a.image.var[0] = NUVO_MISSING_VALUE;
  nuvo::test::EmptyPointSet points;
  nuvo_pointSet &ps = points.ps;
  ASSERT_EQ(NUVOSampleImage(&a.image, 50, 4, &ps), 0);
  ASSERT_EQ(ps.npoint, 50);
  EXPECT_STREQ(ps.varName[0], "facies");
  for (int k = 0; k < ps.npoint; ++k) {
    const int ix = static_cast<int>(ps.x[k]), iy = static_cast<int>(ps.y[k]);
    EXPECT_EQ(ps.x[k], ix + 0.5);
    EXPECT_EQ(ps.val[k], a.at(ix, iy));
    EXPECT_FALSE(ix == 0 && iy == 0);
    if (k > 0) {
      EXPECT_LT(ps.y[k - 1] * 40 + ps.x[k - 1], ps.y[k] * 40 + ps.x[k]);
    }
  }
  ASSERT_EQ(NUVOSampleImage(&a.image, 5000, 4, &ps), 0);
  EXPECT_EQ(ps.npoint, 40 * 30 - 1);
  EXPECT_EQ(NUVOSampleImage(&a.image, 0, 4, &ps), -3);
}

}  // namespace
