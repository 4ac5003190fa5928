#include <gtest/gtest.h>

#include <cstring>

#include "nuvo_synthetic.h"

namespace {

// Owns an image for the duration of a test.
struct Image {
  Image() { NUVOInitImage(&img); }
  ~Image() { NUVOFreeImage(&img); }
  double at(int ix, int iy, int iz = 0) const {
    return img.var[ix + img.grid->nx * iy + img.grid->nxy * iz];
  }
  double proportion(double value) const {
    int n = 0;
    for (int i = 0; i < img.nxyzv; ++i) n += img.var[i] == value;
    return static_cast<double>(n) / img.nxyzv;
  }
  nuvo_image img;
};

// The channels' direction is checked through the variogram ranges, in
// variogram_test.cpp.
TEST(ChannelImage, ReachesItsProportionAndIsDeterministicBySeed) {
  Image a, b, c;
  ASSERT_EQ(NUVOGenerateChannelImage(&a.img, 150, 150, 1, 0.28, 8.0, 7), 0);
  EXPECT_STREQ(a.img.varName[0], "facies");
  EXPECT_NEAR(a.proportion(1.0), 0.28, 0.05);
  EXPECT_NEAR(a.proportion(0.0) + a.proportion(1.0), 1.0, 1e-12);
  ASSERT_EQ(NUVOGenerateChannelImage(&b.img, 150, 150, 1, 0.28, 8.0, 7), 0);
  ASSERT_EQ(NUVOGenerateChannelImage(&c.img, 150, 150, 1, 0.28, 8.0, 8), 0);
  EXPECT_EQ(std::memcmp(a.img.var, b.img.var, sizeof(double) * a.img.nxyzv), 0);
  EXPECT_NE(std::memcmp(a.img.var, c.img.var, sizeof(double) * a.img.nxyzv), 0);
  EXPECT_EQ(NUVOGenerateChannelImage(&c.img, 60, 40, 5, 1.0, 6.0, 1), -4301);
  EXPECT_EQ(NUVOGenerateChannelImage(&c.img, 60, 40, 5, 0.3, 0.5, 1), -4301);
  EXPECT_EQ(NUVOGenerateChannelImage(&c.img, 0, 40, 5, 0.3, 6.0, 1), -3);
  EXPECT_EQ(NUVOGenerateChannelImage(&c.img, 100000, 100000, 1, 0.3, 6.0, 1), -3);
}

TEST(LensImage, HoldsThreeFaciesNearTheirProportions) {
  Image a;
  ASSERT_EQ(NUVOGenerateLensImage(&a.img, 80, 60, 20, 3), 0);
  const double sand = a.proportion(1.0), shale = a.proportion(2.0);
  EXPECT_NEAR(sand + shale + a.proportion(0.0), 1.0, 1e-12);
  EXPECT_GT(sand, 0.1);
  EXPECT_GT(shale, 0.1);
  EXPECT_LT(sand + shale, 0.6);
}

TEST(ContinuousImage, IsRoughlyStandardAndSmooth) {
  Image a;
  ASSERT_EQ(NUVOGenerateContinuousImage(&a.img, 120, 120, 1, 6.0, 5), 0);
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
  EXPECT_EQ(NUVOGenerateContinuousImage(&a.img, 10, 10, 1, 0.0, 5), -4302);
}

TEST(SampleImage, TakesDistinctInformedNodesWithTheirValues) {
  Image a;
  ASSERT_EQ(NUVOGenerateChannelImage(&a.img, 40, 30, 1, 0.3, 4.0, 9), 0);
  a.img.var[0] = NUVO_MISSING_VALUE;
  nuvo_pointSet ps;
  NUVOInitPointSet(&ps);
  ASSERT_EQ(NUVOSampleImage(&a.img, 50, 4, &ps), 0);
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
  ASSERT_EQ(NUVOSampleImage(&a.img, 5000, 4, &ps), 0);
  EXPECT_EQ(ps.npoint, 40 * 30 - 1);
  EXPECT_EQ(NUVOSampleImage(&a.img, 0, 4, &ps), -3);
  NUVOFreePointSet(&ps);
}

}  // namespace
