#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <string>
#include <vector>

#include "nuvo_pyramid.h"
#include "tests/data/data_builders.hpp"

namespace {

constexpr double kMissing = NUVO_MISSING_VALUE;
using Values = std::vector<double>;

Values weights(int k, double alpha = -1.0) {
  Values w(k + 1);
  NUVOPyramidWeight(k, alpha, w.data());
  return w;
}

TEST(PyramidWeight, KernelsAndPhaseSums) {
  EXPECT_EQ(weights(2), (Values{0.375, 0.25, 0.0625}));
  EXPECT_EQ(weights(1), (Values{0.5, 0.25}));
  const Values a = weights(2, 0.4);
  EXPECT_DOUBLE_EQ(a[2], 0.05);
  for (int k = 1; k <= 5; ++k)  // every phase modulo k sums to 1 / k
    for (int phase = 0; phase < k; ++phase) {
      double sum = 0.0;
      for (int d = phase - k; d <= k; d += k) sum += weights(k)[std::abs(d)];
      EXPECT_NEAR(sum, 1.0 / k, 1e-15) << "k " << k << " phase " << phase;
    }
}

TEST(PyramidDimension, ReductionAndExpansionRules) {
  int nOut = 0, shift = 0;
  for (auto [n, k, m, s] : {std::tuple{10, 2, 5, 0},
                            {11, 2, 6, 0},
                            {10, 3, 4, 0},
                            {11, 3, 4, 0},
                            {12, 3, 4, 1},
                            {7, 0, 7, 0},
                            {7, 1, 7, 0},
                            {15, 4, 4, 1},
                            {5, 4, 2, 0}}) {
    ASSERT_EQ(NUVOPyramidReduceDimension(n, k, &nOut, &shift), 0);
    EXPECT_EQ(std::pair(nOut, shift), std::pair(m, s)) << n << " / " << k;
  }
  EXPECT_EQ(NUVOPyramidReduceDimension(5, -1, &nOut, &shift), -3501);
  EXPECT_EQ(NUVOPyramidReduceDimension(4, 4, &nOut, &shift), -3505);
  for (auto [n, k, m] : {std::tuple{5, 2, 9}, {5, 0, 5}, {5, 1, 5}, {4, 3, 10}}) {
    ASSERT_EQ(NUVOPyramidExpandDimension(n, k, &nOut), 0);
    EXPECT_EQ(nOut, m);
  }
  EXPECT_EQ(NUVOPyramidExpandDimension(1, 2, &nOut), -3515);
  EXPECT_EQ(NUVOPyramidExpandDimension(5, -2, &nOut), -3511);
  EXPECT_EQ(NUVOPyramidExpandDimension(1 << 30, 4, &nOut), -620);
}

TEST(PyramidReduce, MissingNodesAndInformedShare) {
  // 9 x 9 nodes, columns 0..3 missing, reduced by 2 along x and y. Along x the
  // filters of outputs 0, 1, 2 keep 0, 1/16 and 11/16 of their weight; the y pass
  // multiplies by 11/16 at the y border (truncated kernel), by 1 inside.
  const Values row{kMissing, kMissing, kMissing, kMissing, 1, 2, 3, 4, 5};
  Values grid;
  for (int iy = 0; iy < 9; ++iy) grid.insert(grid.end(), row.begin(), row.end());
  const Values w = weights(2);
  Values out(25), weight(25);
  ASSERT_EQ(NUVOPyramidReduce(grid.data(), 9, 9, 1, 2, 2, 0, w.data(), w.data(), nullptr, 0, 0, 0,
                              5, 5, 1, out.data(), weight.data(), 0.6),
            0);
  EXPECT_EQ(Values(weight.begin() + 10, weight.begin() + 15),
            (Values{0, 0.0625, 0.6875, 1, 0.6875}));
  EXPECT_EQ(Values(out.begin() + 10, out.begin() + 12), (Values{kMissing, kMissing}));
  EXPECT_DOUBLE_EQ(out[12], (6 * 1 + 4 * 2 + 1 * 3) / 11.0);
  EXPECT_DOUBLE_EQ(out[14], (6 * 5 + 4 * 4 + 1 * 3) / 11.0);  // renormalised at the border
  EXPECT_DOUBLE_EQ(weight[2], 0.6875 * 0.6875);               // below 0.6: missing
  EXPECT_EQ(out[2], kMissing);
  EXPECT_EQ(NUVOPyramidReduce(grid.data(), 9, 9, 1, 2, 2, 0, w.data(), w.data(), nullptr, 0, 0, 0,
                              5, 5, 1, out.data(), weight.data(), 1e-11),
            -3509);
  EXPECT_EQ(NUVOPyramidExpand(grid.data(), 9, 9, 1, 2, 0, 0, w.data(), nullptr, nullptr, 17, 9, 1,
                              out.data(), weight.data(), 0.0),
            -3519);
}

// Reduces then expands by steps k the nx x ny x nz image of field(ix, iy, iz)
// (n - 1 a multiple of k, so that the sizes come back); the values and the name.
template <typename Field>
std::pair<Values, std::string> reduceExpand(std::array<int, 3> n, std::array<int, 3> k, Field f) {
  nuvo_image in, coarse, fine;
  for (nuvo_image *i : {&in, &coarse, &fine}) NUVOInitImage(i);
  nuvo_test::makeImage(&in, n[0], n[1], n[2], {"v"},
                       [&](int ix, int iy, int iz, int) { return f(ix, iy, iz); });
  EXPECT_EQ(NUVOImagePyramidReduce(&in, &coarse, k[0], k[1], k[2], -1, -1, -1), 0);
  EXPECT_EQ(NUVOImagePyramidExpand(&coarse, &fine, k[0], k[1], k[2], -1, -1, -1), 0);
  EXPECT_EQ(NUVOCmpGrid(in.grid, fine.grid), 0);
  std::pair result(Values(fine.var, fine.var + fine.nxyzv), std::string(fine.varName[0]));
  for (nuvo_image *i : {&in, &coarse, &fine}) NUVOFreeImage(i);
  return result;
}

// The field is a sum of one function per direction, so each direction's error
// adds up separately. 2k nodes away from the borders every kernel is symmetric,
// non-negative and sums to 1: by Taylor's theorem a filter moves a value by at
// most max|f''| m2 / 2 (m2 its second moment in nodes), and reduce-then-expand by
// max|f''| (m2 reduce + m2 expand) / 2. Both moments are 1 for k = 2
// ((1,4,6,4,1)/16; phases (1,6,1)/8 and (1,1)/2), 1/2 for k = 1.
TEST(PyramidReduceExpand, SmoothFieldWithinTaylorBound) {
  const std::array<int, 3> n{41, 33, 9}, k{2, 2, 1};
  const double a = 2 * std::numbers::pi / 40, b = 2 * std::numbers::pi / 24,
               c = 2 * std::numbers::pi / 16;
  const auto smooth = [&](int x, int y, int z) {
    return std::sin(a * x) + std::cos(b * y) + std::sin(c * z);
  };
  const auto linear = [](int x, int y, int z) { return 0.5 * x - 0.25 * y + 2.0 * z; };
  const auto [s, name] = reduceExpand(n, k, smooth);
  const Values l = reduceExpand(n, k, linear).first;
  EXPECT_EQ(name, "v_GPred_GPexp");
  double worst = 0.0;
  for (int iz = 2; iz < n[2] - 2; ++iz)
    for (int iy = 4; iy < n[1] - 4; ++iy)
      for (int ix = 4; ix < n[0] - 4; ++ix) {
        const int i = (iz * n[1] + iy) * n[0] + ix;
        worst = std::max(worst, std::fabs(s[i] - smooth(ix, iy, iz)));
        ASSERT_NEAR(l[i], linear(ix, iy, iz), 1e-12);  // symmetric kernels keep a linear field
      }
  const double bound = a * a + b * b + c * c / 2;
  EXPECT_LE(worst, bound);
  EXPECT_GT(worst, bound / 4);  // the bound is nearly reached: a far smaller error is a fault too
  // A constant is kept up to the borders (truncated kernels renormalised).
  for (double v : reduceExpand({41, 1, 1}, {2, 0, 0}, [](int, int, int) { return 3.25; }).first)
    ASSERT_DOUBLE_EQ(v, 3.25);
}

TEST(ImagePyramid, GridsAndDirectionCodes) {
  nuvo::test::TestImage checkerboard(100, 101, 1, {"facies"},
                                     [](int ix, int iy, int, int) { return (ix + iy) % 2; });
  nuvo_image &in = checkerboard.image;
  nuvo::test::EmptyImage reduced;
  nuvo_image &out = reduced.image;
  ASSERT_EQ(NUVOImagePyramidReduce(&in, &out, 2, 2, 0, -1.0, -1.0, -1.0), 0);
  const nuvo_grid &g = *out.grid;
  EXPECT_EQ(std::tuple(g.nx, g.ny, g.nz, g.sx, g.sy, g.nxyz),
            std::tuple(50, 51, 1, 2.0, 101.0 / 51, 50 * 51));
  EXPECT_DOUBLE_EQ(out.var[5 * 50 + 5], 0.5);  // a checkerboard averages to 1/2
  NUVOFreeImage(&out);
  EXPECT_EQ(NUVOImagePyramidReduce(&in, &out, 2, 2, 3, -1, -1, -1), -3508);
  EXPECT_EQ(NUVOImagePyramidExpand(&in, &out, 0, 0, 1, -1, -1, -1), -3518);  // nz = 1
}

}  // namespace
