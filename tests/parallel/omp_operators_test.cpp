// The multithreaded distance map, guided paths and pyramid operators give
// exactly what their serial twins give.
#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "nuvo_distancemap.h"
#include "nuvo_omp.h"
#include "nuvo_path.h"
#include "nuvo_pyramid.h"
#include "tests/support/random.hpp"

namespace {

constexpr int kNx = 23, kNy = 17, kNz = 9, kNvar = 2;
constexpr int kNxyz = kNx * kNy * kNz;

// Entry flags of kNvar variables: a scatter of informed entries (0).
std::vector<signed char> flags() {
  std::vector<signed char> f(kNxyz * kNvar, 1);
  for (int i = 0; i < kNxyz * kNvar; i += 37) f[i] = 0;
  return f;
}

TEST(OmpOperators, DistanceMapAndGuidedPathsMatchSerial) {
  const nuvo_grid grid{kNx, kNy, kNz, 1.0, 2.0, 0.5, 0.0, 0.0, 0.0, kNx * kNy, kNxyz};
  const std::vector<signed char> f = flags();
  std::vector<double> serial(kNxyz), threaded(kNxyz);
  ASSERT_EQ(NUVOEuclideanDistanceMap(&grid, f.data(), serial.data()), 0);
  for (int nthread : {1, 2, 3, 4}) {
    ASSERT_EQ(NUVOOMPEuclideanDistanceMap(&grid, f.data(), threaded.data(), nthread), 0);
    EXPECT_EQ(threaded, serial) << nthread << " threads";
  }
  EXPECT_EQ(NUVOOMPEuclideanDistanceMap(&grid, f.data(), threaded.data(), 0), -99);

  using Nearest = int (*)(int, int *, const signed char *, int, int, int, int, double, double,
                          double, double, nuvo_randContext *);
  using NearestOmp = int (*)(int, int *, const signed char *, int, int, int, int, double, double,
                             double, double, nuvo_randContext *, int);
  using Summed = int (*)(int, int *, const signed char *, int, int, int, int, double, double,
                         double, double, double, nuvo_randContext *);
  using SummedOmp = int (*)(int, int *, const signed char *, int, int, int, int, double, double,
                            double, double, double, nuvo_randContext *, int);
  const std::pair<Nearest, NearestOmp> nearest[] = {
      {NUVOPathDistancePdfRandom, NUVOOMPPathDistancePdfRandom},
      {NUVOPathDistanceSortRandom, NUVOOMPPathDistanceSortRandom},
      {NUVOVectorPathDistancePdfRandom, NUVOOMPVectorPathDistancePdfRandom},
      {NUVOVectorPathDistanceSortRandom, NUVOOMPVectorPathDistanceSortRandom}};
  const std::pair<Summed, SummedOmp> summed[] = {
      {NUVOPathDistanceSumPdfRandom, NUVOOMPPathDistanceSumPdfRandom},
      {NUVOPathDistanceSumSortRandom, NUVOOMPPathDistanceSumSortRandom},
      {NUVOVectorPathDistanceSumPdfRandom, NUVOOMPVectorPathDistanceSumPdfRandom},
      {NUVOVectorPathDistanceSumSortRandom, NUVOOMPVectorPathDistanceSumSortRandom}};
  std::vector<int> entries;
  for (int e = 0; e < kNxyz; ++e)
    if (f[e] != 0) entries.push_back(e);
  const int n = static_cast<int>(entries.size());
  const auto order = [&](auto run) {
    std::vector<int> path = entries;
    nuvo_randContext ctx = nuvo_test::seededContext(5);
    EXPECT_EQ(run(path.data(), &ctx), 0);
    return path;
  };
  // A path on 3 threads against its serial twin; `power` for the summed forms.
  const auto compare = [&](auto serialPath, auto threadedPath, auto... power) {
    const auto reference = order([&](int *p, nuvo_randContext *ctx) {
      return serialPath(n, p, f.data(), kNx, kNy, kNz, kNvar, 1.0, 2.0, 0.5, 0.6, power..., ctx);
    });
    EXPECT_NE(reference, entries);
    EXPECT_EQ(order([&](int *p, nuvo_randContext *ctx) {
                return threadedPath(n, p, f.data(), kNx, kNy, kNz, kNvar, 1.0, 2.0, 0.5, 0.6,
                                    power..., ctx, 3);
              }),
              reference);
  };
  for (const auto &[serialPath, threadedPath] : nearest) compare(serialPath, threadedPath);
  for (const auto &[serialPath, threadedPath] : summed) compare(serialPath, threadedPath, 1.5);
}

TEST(OmpOperators, PyramidReduceAndExpandMatchSerial) {
  std::vector<double> in(kNxyz);
  for (int i = 0; i < kNxyz; ++i)
    in[i] = i % 11 == 0 ? NUVO_MISSING_VALUE : std::sin(0.1 * i) + 0.01 * (i % 7);
  std::vector<double> w(3);
  ASSERT_EQ(NUVOPyramidWeight(2, 0.4, w.data()), 0);
  const int dims[3] = {kNx, kNy, kNz};
  int nOut[3], shift[3];
  for (int a = 0; a < 3; ++a)
    ASSERT_EQ(NUVOPyramidReduceDimension(dims[a], 2, &nOut[a], &shift[a]), 0);
  const std::size_t size = static_cast<std::size_t>(nOut[0]) * nOut[1] * nOut[2];
  std::vector<double> out(size), weight(size), outOmp(size), weightOmp(size);
  ASSERT_EQ(NUVOPyramidReduce(in.data(), kNx, kNy, kNz, 2, 2, 2, w.data(), w.data(), w.data(),
                              shift[0], shift[1], shift[2], nOut[0], nOut[1], nOut[2], out.data(),
                              weight.data(), 0.6),
            0);
  ASSERT_EQ(NUVOOMPPyramidReduce(in.data(), kNx, kNy, kNz, 2, 2, 2, w.data(), w.data(), w.data(),
                                 shift[0], shift[1], shift[2], nOut[0], nOut[1], nOut[2],
                                 outOmp.data(), weightOmp.data(), 0.6, 3),
            0);
  EXPECT_EQ(outOmp, out);
  EXPECT_EQ(weightOmp, weight);

  int nFine[3];
  for (int a = 0; a < 3; ++a) ASSERT_EQ(NUVOPyramidExpandDimension(nOut[a], 2, &nFine[a]), 0);
  const std::size_t fine = static_cast<std::size_t>(nFine[0]) * nFine[1] * nFine[2];
  std::vector<double> up(fine), upWeight(fine), upOmp(fine), upWeightOmp(fine);
  ASSERT_EQ(
      NUVOPyramidExpand(out.data(), nOut[0], nOut[1], nOut[2], 2, 2, 2, w.data(), w.data(),
                        w.data(), nFine[0], nFine[1], nFine[2], up.data(), upWeight.data(), 0.5),
      0);
  ASSERT_EQ(NUVOOMPPyramidExpand(out.data(), nOut[0], nOut[1], nOut[2], 2, 2, 2, w.data(), w.data(),
                                 w.data(), nFine[0], nFine[1], nFine[2], upOmp.data(),
                                 upWeightOmp.data(), 0.5, 4),
            0);
  EXPECT_EQ(upOmp, up);
  EXPECT_EQ(upWeightOmp, upWeight);
}

}  // namespace
