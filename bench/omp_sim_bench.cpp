// The multithreaded simulation against the serial loop: the channel case on a
// 200 x 200 and a 400 x 400 grid, and the 3D lens case, on 1 and 2 threads
// (wall-clock time: run with --benchmark_repetitions=N
// --benchmark_enable_random_interleaving=true and compare the best times).
//
// The realizations are the same for any number of threads, so 1 and 2 threads
// do exactly the same work. Counters: nodes per second, and how the threads
// waited for one another: "waits/node", the share of gathered neighbours found
// unfinished (per simulated node), "wait share", the time spent waiting over
// the time of all threads together, and "cpu s", the processor time of all
// threads per realization: on a machine busy with other work, where the wall
// time says little, its ratio between 1 and 2 threads still shows what the
// threads add in work (1.0: nothing).
#include <benchmark/benchmark.h>

#include <chrono>
#include <ctime>

#include "bench/sim_cases.hpp"
#include "engine/sim_standard.hpp"
#include "nuvo_sim.h"

namespace {

using nuvo_bench::Case;

void runThreaded(benchmark::State &state, Case *c, int nthread) {
  int verdict = 0;
  if (NUVOValidateSimInput(&c->si, nullptr, nullptr, &verdict) != 0 || verdict != 0) {
    state.SkipWithError("invalid input");
    return;
  }
  nuvo::WaitCounters waits;
  int seed = 1;
  const auto start = std::chrono::steady_clock::now();
  const std::clock_t cpuStart = std::clock();
  for (auto _ : state) {
    c->si.seed = seed++;
    nuvo_simOutput out;
    NUVOInitSimOutput(&out);
    if (nuvo::simulateStandard(c->si, &out, nullptr, nullptr, nullptr, {nthread, &waits}) != 0)
      state.SkipWithError("simulation failed");
    NUVOFreeSimOutput(&out);
  }
  const double wall =
      std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  const double cpu = static_cast<double>(std::clock() - cpuStart) / CLOCKS_PER_SEC;
  const double nodes = c->si.simImage->grid->nxyz;
  const double iterations = static_cast<double>(state.iterations());
  state.counters["nodes/s"] =
      benchmark::Counter(nodes, benchmark::Counter::kIsIterationInvariantRate);
  state.counters["waits/node"] = static_cast<double>(waits.waits) / (nodes * iterations);
  state.counters["cpu s"] = cpu / iterations;
  state.counters["wait share"] = static_cast<double>(waits.nanoseconds) * 1e-9 / (wall * nthread);
}

// Arguments: grid size, threads.
void BM_ThreadedChannels2D(benchmark::State &state) {
  nuvo_image ti;
  NUVOInitImage(&ti);
  nuvo_bench::loadChannelImage(&ti);
  Case c;
  const int n = static_cast<int>(state.range(0));
  nuvo_bench::configure(&c, ti, n, n, 1, 20.0, 20.0, 0.0, 0.5);
  NUVOFreeImage(&ti);
  runThreaded(state, &c, static_cast<int>(state.range(1)));
}
BENCHMARK(BM_ThreadedChannels2D)
    ->ArgsProduct({{200, 400}, {1, 2}})
    ->Unit(benchmark::kSecond)
    ->UseRealTime()
    ->Iterations(1);

// Argument: threads.
void BM_ThreadedLenses3D(benchmark::State &state) {
  nuvo_image ti;
  NUVOInitImage(&ti);
  NUVOGenerateLensImage(&ti, 150, 150, 40, 1);
  Case c;
  nuvo_bench::configure(&c, ti, 100, 100, 30, 10.0, 10.0, 4.0, 0.02);
  NUVOFreeImage(&ti);
  runThreaded(state, &c, static_cast<int>(state.range(0)));
}
BENCHMARK(BM_ThreadedLenses3D)
    ->Arg(1)
    ->Arg(2)
    ->Unit(benchmark::kSecond)
    ->UseRealTime()
    ->Iterations(1);

}  // namespace
