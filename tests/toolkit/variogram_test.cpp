#include <gtest/gtest.h>

#include <vector>

#include "nuvo_synthetic.h"
#include "nuvo_variogram.h"
#include "tests/data/data_builders.hpp"

namespace {

using nuvo::test::kMissing;
using nuvo::test::TestImage;
using Image = nuvo::test::EmptyImage;

TEST(VariogramMap, ChecksLagsAndLaysOutTheMap) {
  TestImage a(4, 3, 1, {"v"}, {0, 1, 2, 3, 1, 2, 3, 4, 2, 3, 4, kMissing});
  Image map;
  EXPECT_EQ(NUVOImageVariogram(&a.image, &map.image, 1, 0, 0, 1, 0, 0, 1, 0, 0, 1, 0), -1100);
  EXPECT_EQ(NUVOImageVariogram(&a.image, &map.image, 0, -4, 0, 1, 0, 0, 1, 0, 0, 1, 0), -2011);
  EXPECT_EQ(NUVOImageVariogram(&a.image, &map.image, 0, 0, 2, 0, 0, 0, 1, 0, 0, 1, 0), -2011);

  // Lags -3..3 along x, -2..2 along y; a zero step is fine for the single z lag.
  ASSERT_EQ(NUVOImageVariogram(&a.image, &map.image, 0, -3, 3, 1, -2, 2, 2, 0, 0, 0, 0), 0);
  const nuvo_grid &g = *map.image.grid;
  EXPECT_EQ(g.nx, 7);
  EXPECT_EQ(g.ny, 3);
  EXPECT_EQ(g.nz, 1);
  EXPECT_EQ(g.sy, 2.0);
  EXPECT_EQ(g.ox, -3.5);
  EXPECT_EQ(g.oy, -3.0);
  EXPECT_STREQ(map.image.varName[0], "v_variogram");
  auto at = [&](int hx, int hy) { return map.image.var[(hx + 3) + 7 * ((hy + 2) / 2)]; };
  EXPECT_EQ(at(0, 0), 0.0);
  // Along x every informed pair one apart differs by 1.
  EXPECT_EQ(at(1, 0), 0.5);
  // Lag 3 pairs only the first and last columns: (0,3) and (1,4); (2,missing) is skipped.
  EXPECT_EQ(at(3, 0), 0.5 * 9);
  for (int hx = -3; hx <= 3; ++hx)
    for (int hy : {-2, 0, 2}) EXPECT_EQ(at(hx, hy), at(-hx, -hy));
}

TEST(VariogramMap, IsMissingWithoutPairs) {
  TestImage a(3, 1, 1, {"v"});
  Image map;
  ASSERT_EQ(NUVOImageVariogram(&a.image, &map.image, 0, 0, 2, 1, 0, 0, 1, 0, 0, 1, 0), 0);
  for (int k = 0; k < 3; ++k) EXPECT_EQ(map.image.var[k], NUVO_MISSING_VALUE);
}

TEST(VariogramRange, FollowsTheStructureOfTheImage) {
  Image field;
  ASSERT_EQ(NUVOGenerateContinuousImage(&field.image, 150, 150, 1, 6.0, 3), 0);
  double rx, ry, rz;
  ASSERT_EQ(NUVOComputeVariogramRangeApprox(&field.image, 0, 0, &rx, &ry, &rz), 0);
  // A Gaussian covariance of scale 6 reaches 95 % of its sill near 2.45 * 6.
  EXPECT_GT(rx, 7.0);
  EXPECT_LT(rx, 30.0);
  EXPECT_GT(ry, 7.0);
  EXPECT_LT(ry, 30.0);
  EXPECT_EQ(rz, 0.0);

  Image channels;
  ASSERT_EQ(NUVOGenerateChannelImage(&channels.image, 120, 120, 1, 0.3, 6.0, 3), 0);
  ASSERT_EQ(NUVOComputeVariogramRangeApprox(&channels.image, 0, 1, &rx, &ry, &rz), 0);
  EXPECT_GT(rx, 2.0 * ry);
  EXPECT_GE(ry, 3.0);
}

TEST(VariogramRange, RefusesConstantOrEmptyVariables) {
  TestImage a(3, 1, 1, {"v"}, {2, 2, 2});
  double r[3];
  EXPECT_EQ(NUVOComputeVariogramRangeApprox(&a.image, 0, 0, &r[0], &r[1], &r[2]), -1061);
  EXPECT_EQ(NUVOComputeVariogramRangeApprox(&a.image, 0, 1, &r[0], &r[1], &r[2]), -1061);
  EXPECT_EQ(NUVOComputeVariogramRangeApprox(&a.image, 1, 1, &r[0], &r[1], &r[2]), -1100);
}

}  // namespace
