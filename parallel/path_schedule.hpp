// A path shared by several threads: who simulates which entry, and when an
// entry may read another's value.
//
// Claiming. The threads take path positions from one atomic counter, in path
// order: a single relaxed fetch_add per entry, no lock. At 64 threads the
// counter's cache line moves between cores once per entry (some 100 ns), while
// an entry costs a gather and a scan of hundreds to thousands of candidates
// (tens of microseconds): the claim stays a fraction of a percent of the work.
//
// Ordering. The serial loop simulates position k after every earlier position
// and before every later one, so at k it sees the earlier entries informed and
// the later ones still missing. The threaded loop keeps exactly that view: an
// entry's position in the path (rank) is written once per path, before the
// threads start; when the entry at position k reads a neighbour that is itself
// an entry of the path, a neighbour of rank >= k counts as missing (it is never
// read, so a concurrent write to it cannot race), and one of rank < k is read
// only after waiting for its done flag. Which earlier entries can enter k's data
// event is thereby fixed before the run: those of its search neighbourhood (the
// neighbourhood's fixed offsets, looked up through the rank table, so nothing
// per entry needs storing). The realization is then bit-identical to the serial
// one for any number of threads.
//
// Waiting. Done flags are one atomic byte per position, set with release after
// the entry's values are written and read with acquire before they are. A
// waiting thread spins a short while, then yields. Claims are made in path
// order and an entry only waits for earlier ones, so the oldest unfinished entry
// never waits: there is no deadlock, and at most nthread - 1 threads wait at a
// time. On a random path the chance that one of the nthread - 1 entries in
// flight lies in a node's neighbourhood is about (nthread - 1) times the
// neighbourhood's size over the number of nodes still to simulate, small until
// the very end of the path; the counters below measure it.
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

namespace nuvo {

// How often and how long one thread waited for earlier entries.
struct alignas(64) WaitCounters {
  std::int64_t waits = 0;        // reads that found the entry unfinished
  std::int64_t nanoseconds = 0;  // time spent in those waits
};

class PathSchedule {
 public:
  // `path` holds the entries (indices below nentry) in path order.
  PathSchedule(std::span<const int> path, std::size_t nentry);

  int size() const { return size_; }
  // The entry's position in the path, or -1 when it is not on the path.
  int rank(int entry) const { return rank_[static_cast<std::size_t>(entry)]; }

  // The next position to simulate (>= size() when the path is used up or a
  // stop was asked for).
  int claim() { return next_.fetch_add(1, std::memory_order_relaxed); }
  // Claimed positions so far (at most size()).
  int claimed() const;
  // Makes every later claim come back empty.
  void stop() { next_.store(size_, std::memory_order_relaxed); }

  // Publishes the values written for position k.
  void finish(int k) { done_[static_cast<std::size_t>(k)].store(1, std::memory_order_release); }
  // Returns once position k is finished, counting the wait in `counters`.
  void waitFor(int k, WaitCounters &counters) const {
    if (done_[static_cast<std::size_t>(k)].load(std::memory_order_acquire) == 0)
      waitSlow(k, counters);
  }

 private:
  void waitSlow(int k, WaitCounters &counters) const;

  int size_ = 0;
  std::vector<int> rank_;
  std::unique_ptr<std::atomic<std::uint8_t>[]> done_;
  alignas(64) std::atomic<int> next_{0};
};

}  // namespace nuvo
