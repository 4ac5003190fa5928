// The loop that runs a path on several threads.
//
// Without checkpoints the threads claim positions one at a time from the
// schedule's counter, which balances entries of very different costs (a full
// scan against a marginal draw) at the price of an assignment of positions to
// threads that depends on timing. That is harmless as long as an entry's result
// depends only on the entries it waited for.
//
// The global probability constraint reads counts that every entry changes. Its
// threads keep their own counts of what they assign and merge them at fixed
// checkpoints, every `interval` positions: all threads meet at a barrier, one
// merges (PathWork::checkpoint) and they meet again. For the counts an entry sees
// to be the same from run to run, the positions are then dealt out statically,
// position k to thread k mod nthread, so that a thread's own counts since the
// last checkpoint are always those of the same entries. The results then depend
// on the number of threads (the serial run sees every count at once), but not
// on timing.
#pragma once

#include "parallel/path_schedule.hpp"

namespace nuvo {

// The work of a path, one call per position.
class PathWork {
 public:
  // Simulates position k on thread `thread` (0 to nthread - 1); the schedule
  // publishes it once this returns. May throw std::bad_alloc.
  virtual void simulate(int thread, int k) = 0;
  // Merges the threads' own counts; called on one thread while the others wait.
  virtual void checkpoint() = 0;
  // Called on the calling thread only, after its own positions, with the
  // number of positions claimed so far, and once with size() at the end. A
  // non-zero result stops the path.
  virtual int progress(int completed) = 0;

 protected:
  ~PathWork() = default;
};

// Positions between two checkpoints of a path of n positions on nthread
// threads: about a hundred checkpoints per path, and at least 256 positions per
// thread between two, so that the barriers stay rare.
int checkpointInterval(int n, int nthread);

// Runs every position of `schedule` on `nthread` threads, thread 0 being the
// calling thread, with checkpoints every `interval` positions (0: none).
// Returns 0, the first non-zero result of progress, or -1 when a position
// threw. A stopped path still finishes the positions already claimed.
int runThreadedPath(PathSchedule &schedule, int nthread, PathWork &work, int interval);

}  // namespace nuvo
