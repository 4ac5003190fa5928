#include "engine/owned.hpp"

#include <algorithm>

namespace nuvo {

int allocateOnGrid(const nuvo_grid &grid, int nvar, nuvo_image *image) {
  if (int rc = NUVOMallocImage(image, grid.nxyz, nvar); rc != 0) return rc;
  *image->grid = grid;
  image->nvar = nvar;
  image->nxyzv = grid.nxyz * nvar;
  std::fill_n(image->var, image->nxyzv, NUVO_MISSING_VALUE);
  return 0;
}

}  // namespace nuvo
