#include "constraints/connectivity_checks.hpp"

#include "data/values.hpp"

namespace nuvo {

int checkConnectivityWithInput(const nuvo_simInput &si) {
  if (si.connectivity == nullptr) return 0;
  for (int v = 0; v < si.nvar; ++v) {
    const nuvo_connectivity &c = si.connectivity[v];
    if (c.connectivityConstraintUsage == NUVO_CONNECTIVITY_NONE) continue;
    NUVO_FAIL_IF(findName(si.simImage->varName, si.simImage->nvar, c.varName) >= 0, -2105);
    NUVO_FAIL_IF(si.relativeDistanceFlag[v] != 0, -2107);
    NUVO_FAIL_IF(si.ntrainImage > 1, -2108);
  }
  return 0;
}

}  // namespace nuvo
