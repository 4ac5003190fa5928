// Turning the automatic search neighborhood modes of a simulation input into
// numbers, with the warnings that go with them.
#pragma once

#include "nuvo_progress.h"
#include "nuvo_siminput.h"

namespace nuvo {

// True when training image t is the simulation grid itself.
inline bool isSimGridTi(const nuvo_simInput &si, int t) {
  return si.simGridAsTiFlag != nullptr && si.simGridAsTiFlag[t] != 0;
}

// Resolves the radius and anisotropy modes of variable iv (parameters already
// valid) into numbers in place and reports warnings 25-27, 80 and 30-36. Puts 0
// or -1061 in *error; returns 0, -1, -1000 or a callback's code.
int resolveSearchNeighborhood(nuvo_simInput &si, int iv, nuvo_progressMonitor *pm,
                              nuvo_progressCallback callback, int *error);

}  // namespace nuvo
