#include "parallel/path_schedule.hpp"

#include <algorithm>
#include <chrono>
#include <thread>

namespace nuvo {
namespace {

// Spins before the first yield: an entry in flight usually finishes within a
// few microseconds of scanning, shorter than a trip through the scheduler.
constexpr int kSpinsBeforeYield = 256;

}  // namespace

PathSchedule::PathSchedule(std::span<const int> path, std::size_t nentry)
    : size_(static_cast<int>(path.size())),
      rank_(nentry, -1),
      done_(std::make_unique<std::atomic<std::uint8_t>[]>(path.size())) {
  for (int k = 0; k < size_; ++k) {
    rank_[static_cast<std::size_t>(path[k])] = k;
    done_[static_cast<std::size_t>(k)].store(0, std::memory_order_relaxed);
  }
}

int PathSchedule::claimed() const {
  return std::min(next_.load(std::memory_order_relaxed), size_);
}

void PathSchedule::waitSlow(int k, WaitCounters &counters) const {
  const auto start = std::chrono::steady_clock::now();
  const std::atomic<std::uint8_t> &flag = done_[static_cast<std::size_t>(k)];
  for (int spin = 0; flag.load(std::memory_order_acquire) == 0; ++spin) {
    if (spin >= kSpinsBeforeYield) std::this_thread::yield();
  }
  ++counters.waits;
  counters.nanoseconds +=
      std::chrono::duration_cast<std::chrono::nanoseconds>(std::chrono::steady_clock::now() - start)
          .count();
}

}  // namespace nuvo
