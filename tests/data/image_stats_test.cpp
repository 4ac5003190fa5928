#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

#include "nuvo_image.h"
#include "nuvo_memory.h"
#include "tests/data/data_builders.hpp"

namespace {

using nuvo::test::imageValues;
using nuvo::test::kMissing;
using nuvo::test::TestImage;

// Frees the arrays a pdf function allocated.
struct Pdf {
  ~Pdf() {
    NUVOFree(value);
    NUVOFree(proportion);
  }
  int of(const nuvo_image &image, int iv) {
    return NUVOGetImageOneVarValuePdf(&image, iv, &nvalue, &value, &proportion, &nmissing);
  }
  std::vector<double> values() const { return {value, value + nvalue}; }
  std::vector<double> proportions() const { return {proportion, proportion + nvalue}; }
  int nvalue = -1;
  int nmissing = -1;
  double *value = nullptr;
  double *proportion = nullptr;
};

TEST(ImageStats, MeanSdAndRangeOfInformedValuesPerVariable) {
  TestImage t(5, 1, 1, {"a", "b"},
              {2, kMissing, 4, 4, 6, 3e30, 2e30, kMissing, kMissing, kMissing});
  double mean = 0, sd = 0, min = 0, max = 0, range = 0;
  int n = 0;
  ASSERT_EQ(NUVOGetImageOneVarValueMean(&t.image, 0, &mean), 0);
  EXPECT_EQ(mean, 4.0);
  ASSERT_EQ(NUVOGetImageOneVarValueSD(&t.image, 0, &mean, &sd), 0);
  EXPECT_DOUBLE_EQ(sd, std::sqrt(8.0 / 3.0));  // n - 1 in the denominator
  ASSERT_EQ(NUVOGetImageOneVarValueRange(&t.image, 0, &n, &min, &max, &range), 0);
  EXPECT_EQ(std::vector<double>({double(n), min, max, range}), std::vector<double>({4, 2, 6, 4}));

  // The all-variable forms; values of any magnitude.
  double means[2], sds[2], mins[2], maxs[2], ranges[2];
  int ns[2];
  ASSERT_EQ(NUVOGetImageVarValueMean(&t.image, means), 0);
  ASSERT_EQ(NUVOGetImageVarValueSD(&t.image, means, sds), 0);
  ASSERT_EQ(NUVOGetImageVarValueRange(&t.image, ns, mins, maxs, ranges), 0);
  EXPECT_DOUBLE_EQ(means[1], 2.5e30);
  EXPECT_EQ(sds[0], sd);
  EXPECT_EQ(std::vector<double>({double(ns[1]), mins[1], maxs[1]}),
            std::vector<double>({2, 2e30, 3e30}));
}

TEST(ImageStats, NoValueGivesMissingEverywhere) {
  TestImage t(3, 1, 1, {"a"});
  double mean = 0, sd = 0, min = 0, max = 0, range = 0;
  int n = -1;
  NUVOGetImageOneVarValueMean(&t.image, 0, &mean);
  NUVOGetImageOneVarValueSD(&t.image, 0, &mean, &sd);
  NUVOGetImageOneVarValueRange(&t.image, 0, &n, &min, &max, &range);
  EXPECT_EQ(n, 0);
  for (double v : {mean, sd, min, max, range}) EXPECT_EQ(v, kMissing);

  // A single value has a zero deviation; a missing mean gives a missing one.
  TestImage single(3, 1, 1, {"a"}, {kMissing, 7.5, kMissing});
  NUVOGetImageOneVarValueMean(&single.image, 0, &mean);
  NUVOGetImageOneVarValueSD(&single.image, 0, &mean, &sd);
  EXPECT_EQ(sd, 0.0);
  const double missingMean = kMissing;
  NUVOGetImageOneVarValueSD(&single.image, 0, &missingMean, &sd);
  EXPECT_EQ(sd, kMissing);
}

TEST(ImageStats, RefusesAVariableIndexOutOfRange) {
  TestImage t(2, 1, 1, {"a"}, {1, 2});
  double d = 0;
  Pdf pdf;
  int index[2];
  EXPECT_EQ(NUVOGetImageOneVarValueMean(&t.image, 1, &d), -1100);
  EXPECT_EQ(NUVOGetImageOneVarValueSD(&t.image, -1, &d, &d), -1100);
  EXPECT_EQ(pdf.of(t.image, 1), -1100);
  EXPECT_EQ(NUVOGetImageOneVarValueIndex(&t.image, 1, 1, &d, index), -1100);
  EXPECT_EQ(NUVOTransformExplicitImageVar(&t.image, -1, 1, &d, &d), -1100);
}

TEST(ImagePdf, ListsDistinctValuesWithProportionsOfInformedNodes) {
  TestImage t(6, 1, 1, {"a"}, {3, kMissing, -1, 3, 0.5, 3});
  Pdf pdf;
  ASSERT_EQ(pdf.of(t.image, 0), 0);
  EXPECT_EQ(pdf.nmissing, 1);
  EXPECT_EQ(pdf.values(), std::vector<double>({-1, 0.5, 3}));
  EXPECT_EQ(pdf.proportions(), std::vector<double>({0.2, 0.2, 0.6}));

  // A NaN counts as informed, equals nothing, not even another NaN, and sorts last.
  const double nan = std::numeric_limits<double>::quiet_NaN();
  TestImage withNan(5, 1, 1, {"a"}, {nan, 2, kMissing, nan, 1});
  Pdf nanPdf;
  ASSERT_EQ(nanPdf.of(withNan.image, 0), 0);
  EXPECT_EQ(nanPdf.nmissing, 1);
  ASSERT_EQ(nanPdf.nvalue, 4);
  EXPECT_EQ(nanPdf.value[0], 1.0);
  EXPECT_EQ(nanPdf.value[1], 2.0);
  EXPECT_TRUE(std::isnan(nanPdf.value[2]) && std::isnan(nanPdf.value[3]));
}

TEST(ImagePdf, PoolsOneVariableOverSeveralImages) {
  TestImage a(2, 1, 1, {"x", "y"}, {1, 2, 0, 0});
  TestImage b(3, 1, 1, {"p", "q"}, {2, kMissing, 2, 0, 0, 0});
  const nuvo_image *images[] = {&a.image, &b.image};
  Pdf pdf;
  ASSERT_EQ(NUVOGetNImageOneVarValuePdf(2, images, 0, &pdf.nvalue, &pdf.value, &pdf.proportion,
                                        &pdf.nmissing),
            0);
  EXPECT_EQ(pdf.nmissing, 1);
  EXPECT_EQ(pdf.values(), std::vector<double>({1, 2}));
  EXPECT_EQ(pdf.proportions(), std::vector<double>({0.25, 0.75}));

  int nvalue[2], nmissing[2];
  double *value[2], *proportion[2];
  const auto release = [&] {
    for (int iv = 0; iv < 2; ++iv) NUVOFree(value[iv]), NUVOFree(proportion[iv]);
  };
  ASSERT_EQ(NUVOGetNImageVarValuePdf(2, images, nvalue, value, proportion, nmissing), 0);
  EXPECT_EQ(std::vector<int>({nvalue[0], nvalue[1]}), std::vector<int>({2, 1}));
  EXPECT_EQ(proportion[1][0], 1.0);
  release();
  // A variable without value gets no arrays.
  TestImage empty(2, 1, 1, {"a", "b"}, {4, 4, kMissing, kMissing});
  ASSERT_EQ(NUVOGetImageVarValuePdf(&empty.image, nvalue, value, proportion, nmissing), 0);
  EXPECT_EQ(std::vector<int>({nvalue[0], nvalue[1], nmissing[1]}), std::vector<int>({1, 0, 2}));
  EXPECT_EQ(value[1], nullptr);
  EXPECT_EQ(proportion[1], nullptr);
  release();

  TestImage c(1, 1, 1, {"x"}, {1});
  const nuvo_image *mixed[] = {&a.image, &c.image};
  EXPECT_EQ(NUVOGetNImageOneVarValuePdf(2, mixed, 0, &pdf.nvalue, &pdf.value, &pdf.proportion,
                                        &pdf.nmissing),
            -30);
  EXPECT_EQ(NUVOGetNImageOneVarValuePdf(0, images, 0, &pdf.nvalue, &pdf.value, &pdf.proportion,
                                        &pdf.nmissing),
            -3);
}

TEST(ImageIndex, FindsEachValueInTheSortedList) {
  TestImage t(5, 1, 1, {"a"}, {2.5, kMissing, 7, 1, 2.5000001});
  const double sorted[] = {1, 2.5, 7};
  int index[5];
  ASSERT_EQ(NUVOGetImageOneVarValueIndex(&t.image, 0, 3, sorted, index), 0);
  EXPECT_EQ(std::vector<int>(index, index + 5), std::vector<int>({1, -1, 2, 0, -1}));
}

TEST(ImageVarStats, CovarianceUsesTheNodesWhereBothAreInformed) {
  // a informed everywhere, b on the last three nodes only.
  TestImage t(4, 1, 1, {"a", "b"}, {1, 2, 3, 6, kMissing, 1, 2, 4});
  double min[2], max[2], mean[2];
  int *npair = nullptr;
  double *cov = nullptr;
  ASSERT_EQ(NUVOGetImageVarStats(&t.image, &npair, min, max, mean, &cov), 0);
  EXPECT_EQ(std::vector<int>(npair, npair + 4), std::vector<int>({4, 3, 3, 3}));
  EXPECT_EQ(mean[0], 3.0);
  EXPECT_EQ(min[1], 1.0);
  EXPECT_EQ(max[1], 4.0);
  EXPECT_DOUBLE_EQ(cov[0], 14.0 / 3.0);  // variance of a about 3
  // Common nodes: a = 2, 3, 6 (mean 11/3), b = 1, 2, 4 (mean 7/3).
  EXPECT_DOUBLE_EQ(cov[1], 19.0 / 6.0);
  EXPECT_EQ(cov[1], cov[2]);
  EXPECT_DOUBLE_EQ(cov[3], 7.0 / 3.0);
  NUVOFree(npair);
  NUVOFree(cov);
}

TEST(ImageMissing, CountsMissingValuesPerVariableAndPerNode) {
  TestImage t(4, 1, 1, {"a", "b"}, {kMissing, 1, 2, kMissing, 0, kMissing, 2, 3});
  int count[2];
  ASSERT_EQ(NUVOGetImageNumberVarValueMissing(&t.image, count), 0);
  EXPECT_EQ(std::vector<int>(count, count + 2), std::vector<int>({2, 1}));
  int8_t flag[4];
  int n = -1;
  ASSERT_EQ(NUVOGetImageVarVectorMissing(&t.image, flag, &n), 0);
  EXPECT_EQ(std::vector<int>(flag, flag + 4), std::vector<int>({1, 1, 0, 1}));
  EXPECT_EQ(n, 3);
  EXPECT_EQ(NUVOGetImageNumberVarValueMissing(&t.image, nullptr), -20);
  EXPECT_EQ(NUVOGetImageVarVectorMissing(&t.image, flag, nullptr), -20);
}

// Both transforms leave missing values alone; the explicit one interpolates and
// clamps at both ends.
TEST(ImageTransform, LinearAndExplicit) {
  TestImage t(7, 1, 1, {"a"}, {-5, 0, 0.5, 1, 2.5, kMissing, 9});
  const double x[] = {0, 1, 3};
  const double y[] = {10, 20, 0};
  ASSERT_EQ(NUVOTransformExplicitImageVar(&t.image, 0, 3, x, y), 0);
  EXPECT_EQ(imageValues(t.image), std::vector<double>({10, 10, 15, 20, 5, kMissing, 0}));
  ASSERT_EQ(NUVOTransformLinearImageVar(&t.image, 0, 2.0, 0.5), 0);
  EXPECT_EQ(imageValues(t.image),
            std::vector<double>({20.5, 20.5, 30.5, 40.5, 10.5, kMissing, 0.5}));
  double one = 1, two = 2;
  EXPECT_EQ(NUVOTransformExplicitImageVar(&t.image, 0, 0, &one, &two), -3);
}

}  // namespace
