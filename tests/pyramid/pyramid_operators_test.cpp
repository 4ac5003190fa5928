#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <string>
#include <vector>

#include "nuvo_pyramid.h"
#include "tests/support/make_image.hpp"

namespace {

constexpr double kMissing = NUVO_MISSING_VALUE;

std::vector<double> weights(int k, double alpha) {
  std::vector<double> w(k + 1);
  NUVOPyramidWeight(k, alpha, w.data());
  return w;
}

TEST(PyramidWeight, BinomialAndCentreKernels) {
  EXPECT_EQ(weights(2, -1.0), (std::vector<double>{0.375, 0.25, 0.0625}));
  const std::vector<double> a = weights(2, 0.4);
  EXPECT_DOUBLE_EQ(a[0], 0.4);
  EXPECT_DOUBLE_EQ(a[1], 0.25);
  EXPECT_DOUBLE_EQ(a[2], 0.05);
  EXPECT_EQ(weights(1, -1.0), (std::vector<double>{0.5, 0.25}));
  // Every phase modulo k sums to 1 / k, for odd and even steps alike.
  for (int k = 1; k <= 5; ++k) {
    const std::vector<double> w = weights(k, -1.0);
    for (int phase = 0; phase < k; ++phase) {
      double sum = 0.0;
      for (int d = -k; d <= k; ++d)
        if (((d % k) + k) % k == phase) sum += w[std::abs(d)];
      EXPECT_NEAR(sum, 1.0 / k, 1e-15) << "k " << k << " phase " << phase;
    }
  }
}

TEST(PyramidDimension, ReductionAndExpansionRules) {
  struct Case {
    int n, k, nOut, shift;
  };
  for (Case c : {Case{10, 2, 5, 0},
                 {11, 2, 6, 0},
                 {10, 3, 4, 0},
                 {11, 3, 4, 0},
                 {12, 3, 4, 1},
                 {7, 0, 7, 0},
                 {7, 1, 7, 0},
                 {14, 4, 4, 0},
                 {15, 4, 4, 1},
                 {5, 4, 2, 0}}) {
    int nOut = 0, shift = -1;
    ASSERT_EQ(NUVOPyramidReduceDimension(c.n, c.k, &nOut, &shift), 0);
    EXPECT_EQ(nOut, c.nOut) << c.n << " / " << c.k;
    EXPECT_EQ(shift, c.shift) << c.n << " / " << c.k;
  }
  int nOut = 0, shift = 0;
  EXPECT_EQ(NUVOPyramidReduceDimension(5, -1, &nOut, &shift), -3501);
  EXPECT_EQ(NUVOPyramidReduceDimension(4, 4, &nOut, &shift), -3505);
  EXPECT_EQ(NUVOPyramidReduceDimension(1, 0, &nOut, &shift), 0);
  for (auto [n, k, expected] : {std::tuple{5, 2, 9}, {5, 0, 5}, {5, 1, 5}, {4, 3, 10}}) {
    ASSERT_EQ(NUVOPyramidExpandDimension(n, k, &nOut), 0);
    EXPECT_EQ(nOut, expected);
  }
  EXPECT_EQ(NUVOPyramidExpandDimension(1, 2, &nOut), -3515);
  EXPECT_EQ(NUVOPyramidExpandDimension(5, -2, &nOut), -3511);
  EXPECT_EQ(NUVOPyramidExpandDimension(1 << 30, 4, &nOut), -620);
}

// One row of n values through a reduction by k along x.
std::vector<double> reduceRow(const std::vector<double> &in, int k, std::vector<double> *weight,
                              double minWeight = 0.6) {
  const int n = static_cast<int>(in.size());
  int nOut = 0, shift = 0;
  EXPECT_EQ(NUVOPyramidReduceDimension(n, k, &nOut, &shift), 0);
  const std::vector<double> w = weights(k, -1.0);
  std::vector<double> out(nOut);
  weight->assign(nOut, -1.0);
  EXPECT_EQ(NUVOPyramidReduce(in.data(), n, 1, 1, k, 0, 0, w.data(), nullptr, nullptr, shift, 0, 0,
                              nOut, 1, 1, out.data(), weight->data(), minWeight),
            0);
  return out;
}

TEST(PyramidReduce, MissingNodesAndFilterShare) {
  // Nodes 0..3 missing: the filters of outputs 0 and 1 keep 0 and 1/16 of their
  // weight, output 2 (centre 4) keeps 6/16 + 4/16 + 1/16 = 11/16 >= 0.6.
  const std::vector<double> row{kMissing, kMissing, kMissing, kMissing, 1, 2, 3, 4, 5};
  std::vector<double> weight;
  const std::vector<double> out = reduceRow(row, 2, &weight);
  EXPECT_EQ(out[0], kMissing);
  EXPECT_EQ(weight[0], 0.0);
  EXPECT_EQ(out[1], kMissing);
  EXPECT_DOUBLE_EQ(weight[1], 0.0625);
  EXPECT_DOUBLE_EQ(weight[2], 0.6875);
  EXPECT_DOUBLE_EQ(out[2], (6 * 1 + 4 * 2 + 1 * 3) / 11.0);
  // Last output centred on the border node 8: truncated kernel renormalised.
  EXPECT_DOUBLE_EQ(out[4], (6 * 5 + 4 * 4 + 1 * 3) / 11.0);
  EXPECT_DOUBLE_EQ(weight[4], 0.6875);
  // Step 1 keeps the dimension and smooths with (1/4, 1/2, 1/4).
  const std::vector<double> smooth = reduceRow({0, 4, 8, 0}, 1, &weight);
  EXPECT_EQ(smooth, (std::vector<double>{4.0 / 3, 4, 5, 8.0 / 3}));

  // The y pass carries the weights of the x pass: with the missing columns of the
  // row above on every line, a node near the y border keeps 11/16 * 11/16 < 0.6
  // of its filter and is missing, its neighbour inside keeps 11/16 and is not.
  const int nx = 9, ny = 9;
  std::vector<double> grid(nx * ny);
  for (int iy = 0; iy < ny; ++iy)
    for (int ix = 0; ix < nx; ++ix) grid[iy * nx + ix] = row[ix];
  const std::vector<double> w = weights(2, -1.0);
  std::vector<double> out2(25), weight2(25);
  ASSERT_EQ(NUVOPyramidReduce(grid.data(), nx, ny, 1, 2, 2, 0, w.data(), w.data(), nullptr, 0, 0, 0,
                              5, 5, 1, out2.data(), weight2.data(), 0.6),
            0);
  EXPECT_EQ(out2[0 * 5 + 2], kMissing);
  EXPECT_DOUBLE_EQ(weight2[0 * 5 + 2], 0.6875 * 0.6875);
  EXPECT_DOUBLE_EQ(out2[2 * 5 + 2], out[2]);

  EXPECT_EQ(NUVOPyramidReduce(grid.data(), nx, ny, 1, 2, 2, 0, w.data(), w.data(), nullptr, 0, 0, 0,
                              5, 5, 1, out2.data(), weight2.data(), 1e-11),
            -3509);
  EXPECT_EQ(NUVOPyramidExpand(grid.data(), nx, ny, 1, 2, 0, 0, w.data(), nullptr, nullptr, 17, 9, 1,
                              out2.data(), weight2.data(), 0.0),
            -3519);
  EXPECT_EQ(NUVOPyramidReduce(grid.data(), nx, ny, 1, -1, 2, 0, w.data(), w.data(), nullptr, 0, 0,
                              0, 5, 5, 1, out2.data(), weight2.data(), 0.6),
            -3501);
  // With every step 0 the values are copied, weights 1 or 0, minWeight not read.
  std::vector<double> copy(row.size()), copyWeight(row.size());
  ASSERT_EQ(NUVOPyramidExpand(row.data(), 9, 1, 1, 0, 0, 0, nullptr, nullptr, nullptr, 9, 1, 1,
                              copy.data(), copyWeight.data(), 0.0),
            0);
  EXPECT_EQ(copy, row);
  EXPECT_EQ(copyWeight[3], 0.0);
  EXPECT_EQ(copyWeight[4], 1.0);
}

// Reduces then expands an nx x ny x nz field by steps k (n - 1 a multiple of k).
std::vector<double> reduceExpand(const std::vector<double> &field, std::array<int, 3> n,
                                 std::array<int, 3> k, double minWeight = 0.6) {
  std::array<int, 3> nc{}, shift{}, nf{};
  std::array<std::vector<double>, 3> w;
  for (int a = 0; a < 3; ++a) {
    EXPECT_EQ(NUVOPyramidReduceDimension(n[a], k[a], &nc[a], &shift[a]), 0);
    EXPECT_EQ(NUVOPyramidExpandDimension(nc[a], k[a], &nf[a]), 0);
    EXPECT_EQ(nf[a], n[a]);
    w[a] = weights(std::max(k[a], 1), -1.0);
  }
  std::vector<double> coarse(nc[0] * nc[1] * nc[2]), cw(coarse.size());
  std::vector<double> fine(field.size()), fw(field.size());
  EXPECT_EQ(NUVOPyramidReduce(field.data(), n[0], n[1], n[2], k[0], k[1], k[2], w[0].data(),
                              w[1].data(), w[2].data(), shift[0], shift[1], shift[2], nc[0], nc[1],
                              nc[2], coarse.data(), cw.data(), minWeight),
            0);
  EXPECT_EQ(NUVOPyramidExpand(coarse.data(), nc[0], nc[1], nc[2], k[0], k[1], k[2], w[0].data(),
                              w[1].data(), w[2].data(), n[0], n[1], n[2], fine.data(), fw.data(),
                              minWeight),
            0);
  return fine;
}

// A smooth field that is a sum of one function per direction: each direction's
// filters average the others' terms exactly, so the error is the sum of three
// one-dimensional errors. In the interior (2k nodes from the borders) every
// kernel is symmetric with non-negative weights summing to 1, so by Taylor's
// theorem a filter moves a value by at most max|f''| * m2 / 2, m2 being the
// kernel's second moment in nodes; reduce-then-expand moves it by at most
// max|f''| (m2(reduce) + m2(expand)) / 2 per direction. For k = 2 both moments are
// 1 ((1,4,6,4,1)/16 and the expansion's (1,6,1)/8 or (1/2,1/2) phases), for k = 1
// both are 1/2.
TEST(PyramidReduceExpand, SmoothFieldWithinTaylorBound) {
  const std::array<int, 3> n{41, 33, 9}, k{2, 2, 1};
  const double a = 2 * std::numbers::pi / 40, b = 2 * std::numbers::pi / 24,
               c = 2 * std::numbers::pi / 16;
  std::vector<double> field(n[0] * n[1] * n[2]);
  for (int iz = 0; iz < n[2]; ++iz)
    for (int iy = 0; iy < n[1]; ++iy)
      for (int ix = 0; ix < n[0]; ++ix)
        field[(iz * n[1] + iy) * n[0] + ix] =
            std::sin(a * ix) + std::cos(b * iy) + std::sin(c * iz);
  const double bound = a * a * (1 + 1) / 2 + b * b * (1 + 1) / 2 + c * c * (0.5 + 0.5) / 2;
  const std::vector<double> back = reduceExpand(field, n, k);
  double worst = 0.0;
  for (int iz = 2; iz < n[2] - 2; ++iz)
    for (int iy = 4; iy < n[1] - 4; ++iy)
      for (int ix = 4; ix < n[0] - 4; ++ix) {
        const int i = (iz * n[1] + iy) * n[0] + ix;
        worst = std::max(worst, std::fabs(back[i] - field[i]));
      }
  EXPECT_LE(worst, bound);
  EXPECT_GT(worst, bound / 4);  // the bound is close: a much smaller error is suspect too

  // A linear field is reproduced exactly in the interior (symmetric kernels), a
  // constant one everywhere, borders included (truncated kernels renormalised;
  // a corner keeps less than 0.6 of its filter, hence the smallest minWeight).
  std::vector<double> linear(field.size()), constant(field.size(), 3.25);
  for (int iz = 0; iz < n[2]; ++iz)
    for (int iy = 0; iy < n[1]; ++iy)
      for (int ix = 0; ix < n[0]; ++ix)
        linear[(iz * n[1] + iy) * n[0] + ix] = 0.5 * ix - 0.25 * iy + 2.0 * iz;
  const std::vector<double> linearBack = reduceExpand(linear, n, k);
  for (int iz = 2; iz < n[2] - 2; ++iz)
    for (int iy = 4; iy < n[1] - 4; ++iy)
      for (int ix = 4; ix < n[0] - 4; ++ix) {
        const int i = (iz * n[1] + iy) * n[0] + ix;
        ASSERT_NEAR(linearBack[i], linear[i], 1e-12) << ix << " " << iy << " " << iz;
      }
  for (double v : reduceExpand(constant, n, k, 1e-10)) ASSERT_NEAR(v, 3.25, 1e-14);
  for (double v : reduceExpand(std::vector<double>(13 * 13, 3.25), {13, 13, 1}, {3, 4, 0}, 1e-10))
    ASSERT_NEAR(v, 3.25, 1e-14);
}

TEST(ImagePyramid, GridsNamesAndDirectionCodes) {
  nuvo_image in, out;
  NUVOInitImage(&in);
  NUVOInitImage(&out);
  ASSERT_EQ(nuvo_test::makeImage(&in, 100, 101, 3, {"facies"},
                                 [](int ix, int iy, int, int) { return (ix + iy) % 2; }),
            0);
  ASSERT_EQ(NUVOImagePyramidReduce(&in, &out, 2, 2, 0, -1.0, -1.0, -1.0), 0);
  EXPECT_EQ(out.grid->nx, 50);
  EXPECT_DOUBLE_EQ(out.grid->sx, 2.0);
  EXPECT_EQ(out.grid->ny, 51);
  EXPECT_DOUBLE_EQ(out.grid->sy, 101.0 / 51);
  EXPECT_EQ(out.grid->nz, 3);
  EXPECT_EQ(out.grid->nxyz, 50 * 51 * 3);
  EXPECT_EQ(std::string(out.varName[0]), "facies_GPred");
  // A checkerboard averages to 1/2 away from the borders.
  EXPECT_DOUBLE_EQ(out.var[5 * 50 + 5], 0.5);
  nuvo_image fine;
  NUVOInitImage(&fine);
  ASSERT_EQ(NUVOImagePyramidExpand(&out, &fine, 2, 2, 1, -1.0, -1.0, -1.0), 0);
  EXPECT_EQ(fine.grid->nx, 99);
  EXPECT_EQ(fine.grid->ny, 101);
  EXPECT_EQ(std::string(fine.varName[0]), "facies_GPred_GPexp");
  NUVOFreeImage(&fine);
  NUVOFreeImage(&out);

  EXPECT_EQ(NUVOImagePyramidReduce(&in, &out, 2, -1, 0, -1, -1, -1), -3503);
  EXPECT_EQ(NUVOImagePyramidReduce(&in, &out, 2, 2, 3, -1, -1, -1), -3508);
  EXPECT_EQ(NUVOImagePyramidExpand(&in, &out, 0, 0, -2, -1, -1, -1), -3514);
  NUVOFreeImage(&in);
  ASSERT_EQ(nuvo_test::makeImage(&in, 1, 4, 1, {"v"}, [](int, int, int, int) { return 1.0; }), 0);
  EXPECT_EQ(NUVOImagePyramidExpand(&in, &out, 1, 1, 0, -1, -1, -1), -3516);
  EXPECT_EQ(out.var, nullptr);
  NUVOFreeImage(&in);
}

}  // namespace
