// The simulation through a pyramid of grids, shared by NUVOSimPyramid and its
// multithreaded twin.
#pragma once

#include <cstdio>

#include "engine/sim_standard.hpp"
#include "nuvo_progress.h"
#include "nuvo_sim.h"
#include "nuvo_siminput.h"

namespace nuvo {

// Every realization of `si` through its pyramid, the node loop of each level
// run on `threads`.
int simulatePyramid(const nuvo_simInput &si, nuvo_simOutput *out, FILE *report,
                    nuvo_progressMonitor *pm, nuvo_progressCallback callback,
                    const ThreadSettings &threads);

}  // namespace nuvo
