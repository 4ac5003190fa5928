// Building a large search neighborhood, as done once per distinct parameter set.
#include <benchmark/benchmark.h>

#include "nuvo_searchneighborhood.h"

namespace {

void buildNeighborhood(benchmark::State &state, double angle) {
  nuvo_searchNeighborhoodParameters p{};
  p.rx = p.ry = 50.0;
  p.rz = 20.0;
  p.ax = p.ay = 50.0;
  p.az = 20.0;
  p.angle1 = angle;
  p.power = 1.0;
  nuvo_randContext ctx;
  NUVOInitRandContext(&ctx);
  for (auto _ : state) {
    nuvo_searchNeighborhood sn;
    NUVOInitSearchNeighborhood(&sn);
    if (NUVOBuildSearchNeighborhood(&p, &sn, &ctx) != 0) state.SkipWithError("build failed");
    state.counters["nodes"] = sn.size;
    NUVOFreeSearchNeighborhood(&sn);
  }
}

void BM_SearchNeighborhood_50x50x20(benchmark::State &state) {
  buildNeighborhood(state, 0.0);
}
void BM_SearchNeighborhood_50x50x20_Rotated(benchmark::State &state) {
  buildNeighborhood(state, 30.0);
}

BENCHMARK(BM_SearchNeighborhood_50x50x20)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_SearchNeighborhood_50x50x20_Rotated)->Unit(benchmark::kMillisecond);

}  // namespace
