#include "data/image_layout.hpp"

#include <cassert>
#include <climits>
#include <cstring>

namespace nuvo {

bool setNodeCounts(nuvo_grid &grid, int nx, int ny, int nz) {
  if (nx < 1 || ny < 1 || nz < 1) return false;
  const long long nxy = static_cast<long long>(nx) * ny;
  if (nxy > INT_MAX || nxy * nz > INT_MAX) return false;
  grid.nx = nx;
  grid.ny = ny;
  grid.nz = nz;
  grid.nxy = static_cast<int>(nxy);
  grid.nxyz = static_cast<int>(nxy * nz);
  return true;
}

bool fitsVariables(const nuvo_grid &grid, int nvar) {
  return nvar >= 1 && static_cast<long long>(grid.nxyz) * nvar <= INT_MAX;
}

int allocateImage(const ImageLayout &layout, nuvo_image *image) {
  assert(layout.names.size() == static_cast<std::size_t>(layout.nvar));
  if (int rc = NUVOMallocImage(image, layout.grid.nxyz, layout.nvar); rc != 0) return rc;
  *image->grid = layout.grid;
  image->nvar = layout.nvar;
  image->nxyzv = layout.grid.nxyz * layout.nvar;
  for (int iv = 0; iv < layout.nvar; ++iv) {
    const std::string &name = layout.names[static_cast<std::size_t>(iv)];
    std::memcpy(image->varName[iv], name.c_str(), name.size() + 1);
  }
  return 0;
}

}  // namespace nuvo
