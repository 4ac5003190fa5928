#include "parallel/omp_warnings.hpp"

#include "engine/warnings.hpp"
#include "nuvo_blockdata.h"
#include "nuvo_softprobability.h"

namespace nuvo {
namespace {

constexpr int kWarningSimGridAsTi = 100;
constexpr int kWarningGlobalProbability = 111;
constexpr int kWarningBlockData = 115;

}  // namespace

int reportReproducibilityWarnings(const nuvo_simInput &si, nuvo_progressMonitor *pm,
                                  nuvo_progressCallback callback) {
  bool simGridAsTi = false, global = false, blockData = false;
  for (int t = 0; t < si.ntrainImage; ++t) simGridAsTi = simGridAsTi || si.simGridAsTiFlag[t];
  for (int v = 0; v < si.nvar; ++v) {
    global = global ||
             (si.softProbability != nullptr && si.softProbability[v].probabilityConstraintUsage ==
                                                   NUVO_PROBABILITY_CONSTRAINT_GLOBAL);
    blockData = blockData ||
                (si.blockData != nullptr && si.blockData[v].blockDataUsage != NUVO_BLOCK_DATA_NONE);
  }
  NUVO_TRY(warnIf(simGridAsTi, pm, callback, kWarningSimGridAsTi));
  NUVO_TRY(warnIf(global, pm, callback, kWarningGlobalProbability));
  return warnIf(blockData, pm, callback, kWarningBlockData);
}

}  // namespace nuvo
