// Lag maps of a 200 x 200 x 50 image over a box of 21 x 21 x 5 lags (-10..10,
// -10..10, -2..2), one map per function, and the labelling of the geobodies of a
// 400 x 400 x 100 image. The byte rate counts the values read by the pair walks:
// two per pair (doubles, or int labels for the connectivity functions); the bare
// walk over the same pairs, counting them, gives the speed to compare with.
#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdlib>

#include "nuvo_variogram.h"
#include "tests/support/make_image.hpp"
#include "toolkit/geobodies.hpp"
#include "toolkit/lag_pairs.hpp"

namespace {

using LagMap = int (*)(const nuvo_image *, nuvo_image *, int, int, int, int, int, int, int, int,
                       int, int, signed char);

constexpr int kHx = 10, kHy = 10, kHz = 2;

// Sand (1) in sheets that wander along x, shale (0) elsewhere, a missing value
// every 97 nodes.
class SandImage {
 public:
  SandImage(int nx, int ny, int nz) {
    NUVOInitImage(&image_);
    nuvo_test::makeImage(&image_, nx, ny, nz, {"sand"}, [nx, ny](int x, int y, int z, int) {
      const long long i = x + static_cast<long long>(nx) * (y + static_cast<long long>(ny) * z);
      if (i % 97 == 0) return NUVO_MISSING_VALUE;
      return std::sin(0.3 * y + 2.0 * std::sin(0.05 * x) + 0.7 * z) > 0.2 ? 1.0 : 0.0;
    });
  }
  ~SandImage() { NUVOFreeImage(&image_); }
  const nuvo_image &get() const { return image_; }

 private:
  nuvo_image image_;
};

const nuvo_image &lagImage() {
  static const SandImage image(200, 200, 50);
  return image.get();
}

// Pairs walked by one map of the box.
long long pairsInBox(const nuvo_grid &g) {
  long long pairs = 0;
  for (int hz = -kHz; hz <= kHz; ++hz)
    for (int hy = -kHy; hy <= kHy; ++hy)
      for (int hx = -kHx; hx <= kHx; ++hx)
        pairs += static_cast<long long>(g.nx - std::abs(hx)) * (g.ny - std::abs(hy)) *
                 (g.nz - std::abs(hz));
  return pairs;
}

void BM_LagMap(benchmark::State &state, LagMap function, int bytesPerValue) {
  const nuvo_image &image = lagImage();
  for (auto _ : state) {
    nuvo_image map;
    NUVOInitImage(&map);
    if (function(&image, &map, 0, -kHx, kHx, 1, -kHy, kHy, 1, -kHz, kHz, 1, 0) != 0)
      state.SkipWithError("lag map failed");
    NUVOFreeImage(&map);
  }
  state.SetBytesProcessed(state.iterations() * pairsInBox(*image.grid) * 2 * bytesPerValue);
}

BENCHMARK_CAPTURE(BM_LagMap, variogram, NUVOImageVariogram, 8)->Unit(benchmark::kSecond);
BENCHMARK_CAPTURE(BM_LagMap, covariance, NUVOImageCovariance, 8)->Unit(benchmark::kSecond);
BENCHMARK_CAPTURE(BM_LagMap, covarianceNotCentred, NUVOImageCovarianceNotCentred, 8)
    ->Unit(benchmark::kSecond);
BENCHMARK_CAPTURE(BM_LagMap, correlogram, NUVOImageCorrelogram, 8)->Unit(benchmark::kSecond);
BENCHMARK_CAPTURE(BM_LagMap, transiogram, NUVOImageTransiogram, 8)->Unit(benchmark::kSecond);
BENCHMARK_CAPTURE(BM_LagMap, connectivity0, NUVOImageConnectivityFunction0, 4)
    ->Unit(benchmark::kSecond);
BENCHMARK_CAPTURE(BM_LagMap, connectivity2, NUVOImageConnectivityFunction2, 4)
    ->Unit(benchmark::kSecond);

// The walk alone, counting the informed pairs of the same box: the speed the
// maps are measured against.
void BM_LagPairWalk(benchmark::State &state) {
  const nuvo_image &image = lagImage();
  const nuvo_grid &g = *image.grid;
  for (auto _ : state) {
    long long informed = 0;
    for (int hz = -kHz; hz <= kHz; ++hz)
      for (int hy = -kHy; hy <= kHy; ++hy)
        for (int hx = -kHx; hx <= kHx; ++hx)
          nuvo::forEachLagPair(g, image.var, hx, hy, hz,
                               [&](double a, double b) { informed += nuvo::informedPair(a, b); });
    benchmark::DoNotOptimize(informed);
  }
  state.SetBytesProcessed(state.iterations() * pairsInBox(g) * 2 * 8);
}

BENCHMARK(BM_LagPairWalk)->Unit(benchmark::kSecond);

void BM_LabelGeobodies(benchmark::State &state) {
  static const SandImage image(400, 400, 100);
  const nuvo_image &sand = image.get();
  for (auto _ : state)
    benchmark::DoNotOptimize(
        nuvo::labelGeobodies(*sand.grid, sand.var, static_cast<int>(state.range(0))));
  state.SetItemsProcessed(state.iterations() * sand.grid->nxyz);
}

BENCHMARK(BM_LabelGeobodies)->Arg(0)->Arg(2)->Unit(benchmark::kMillisecond);

}  // namespace
