// What an image file header tells before the values: geometry, variable count and
// names. The readers fill a layout first and allocate the image only once the
// header is complete and its sizes are sane.
#pragma once

#include <string>
#include <vector>

#include "nuvo_image.h"

namespace nuvo {

struct ImageLayout {
  nuvo_grid grid{};
  int nvar = 0;
  std::vector<std::string> names;  // nvar names of at most 127 characters
};

// Sets nx, ny, nz, nxy and nxyz. False, leaving the grid untouched, unless every
// count is at least 1 and their product fits in an int.
bool setNodeCounts(nuvo_grid &grid, int nx, int ny, int nz);

// True when nvar is at least 1 and nxyz * nvar fits in an int.
bool fitsVariables(const nuvo_grid &grid, int nvar);

// Allocates `image` (initialised) for the layout and fills its grid, nvar, nxyzv
// and names; the values are left to the reader. Returns 0 or -1.
int allocateImage(const ImageLayout &layout, nuvo_image *image);

}  // namespace nuvo
