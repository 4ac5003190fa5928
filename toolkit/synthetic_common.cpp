#include <algorithm>
#include <cstring>

#include "toolkit/synthetic_common.hpp"

namespace nuvo::synthetic {

int makeSingleVariableImage(nuvo_image *image, int nx, int ny, int nz, const char *name,
                            double fill) {
  if (nx < 1 || ny < 1 || nz < 1) return kBadSize;
  const long long nxy = static_cast<long long>(nx) * ny;
  const long long nxyz = nxy * nz;
  if (nxyz > 2147483647LL) return kBadSize;
  NUVOFreeImage(image);
  if (int rc = NUVOMallocImage(image, static_cast<int>(nxyz), 1); rc != 0) return rc;
  *image->grid = nuvo_grid{
      nx, ny, nz, 1.0, 1.0, 1.0, 0.0, 0.0, 0.0, static_cast<int>(nxy), static_cast<int>(nxyz)};
  image->nvar = 1;
  image->nxyzv = static_cast<int>(nxyz);
  std::strncpy(image->varName[0], name, 127);
  std::fill_n(image->var, nxyz, fill);
  return 0;
}

}  // namespace nuvo::synthetic
