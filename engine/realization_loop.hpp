// The loop over the realizations of a simulation, shared by the standard and the
// pyramid simulations.
#pragma once

#include <cstdio>
#include <functional>

#include "engine/sim_files.hpp"
#include "nuvo_image.h"
#include "nuvo_progress.h"
#include "nuvo_siminput.h"

namespace nuvo {

// Simulates realization r from `seed` and points `*result` at the image to write.
using RealizationFunction = std::function<int(int r, int seed, const nuvo_image **result)>;

// For r = 0 .. nrealization - 1, with seed + r * seedIncrement (32-bit
// wrap-around): the monitor learns which realization runs, the report gets
// "Realization r of n:", the writer's maps are reset, `simulate` runs, the report
// gets the realization's CPU time and the writer writes it out; a stop request
// ends the loop with -1000. Then the files of all realizations are written.
// Returns 0 or the first failure.
int runRealizations(const nuvo_simInput &si, FILE *report, nuvo_progressMonitor *pm,
                    OutputWriter &writer, const RealizationFunction &simulate);

}  // namespace nuvo
