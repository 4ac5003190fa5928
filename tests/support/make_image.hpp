// An image filled in memory from a function of the node and the variable, for the
// tests and the benchmarks.
#pragma once

#include <cstring>
#include <string>
#include <vector>

#include "nuvo_image.h"

namespace nuvo_test {

// Fills an initialised image with an nx x ny x nz grid of unit cells at the origin
// and one variable per name, the value of variable iv at node (ix, iy, iz) being
// value(ix, iy, iz, iv). Returns the allocation's code.
template <typename Value>
int makeImage(nuvo_image *image, int nx, int ny, int nz, const std::vector<std::string> &names,
              Value value) {
  const int nvar = static_cast<int>(names.size());
  if (const int rc = NUVOMallocImage(image, nx * ny * nz, nvar); rc != 0) return rc;
  *image->grid = nuvo_grid{nx, ny, nz, 1.0, 1.0, 1.0, 0.0, 0.0, 0.0, nx * ny, nx * ny * nz};
  const nuvo_grid &g = *image->grid;
  image->nvar = nvar;
  image->nxyzv = g.nxyz * nvar;
  for (int iv = 0; iv < nvar; ++iv) std::strcpy(image->varName[iv], names[iv].c_str());
  for (int iv = 0; iv < nvar; ++iv)
    for (int iz = 0; iz < nz; ++iz)
      for (int iy = 0; iy < ny; ++iy)
        for (int ix = 0; ix < nx; ++ix)
          image->var[iv * g.nxyz + iz * g.nxy + iy * nx + ix] = value(ix, iy, iz, iv);
  return 0;
}

}  // namespace nuvo_test
