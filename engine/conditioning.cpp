// Conditioning data merged into the working simulation image: data images, then
// data point sets, then the mask.
#include <cstring>

#include "data/values.hpp"
#include "engine/warnings.hpp"
#include "nuvo_conditioning.h"

namespace nuvo {
namespace {

// Conflicts make the later datum replace the earlier one.
constexpr int kConflictOverwrite = 2;
constexpr int kNoVariable = -3;
constexpr int kInvalidDataGrid = -150;

struct Counts {
  int ignoredVar = 0;
  int conflict = 0;
};

// An image given for the simulation grid: present, with variables, on that grid.
int checkGridImage(const nuvo_image *image, const nuvo_image &simImage) {
  NUVO_FAIL_IF(image == nullptr, kMemoryNotAllocated);
  NUVO_FAIL_IF(image->nvar < 1, kNoVariable);
  NUVO_FAIL_IF(NUVOCmpGrid(image->grid, simImage.grid) != 0, kInvalidDataGrid);
  return 0;
}

// The variables among `names` that only label the data of a connectivity
// constraint in use: read by the constraint, they are not ignored.
int labelVariables(const nuvo_simInput &si, const nuvo_image &simImage, char *const *names,
                   int nname) {
  if (si.connectivity == nullptr) return 0;
  int count = 0;
  for (int i = 0; i < nname; ++i) {
    bool label = false, simulated = false;
    for (int v = 0; v < si.nvar; ++v) {
      const nuvo_connectivity &c = si.connectivity[v];
      label = label || (c.connectivityConstraintUsage != NUVO_CONNECTIVITY_NONE &&
                        c.varName != nullptr && std::strcmp(c.varName, names[i]) == 0);
    }
    for (int v = 0; v < simImage.nvar; ++v)
      simulated = simulated || std::strcmp(simImage.varName[v], names[i]) == 0;
    count += label && !simulated ? 1 : 0;
  }
  return count;
}

int mergeDataImages(const nuvo_simInput &si, nuvo_image *simImage, Counts *total,
                    nuvo_progressMonitor *pm, nuvo_progressCallback callback) {
  NUVO_FAIL_IF(si.ndataImage > 0 && si.dataImage == nullptr, kMemoryNotAllocated);
  for (int i = 0; i < si.ndataImage; ++i) {
    const nuvo_image &data = si.dataImage[i];
    NUVO_TRY(checkGridImage(&data, *simImage));
    int nIgnored = 0, nConflict = 0;
    NUVO_TRY(NUVOImageToImage(&data, simImage, 1, kConflictOverwrite, &nIgnored, &nConflict, 1));
    nIgnored -= labelVariables(si, *simImage, data.varName, data.nvar);
    // The first data image overrides the simulation image's own values silently.
    if (i == 0) nConflict = 0;
    total->ignoredVar += nIgnored;
    total->conflict += nConflict;
    NUVO_TRY(warnIf(nIgnored > 0, pm, callback, kWarningDataImageUnknownVariable));
    NUVO_TRY(warnIf(nConflict > 0, pm, callback, kWarningDataImageConflict));
    NUVO_TRY(checkStop(pm));
  }
  return 0;
}

int mergePointSets(const nuvo_simInput &si, nuvo_image *simImage, Counts *total,
                   nuvo_progressMonitor *pm, nuvo_progressCallback callback) {
  NUVO_FAIL_IF(si.ndataPointSet > 0 && si.dataPointSet == nullptr, kMemoryNotAllocated);
  for (int i = 0; i < si.ndataPointSet; ++i) {
    int nIgnored = 0, nOutside = 0, nConflict = 0;
    NUVO_TRY(NUVOPointSetToImage(&si.dataPointSet[i], simImage, 1, 1, kConflictOverwrite, &nIgnored,
                                 &nOutside, &nConflict));
    const nuvo_pointSet &points = si.dataPointSet[i];
    nIgnored -= labelVariables(si, *simImage, points.varName, points.nvar);
    total->ignoredVar += nIgnored;
    total->conflict += nConflict;
    NUVO_TRY(warnIf(nIgnored > 0, pm, callback, kWarningPointSetUnknownVariable));
    NUVO_TRY(warnIf(nOutside > 0, pm, callback, kWarningPointSetOutside));
    NUVO_TRY(warnIf(nConflict > 0, pm, callback, kWarningPointSetConflict));
    NUVO_TRY(checkStop(pm));
  }
  return 0;
}

// Empties every node that the mask leaves out of the simulation.
int applyMask(const nuvo_image &mask, nuvo_image *simImage, nuvo_progressMonitor *pm,
              nuvo_progressCallback callback) {
  NUVO_TRY(checkGridImage(&mask, *simImage));
  const auto keep = variableValues(&mask, 0);
  bool removed = false;
  for (int iv = 0; iv < simImage->nvar; ++iv) {
    const auto values = variableValues(simImage, iv);
    for (std::size_t k = 0; k < values.size(); ++k) {
      if (keep[k] != 0.0 || isMissing(values[k])) continue;
      values[k] = NUVO_MISSING_VALUE;
      removed = true;
    }
  }
  return warnIf(removed, pm, callback, kWarningDataRemovedByMask);
}

int integrateConditioningData(const nuvo_simInput &si, nuvo_image *simImage, Counts *total,
                              nuvo_progressMonitor *pm, nuvo_progressCallback callback) {
  NUVO_TRY(checkStop(pm));
  NUVO_TRY(mergeDataImages(si, simImage, total, pm, callback));
  NUVO_TRY(mergePointSets(si, simImage, total, pm, callback));
  if (!si.maskImageFlag) return 0;
  NUVO_FAIL_IF(si.maskImage == nullptr, kMemoryNotAllocated);
  return applyMask(*si.maskImage, simImage, pm, callback);
}

}  // namespace
}  // namespace nuvo

extern "C" {

int NUVOSimIntegrateConditioningData(const nuvo_simInput *si, nuvo_image *simImage,
                                     int *nIgnoredVar, int *nConflict, nuvo_progressMonitor *pm,
                                     nuvo_progressCallback callback) {
  NUVO_FAIL_IF(nIgnoredVar == nullptr || nConflict == nullptr, nuvo::kMemoryNotAllocated);
  nuvo::Counts total;
  const int rc = nuvo::integrateConditioningData(*si, simImage, &total, pm, callback);
  *nIgnoredVar = total.ignoredVar;
  *nConflict = total.conflict;
  return rc;
}

}  // extern "C"
