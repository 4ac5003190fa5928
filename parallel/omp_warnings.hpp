// The warnings of a multithreaded simulation whose result may not be the
// serial one.
#pragma once

#include "nuvo_progress.h"
#include "nuvo_siminput.h"

namespace nuvo {

// Raises, in this order and through the monitor: 100 when a training image is
// the simulation grid, 111 under the global probability constraint, 115 with
// block data. Returns 0 or the callback's code / -1000.
int reportReproducibilityWarnings(const nuvo_simInput &si, nuvo_progressMonitor *pm,
                                  nuvo_progressCallback callback);

}  // namespace nuvo
