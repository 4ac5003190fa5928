// The whole run of a simulation, shared by NUVOSim and NUVOOMPSim.
#pragma once

#include "nuvo_progress.h"
#include "nuvo_sim.h"
#include "nuvo_siminput.h"

namespace nuvo {

// Report header, printed input, validation and the simulation. `nthread` 0 runs
// the serial family; a positive count the multithreaded one, whose report names
// its threads and which raises the reproducibility warnings after validation.
int simulate(nuvo_simInput *si, nuvo_simOutput *out, nuvo_progressMonitor *pm,
             nuvo_progressCallback callback, int nthread);

}  // namespace nuvo
