// The standard simulation with its number of threads, shared by NUVOSimStandard
// and its multithreaded twin.
#pragma once

#include <cstdio>

#include "nuvo_progress.h"
#include "nuvo_sim.h"
#include "nuvo_siminput.h"
#include "parallel/path_schedule.hpp"

namespace nuvo {

// What every multithreaded entry point returns for fewer than one thread.
inline constexpr int kInvalidThreadCount = -99;

struct ThreadSettings {
  int nthread = 1;                // threads of the node loop; 1 is the serial loop
  WaitCounters *waits = nullptr;  // when not null, receives the threads' waits
};

int simulateStandard(const nuvo_simInput &si, nuvo_simOutput *out, FILE *report,
                     nuvo_progressMonitor *pm, nuvo_progressCallback callback,
                     const ThreadSettings &threads);

}  // namespace nuvo
