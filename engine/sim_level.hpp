// One simulation among several: a pyramid level simulated as a whole input of
// its own, through the same preparation and realization as a standard run.
#pragma once

#include <cstdio>

#include "engine/realization.hpp"
#include "engine/sim_standard.hpp"
#include "nuvo_image.h"
#include "nuvo_progress.h"
#include "nuvo_siminput.h"

namespace nuvo {

// Prepares `si` (conditioning, training values, neighbourhoods, path) as the
// standard simulation does, without report details or output, simulates one
// realization from `seed` and leaves it in `result` (freed first, then a copy of
// the working image with every variable of `si`). `maps` receives the optional
// maps of the realization; the realization statistics go to `report` when not
// null. The node loop runs on `threads`. Returns 0 or the first failure of the
// preparation or realization.
int simulateLevel(const nuvo_simInput &si, int seed, nuvo_image *result,
                  const RealizationMaps &maps, FILE *report, nuvo_progressMonitor *pm,
                  nuvo_progressCallback callback, const ThreadSettings &threads);

}  // namespace nuvo
