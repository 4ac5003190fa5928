// Life cycle of nuvo_grid.
#include "nuvo_grid.h"

extern "C" {

void NUVOInitGrid(nuvo_grid *grid) { *grid = nuvo_grid{}; }

int NUVOCopyGrid(const nuvo_grid *src, nuvo_grid *dst) {
  *dst = *src;
  return 0;
}

}  // extern "C"
