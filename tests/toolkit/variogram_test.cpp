#include <gtest/gtest.h>

#include <tuple>
#include <vector>

#include "nuvo_synthetic.h"
#include "nuvo_variogram.h"
#include "tests/data/data_builders.hpp"

namespace {

using nuvo::test::kMissing;
using nuvo::test::TestImage;
using Image = nuvo::test::EmptyImage;

// The refused lags and variables are checked for every lag map in lag_maps_test.cpp.
TEST(VariogramMap, LaysOutTheMap) {
  TestImage a(4, 3, 1, {"v"}, {0, 1, 2, 3, 1, 2, 3, 4, 2, 3, 4, kMissing});
  Image map;
  // Lags -3..3 along x, -2..2 along y; a zero step is fine for the single z lag.
  ASSERT_EQ(NUVOImageVariogram(&a.image, &map.image, 0, -3, 3, 1, -2, 2, 2, 0, 0, 0, 0), 0);
  const nuvo_grid &g = *map.image.grid;
  EXPECT_EQ(std::tuple(g.nx, g.ny, g.nz, g.sy, g.ox, g.oy), std::tuple(7, 3, 1, 2.0, -3.5, -3.0));
  EXPECT_STREQ(map.image.varName[0], "v_variogram");
  auto at = [&](int hx, int hy) { return map.image.var[(hx + 3) + 7 * ((hy + 2) / 2)]; };
  EXPECT_EQ(at(0, 0), 0.0);
  // Along x every informed pair one apart differs by 1.
  EXPECT_EQ(at(1, 0), 0.5);
  // Lag 3 pairs only the first and last columns: (0,3) and (1,4); (2,missing) is skipped.
  EXPECT_EQ(at(3, 0), 0.5 * 9);
  EXPECT_EQ(at(3, 2), kMissing);  // its only pair, (0, 0) to (3, 2), lacks a value
  for (int hx = -3; hx <= 3; ++hx)
    for (int hy : {-2, 0, 2}) EXPECT_EQ(at(hx, hy), at(-hx, -hy));
}

TEST(VariogramRange, FollowsTheStructureOfTheImageAndNeedsASpread) {
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

  // A constant variable, or one beyond the image, has no range.
  TestImage a(3, 1, 1, {"v"}, {2, 2, 2});
  EXPECT_EQ(NUVOComputeVariogramRangeApprox(&a.image, 0, 0, &rx, &ry, &rz), -1061);
  EXPECT_EQ(NUVOComputeVariogramRangeApprox(&a.image, 0, 1, &rx, &ry, &rz), -1061);
  EXPECT_EQ(NUVOComputeVariogramRangeApprox(&a.image, 1, 1, &rx, &ry, &rz), -1100);
}

}  // namespace
