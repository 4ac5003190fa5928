// Conditioning data with the labels of the connectivity constraints: the data are
// merged as without constraint, then the labels of every constrained variable are
// put on the grid, cleared where the mask leaves nodes out, and checked against
// the merged values by building the groups.
#include <algorithm>

#include "constraints/connectivity_groups.hpp"
#include "constraints/connectivity_paths.hpp"
#include "data/values.hpp"
#include "engine/conditioning.hpp"
#include "engine/warnings.hpp"
#include "nuvo_conditioning.h"

namespace nuvo {
namespace {

constexpr int kWarningLabelRemovedByMask = 46;
constexpr int kWarningNoLabel = 55;

bool constrained(const nuvo_simInput &si, int v) {
  return si.connectivity != nullptr &&
         si.connectivity[v].connectivityConstraintUsage != NUVO_CONNECTIVITY_NONE;
}

// The labels of variable v from every data image then every data point set.
int gatherLabels(const nuvo_simInput &si, const nuvo_grid &grid, int v, int *label, int *nlabel) {
  const char *name = si.connectivity[v].varName;
  NUVO_FAIL_IF(name == nullptr, kMemoryNotAllocated);
  for (int i = 0; i < si.ndataImage; ++i)
    NUVO_TRY(NUVOImageToImageWithConnectivityLabel(&si.dataImage[i], name, &grid, label, nlabel));
  for (int i = 0; i < si.ndataPointSet; ++i)
    NUVO_TRY(
        NUVOPointSetToImageWithConnectivityLabel(&si.dataPointSet[i], name, &grid, label, nlabel));
  return 0;
}

int integrateLabels(const nuvo_simInput &si, const nuvo_image &simImage, int *label,
                    nuvo_progressMonitor *pm, nuvo_progressCallback callback) {
  const nuvo_grid &grid = *simImage.grid;
  const std::size_t nxyz = static_cast<std::size_t>(grid.nxyz);
  std::fill_n(label, nxyz * si.nvar, 0);
  bool removed = false;
  for (int v = 0; v < si.nvar; ++v) {
    if (!constrained(si, v)) continue;
    int *own = label + v * nxyz;
    int nlabel = 0;
    NUVO_TRY(gatherLabels(si, grid, v, own, &nlabel));
    if (si.maskImageFlag && si.maskImage != nullptr) {
      const auto keep = variableValues(si.maskImage, 0);
      for (std::size_t k = 0; k < nxyz; ++k) {
        if (keep[k] != 0.0 || own[k] == 0) continue;
        own[k] = 0;
        removed = true;
      }
    }
    const bool any = std::any_of(own, own + nxyz, [](int l) { return l != 0; });
    NUVO_TRY(warnIf(!any, pm, callback, kWarningNoLabel));
    std::vector<ConnectedGroup> groups;
    NUVO_TRY(buildGroups(std::span<const int>(own, nxyz), variableValues(&simImage, v),
                         *si.connectivity[v].classOfValues, &groups));
  }
  return warnIf(removed, pm, callback, kWarningLabelRemovedByMask);
}

}  // namespace

int integrateConditioning(const nuvo_simInput &si, nuvo_image *image, std::vector<int> *label,
                          nuvo_progressMonitor *pm, nuvo_progressCallback callback) {
  int nIgnoredVar = 0, nConflict = 0;
  label->clear();
  if (!ConnectivityPaths::requested(si))
    return NUVOSimIntegrateConditioningData(&si, image, &nIgnoredVar, &nConflict, pm, callback);
  label->resize(static_cast<std::size_t>(image->grid->nxyz) * si.nvar);
  return NUVOSimIntegrateConditioningDataWithConnectivity(&si, image, label->data(), &nIgnoredVar,
                                                          &nConflict, pm, callback);
}

}  // namespace nuvo

extern "C" int NUVOSimIntegrateConditioningDataWithConnectivity(const nuvo_simInput *si,
                                                                nuvo_image *simImage, int *label,
                                                                int *nIgnoredVar, int *nConflict,
                                                                nuvo_progressMonitor *pm,
                                                                nuvo_progressCallback callback) {
  NUVO_FAIL_IF(label == nullptr, nuvo::kMemoryNotAllocated);
  NUVO_TRY(NUVOSimIntegrateConditioningData(si, simImage, nIgnoredVar, nConflict, pm, callback));
  return nuvo::guardedCall(
      [&] { return nuvo::integrateLabels(*si, *simImage, label, pm, callback); });
}
