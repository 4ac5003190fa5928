// The generator's cost per path entry: every entry of a path reseeds its own
// context from the realization's seed and its position, before any draw.
#include <benchmark/benchmark.h>

#include "foundation/random.hpp"
#include "nuvo_random.h"

namespace {

void BM_SeedRandContext(benchmark::State &state) {
  nuvo_randContext ctx;
  NUVOInitRandContext(&ctx);
  int seed = 1;
  for (auto _ : state) {
    nuvo::seedRandContext(seed++, &ctx);
    benchmark::DoNotOptimize(ctx.table[0]);
  }
}
BENCHMARK(BM_SeedRandContext);

}  // namespace
