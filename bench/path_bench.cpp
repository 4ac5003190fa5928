// Set-up costs of a realization's path on a large grid: random and distance-guided
// paths, and the distance map they rest on; the summed forms on a smaller grid.
#include <benchmark/benchmark.h>

#include <vector>

#include "nuvo_distancemap.h"
#include "nuvo_path.h"

namespace {

// A grid with ndata conditioning nodes placed at random; entries are the others.
struct Case {
  int nx, ny, nz;
  std::vector<signed char> flag;
  std::vector<int> entries;

  Case(int x, int y, int z, int ndata) : nx(x), ny(y), nz(z), flag(x * y * z, 1) {
    nuvo_randContext ctx;
    NUVOInitRandContext(&ctx);
    NUVODoubleRand(17, &ctx);
    for (int i = 0; i < ndata; ++i) flag[NUVOIntRand(0, x * y * z, &ctx)] = 0;
    for (int k = 0; k < x * y * z; ++k)
      if (flag[k] != 0) entries.push_back(k);
  }
};

const Case &large() {
  static const Case c(400, 400, 100, 500);
  return c;
}

const Case &small() {
  static const Case c(100, 100, 10, 200);
  return c;
}

// A copy of the case's entries for one run, made outside the timing: the copy
// is the benchmark's own work, not part of the path's set-up.
std::vector<int> freshEntries(benchmark::State &state, const Case &c) {
  state.PauseTiming();
  std::vector<int> e = c.entries;
  state.ResumeTiming();
  return e;
}

using Guided = int (*)(int, int *, const signed char *, int, int, int, int, double, double, double,
                       double, nuvo_randContext *);
using Summed = int (*)(int, int *, const signed char *, int, int, int, int, double, double, double,
                       double, double, nuvo_randContext *);

void BM_PathRandom_400x400x100(benchmark::State &state) {
  const Case &c = large();
  nuvo_randContext ctx;
  NUVOInitRandContext(&ctx);
  for (auto _ : state) {
    std::vector<int> e = freshEntries(state, c);
    NUVOPathRandom(static_cast<int>(e.size()), e.data(), &ctx);
    benchmark::DoNotOptimize(e.data());
  }
}

void guided(benchmark::State &state, Guided f) {
  const Case &c = large();
  nuvo_randContext ctx;
  NUVOInitRandContext(&ctx);
  for (auto _ : state) {
    std::vector<int> e = freshEntries(state, c);
    if (f(static_cast<int>(e.size()), e.data(), c.flag.data(), c.nx, c.ny, c.nz, 1, 1.0, 1.0, 1.0,
          0.5, &ctx) != 0)
      state.SkipWithError("path failed");
  }
}

void BM_PathDistancePdf_400x400x100(benchmark::State &state) {
  guided(state, NUVOPathDistancePdfRandom);
}
void BM_PathDistanceSort_400x400x100(benchmark::State &state) {
  guided(state, NUVOPathDistanceSortRandom);
}

void BM_EuclideanDistanceMap_400x400x100(benchmark::State &state) {
  const Case &c = large();
  nuvo_grid g{c.nx, c.ny, c.nz, 1.0, 1.0, 2.0, 0.0, 0.0, 0.0, c.nx * c.ny, c.nx * c.ny * c.nz};
  std::vector<signed char> informed(c.flag.size());
  for (std::size_t k = 0; k < informed.size(); ++k) informed[k] = c.flag[k] == 0;
  std::vector<double> d(informed.size());
  for (auto _ : state) {
    if (NUVOEuclideanDistanceMap(&g, informed.data(), d.data()) != 0)
      state.SkipWithError("map failed");
    benchmark::DoNotOptimize(d.data());
  }
}

// Summed forms: 10^5 nodes times 200 conditioning nodes, with the power given.
void summed(benchmark::State &state, Summed f) {
  const Case &c = small();
  nuvo_randContext ctx;
  NUVOInitRandContext(&ctx);
  double power = static_cast<double>(state.range(0)) / 2.0;
  for (auto _ : state) {
    std::vector<int> e = freshEntries(state, c);
    if (f(static_cast<int>(e.size()), e.data(), c.flag.data(), c.nx, c.ny, c.nz, 1, 1.0, 1.0, 1.0,
          0.5, power, &ctx) != 0)
      state.SkipWithError("path failed");
  }
}

void BM_PathDistanceSumPdf_100x100x10(benchmark::State &state) {
  summed(state, NUVOPathDistanceSumPdfRandom);
}
void BM_PathDistanceSumSort_100x100x10(benchmark::State &state) {
  summed(state, NUVOPathDistanceSumSortRandom);
}

BENCHMARK(BM_PathRandom_400x400x100)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_PathDistancePdf_400x400x100)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_PathDistanceSort_400x400x100)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_EuclideanDistanceMap_400x400x100)->Unit(benchmark::kMillisecond);
// Argument: twice the power (2 -> p = 1, 4 -> p = 2, 3 -> p = 1.5).
BENCHMARK(BM_PathDistanceSumPdf_100x100x10)->Arg(2)->Arg(4)->Arg(3)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_PathDistanceSumSort_100x100x10)->Arg(3)->Unit(benchmark::kMillisecond);

}  // namespace
