#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include "nuvo_synthetic.h"
#include "nuvo_variogram.h"

namespace {

struct Image {
  Image() { NUVOInitImage(&img); }
  ~Image() { NUVOFreeImage(&img); }
  nuvo_image img;
};

// A one-variable image on an nx x ny x nz unit grid holding `values`.
void fill(nuvo_image *im, int nx, int ny, int nz, const std::vector<double> &values) {
  ASSERT_EQ(NUVOMallocImage(im, nx * ny * nz, 1), 0);
  *im->grid = nuvo_grid{nx, ny, nz, 1, 1, 1, 0, 0, 0, nx * ny, nx * ny * nz};
  im->nvar = 1;
  im->nxyzv = nx * ny * nz;
  std::strcpy(im->varName[0], "v");
  std::copy(values.begin(), values.end(), im->var);
}

TEST(VariogramMap, ChecksLagsAndLaysOutTheMap) {
  Image a, map;
  fill(&a.img, 4, 3, 1, {0, 1, 2, 3, 1, 2, 3, 4, 2, 3, 4, NUVO_MISSING_VALUE});
  EXPECT_EQ(NUVOImageVariogram(&a.img, &map.img, 1, 0, 0, 1, 0, 0, 1, 0, 0, 1, 0), -1100);
  EXPECT_EQ(NUVOImageVariogram(&a.img, &map.img, 0, -4, 0, 1, 0, 0, 1, 0, 0, 1, 0), -2011);
  EXPECT_EQ(NUVOImageVariogram(&a.img, &map.img, 0, 0, 0, 1, 0, 3, 1, 0, 0, 1, 0), -2011);
  EXPECT_EQ(NUVOImageVariogram(&a.img, &map.img, 0, 1, 0, 1, 0, 0, 1, 0, 0, 1, 0), -2011);
  EXPECT_EQ(NUVOImageVariogram(&a.img, &map.img, 0, 0, 2, 0, 0, 0, 1, 0, 0, 1, 0), -2011);

  // Lags -3..3 along x, -2..2 along y; a zero step is fine for the single z lag.
  ASSERT_EQ(NUVOImageVariogram(&a.img, &map.img, 0, -3, 3, 1, -2, 2, 2, 0, 0, 0, 0), 0);
  const nuvo_grid &g = *map.img.grid;
  EXPECT_EQ(g.nx, 7);
  EXPECT_EQ(g.ny, 3);
  EXPECT_EQ(g.nz, 1);
  EXPECT_EQ(g.sy, 2.0);
  EXPECT_EQ(g.ox, -3.5);
  EXPECT_EQ(g.oy, -3.0);
  EXPECT_STREQ(map.img.varName[0], "v_variogram");
  auto at = [&](int hx, int hy) { return map.img.var[(hx + 3) + 7 * ((hy + 2) / 2)]; };
  EXPECT_EQ(at(0, 0), 0.0);
  // Along x every informed pair one apart differs by 1.
  EXPECT_EQ(at(1, 0), 0.5);
  // Lag 3 pairs only the first and last columns: (0,3) and (1,4); (2,missing) is skipped.
  EXPECT_EQ(at(3, 0), 0.5 * 9);
  for (int hx = -3; hx <= 3; ++hx)
    for (int hy : {-2, 0, 2}) EXPECT_EQ(at(hx, hy), at(-hx, -hy));
}

TEST(VariogramMap, IsMissingWithoutPairs) {
  Image a, map;
  fill(&a.img, 3, 1, 1, {NUVO_MISSING_VALUE, NUVO_MISSING_VALUE, NUVO_MISSING_VALUE});
  ASSERT_EQ(NUVOImageVariogram(&a.img, &map.img, 0, 0, 2, 1, 0, 0, 1, 0, 0, 1, 0), 0);
  for (int k = 0; k < 3; ++k) EXPECT_EQ(map.img.var[k], NUVO_MISSING_VALUE);
}

TEST(VariogramRange, FollowsTheStructureOfTheImage) {
  Image field;
  ASSERT_EQ(NUVOGenerateContinuousImage(&field.img, 150, 150, 1, 6.0, 3), 0);
  double rx, ry, rz;
  ASSERT_EQ(NUVOComputeVariogramRangeApprox(&field.img, 0, 0, &rx, &ry, &rz), 0);
  // A Gaussian covariance of scale 6 reaches 95 % of its sill near 2.45 * 6.
  EXPECT_GT(rx, 7.0);
  EXPECT_LT(rx, 30.0);
  EXPECT_GT(ry, 7.0);
  EXPECT_LT(ry, 30.0);
  EXPECT_EQ(rz, 0.0);

  Image channels;
  ASSERT_EQ(NUVOGenerateChannelImage(&channels.img, 120, 120, 1, 0.3, 6.0, 3), 0);
  ASSERT_EQ(NUVOComputeVariogramRangeApprox(&channels.img, 0, 1, &rx, &ry, &rz), 0);
  EXPECT_GT(rx, 2.0 * ry);
  EXPECT_GE(ry, 3.0);
}

TEST(VariogramRange, RefusesConstantOrEmptyVariables) {
  Image a;
  fill(&a.img, 3, 1, 1, {2, 2, 2});
  double r[3];
  EXPECT_EQ(NUVOComputeVariogramRangeApprox(&a.img, 0, 0, &r[0], &r[1], &r[2]), -1061);
  EXPECT_EQ(NUVOComputeVariogramRangeApprox(&a.img, 0, 1, &r[0], &r[1], &r[2]), -1061);
  EXPECT_EQ(NUVOComputeVariogramRangeApprox(&a.img, 1, 1, &r[0], &r[1], &r[2]), -1100);
}

}  // namespace
