// The conditioning step of a simulation, shared by the standard and pyramid
// simulations.
#pragma once

#include <vector>

#include "nuvo_image.h"
#include "nuvo_progress.h"
#include "nuvo_siminput.h"

namespace nuvo {

// Merges the conditioning data of `si` into `image` (a copy of its simulation
// image). When some variable has a connectivity constraint, `label` receives the
// labels of every variable (si.nvar * nxyz, as NUVOSimIntegrateConditioningData-
// WithConnectivity fills them); it stays empty otherwise. Returns 0 or the
// failure of the conditioning functions.
int integrateConditioning(const nuvo_simInput &si, nuvo_image *image, std::vector<int> *label,
                          nuvo_progressMonitor *pm, nuvo_progressCallback callback);

}  // namespace nuvo
