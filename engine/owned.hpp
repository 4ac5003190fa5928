// RAII holders for library records used inside the engine.
#pragma once

#include "nuvo_image.h"

namespace nuvo {

// An image released with NUVOFreeImage when the holder goes.
struct OwnedImage {
  OwnedImage() { NUVOInitImage(&image); }
  ~OwnedImage() { NUVOFreeImage(&image); }
  OwnedImage(const OwnedImage &) = delete;
  OwnedImage &operator=(const OwnedImage &) = delete;
  nuvo_image image;
};

// Allocates `image` (initialised or freed) on a copy of `grid` with nvar variables,
// every value missing. Returns 0, -1 or -3.
int allocateOnGrid(const nuvo_grid &grid, int nvar, nuvo_image *image);

}  // namespace nuvo
