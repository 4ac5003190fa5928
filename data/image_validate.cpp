// Validation of nuvo_image: grid, sizes, names, then every value.
#include <cmath>
#include <cstdint>

#include "data/values.hpp"
#include "nuvo_image.h"

namespace nuvo {
namespace {

int gridVerdict(const nuvo_grid &grid) {
  if (grid.nx < 1) return -611;
  if (grid.ny < 1) return -612;
  if (grid.nz < 1) return -613;
  if (grid.sx < 1e-15) return -614;
  if (grid.sy < 1e-15) return -615;
  if (grid.sz < 1e-15) return -616;
  int nxyz = 0;
  if (!productFitsInInt({grid.nx, grid.ny, grid.nz}, &nxyz)) return -620;
  return 0;
}

int sizeVerdict(const nuvo_image &image) {
  if (image.nvar < 1) return -621;
  if (image.nvar > 100) return -622;
  if (image.nxyzv <= 0) return -625;
  int nxyzv = 0;
  if (!productFitsInInt({image.grid->nxyz, image.nvar}, &nxyzv)) return -626;
  return 0;
}

int nameVerdict(const nuvo_image &image, int nameSuffixLength) {
  for (int iv = 0; iv < image.nvar; ++iv)
    if (static_cast<std::int64_t>(nameLength(image.varName[iv])) + nameSuffixLength >= kNameSlot)
      return -623;
  return hasDuplicateName(image.varName, image.nvar) ? -624 : 0;
}

int valueVerdict(const nuvo_image &image) {
  for (int i = 0; i < image.nxyzv; ++i) {
    if (std::isnan(image.var[i])) return -627;
    if (std::isinf(image.var[i])) return -628;
  }
  return 0;
}

int imageVerdict(const nuvo_image &image, int nameSuffixLength) {
  if (image.grid == nullptr) return kNotAllocated;
  NUVO_TRY(gridVerdict(*image.grid));
  NUVO_TRY(sizeVerdict(image));
  if (image.varName == nullptr || image.var == nullptr) return kNotAllocated;
  NUVO_TRY(nameVerdict(image, nameSuffixLength));
  return valueVerdict(image);
}

}  // namespace
}  // namespace nuvo

extern "C" {

int NUVOValidateImage(const nuvo_image *image, int nameSuffixLength, int *verdict) {
  *verdict = nuvo::imageVerdict(*image, nameSuffixLength);
  return 0;
}

}  // extern "C"
