// Integration of a data image into an image of the same node counts, variable by
// variable, matched by name.
#include <algorithm>
#include <cstdlib>

#include "data/values.hpp"
#include "nuvo_image.h"

namespace nuvo {
namespace {

// Writes the informed values of `from` onto `to` under the conflict mode.
int mergeValues(std::span<const double> from, std::span<double> to, int conflictMode,
                int &nConflict) {
  for (std::size_t i = 0; i < from.size(); ++i)
    if (!isMissing(from[i])) NUVO_TRY(placeDatum(to[i], from[i], conflictMode, nConflict, -152));
  return 0;
}

}  // namespace
}  // namespace nuvo

extern "C" {

int NUVOImageToImage(const nuvo_image *src, nuvo_image *dst, int ignoreUnknownVar, int conflictMode,
                     int *nIgnoredVar, int *nConflict, int merge) {
  NUVO_FAIL_IF(nIgnoredVar == nullptr || nConflict == nullptr, nuvo::kNotAllocated);
  *nIgnoredVar = 0;
  *nConflict = 0;
  const int gridOrder = NUVOCmpGrid(src->grid, dst->grid);
  NUVO_FAIL_IF(gridOrder != 0 && std::abs(gridOrder) < 4, -150);
  for (int iv = 0; iv < src->nvar; ++iv) {
    const int target = nuvo::findName(dst->varName, dst->nvar, src->varName[iv]);
    if (target < 0) {
      NUVO_FAIL_IF(!ignoreUnknownVar, -151);
      ++*nIgnoredVar;
      continue;
    }
    const auto from = nuvo::variableValues(src, iv);
    const auto to = nuvo::variableValues(dst, target);
    if (merge)
      NUVO_TRY(nuvo::mergeValues(from, to, conflictMode, *nConflict));
    else
      std::copy(from.begin(), from.end(), to.begin());
  }
  return 0;
}

}  // extern "C"
