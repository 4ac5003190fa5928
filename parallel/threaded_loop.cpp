#include "parallel/threaded_loop.hpp"

#include <omp.h>

#include <algorithm>
#include <atomic>

#include "foundation/check.hpp"

namespace nuvo {
namespace {

constexpr int kCheckpointsPerPath = 100;
constexpr int kPositionsPerThreadBetweenCheckpoints = 256;

// What the threads of one path share besides the schedule.
struct LoopState {
  std::atomic<bool> failed{false};
  std::atomic<bool> stop{false};
  int stopCode = 0;  // written by thread 0 only
};

// Simulates position k and publishes it, even when it failed: later positions
// may wait for it. Thread 0 then reports progress.
void runPosition(PathSchedule &schedule, PathWork &work, LoopState &state, int thread, int k) {
  try {
    work.simulate(thread, k);
  } catch (...) {
    state.failed.store(true, std::memory_order_relaxed);
    state.stop.store(true, std::memory_order_relaxed);
  }
  schedule.finish(k);
  if (thread == 0 && state.stopCode == 0) {
    state.stopCode = work.progress(std::max(k + 1, schedule.claimed()));
    if (state.stopCode != 0) state.stop.store(true, std::memory_order_relaxed);
  }
}

// Positions claimed one at a time, in path order.
void claimLoop(PathSchedule &schedule, PathWork &work, LoopState &state, int thread) {
  const int n = schedule.size();
  for (int k = schedule.claim(); k < n; k = schedule.claim()) {
    runPosition(schedule, work, state, thread, k);
    if (state.stop.load(std::memory_order_relaxed)) schedule.stop();
  }
}

// Positions dealt out statically, with a checkpoint every `interval`. Every
// thread passes the same barriers; the decision to stop is read between the
// two barriers of a checkpoint, where nobody writes it.
void checkpointLoop(PathSchedule &schedule, PathWork &work, LoopState &state, int thread,
                    int nthread, int interval, bool &stopAll) {
  const int n = schedule.size();
  for (int start = 0; start < n; start += interval) {
    const int end = std::min(n, start + interval);
    for (int k = start + thread; k < end; k += nthread)
      if (!state.stop.load(std::memory_order_relaxed))
        runPosition(schedule, work, state, thread, k);
      else
        schedule.finish(k);
#pragma omp barrier
#pragma omp single
    {
      work.checkpoint();
      stopAll = state.stop.load(std::memory_order_relaxed);
    }
    if (stopAll) break;
  }
}

}  // namespace

int checkpointInterval(int n, int nthread) {
  return std::max(n / kCheckpointsPerPath, kPositionsPerThreadBetweenCheckpoints * nthread);
}

int runThreadedPath(PathSchedule &schedule, int nthread, PathWork &work, int interval) {
  LoopState state;
  bool stopAll = false;
#pragma omp parallel num_threads(nthread)
  {
    const int thread = omp_get_thread_num();
    // Static dealing needs every thread it counts on.
    if (interval > 0 && omp_get_num_threads() == nthread)
      checkpointLoop(schedule, work, state, thread, nthread, interval, stopAll);
    else
      claimLoop(schedule, work, state, thread);
  }
  if (state.failed.load(std::memory_order_relaxed)) return kAllocationFailed;
  NUVO_TRY(state.stopCode);
  return work.progress(schedule.size());
}

}  // namespace nuvo
