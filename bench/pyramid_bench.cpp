// Gaussian pyramid reduction and expansion of a 400 x 400 x 100 field (steps 2 in
// every direction), with 5 % of missing nodes so that the weighted path is the one
// measured.
#include <benchmark/benchmark.h>

#include <cmath>
#include <vector>

#include "nuvo_pyramid.h"
#include "nuvo_random.h"

namespace {

constexpr int kN[3] = {400, 400, 100};
constexpr int kStep = 2;

struct Field {
  std::vector<double> values;
  std::vector<double> w = std::vector<double>(kStep + 1);
  int nc[3] = {}, shift[3] = {};

  Field() : values(static_cast<std::size_t>(kN[0]) * kN[1] * kN[2]) {
    nuvo_randContext ctx;
    NUVOInitRandContext(&ctx);
    NUVODoubleRand(5, &ctx);
    for (std::size_t i = 0; i < values.size(); ++i)
      values[i] = NUVODoubleRand(0, &ctx) < 0.05 ? NUVO_MISSING_VALUE : std::sin(0.01 * i);
    NUVOPyramidWeight(kStep, -1.0, w.data());
    for (int a = 0; a < 3; ++a) NUVOPyramidReduceDimension(kN[a], kStep, &nc[a], &shift[a]);
  }
};

const Field &field() {
  static const Field f;
  return f;
}

void BM_PyramidReduce400x400x100(benchmark::State &state) {
  const Field &f = field();
  std::vector<double> out(static_cast<std::size_t>(f.nc[0]) * f.nc[1] * f.nc[2]),
      weight(out.size());
  for (auto _ : state) {
    const int rc =
        NUVOPyramidReduce(f.values.data(), kN[0], kN[1], kN[2], kStep, kStep, kStep, f.w.data(),
                          f.w.data(), f.w.data(), f.shift[0], f.shift[1], f.shift[2], f.nc[0],
                          f.nc[1], f.nc[2], out.data(), weight.data(), 0.6);
    if (rc != 0) state.SkipWithError("reduction failed");
    benchmark::DoNotOptimize(out.data());
  }
}
BENCHMARK(BM_PyramidReduce400x400x100)->Unit(benchmark::kMillisecond);

// Expansion of a 200 x 200 x 50 coarse field onto 399 x 399 x 99 nodes.
void BM_PyramidExpandTo400x400x100(benchmark::State &state) {
  const Field &f = field();
  const int nc[3] = {200, 200, 50};
  std::vector<double> coarse(f.values.begin(), f.values.begin() + nc[0] * nc[1] * nc[2]);
  int nf[3] = {};
  for (int a = 0; a < 3; ++a) NUVOPyramidExpandDimension(nc[a], kStep, &nf[a]);
  std::vector<double> out(static_cast<std::size_t>(nf[0]) * nf[1] * nf[2]), weight(out.size());
  for (auto _ : state) {
    const int rc = NUVOPyramidExpand(coarse.data(), nc[0], nc[1], nc[2], kStep, kStep, kStep,
                                     f.w.data(), f.w.data(), f.w.data(), nf[0], nf[1], nf[2],
                                     out.data(), weight.data(), 0.6);
    if (rc != 0) state.SkipWithError("expansion failed");
    benchmark::DoNotOptimize(out.data());
  }
}
BENCHMARK(BM_PyramidExpandTo400x400x100)->Unit(benchmark::kMillisecond);

}  // namespace
