// Life cycle, comparison, node numbering and validation of nuvo_grid.
#include <cstdint>

#include "data/values.hpp"
#include "nuvo_grid.h"

namespace nuvo {
namespace {

// -1, 0 or 1 as a is smaller than, equal to or larger than b (exact comparison).
template <typename T>
int order(T a, T b) {
  return (a < b) ? -1 : (b < a ? 1 : 0);
}

}  // namespace
}  // namespace nuvo

extern "C" {

void NUVOInitGrid(nuvo_grid *grid) {
  *grid = nuvo_grid{};
}

int NUVOCopyGrid(const nuvo_grid *src, nuvo_grid *dst) {
  *dst = *src;
  return 0;
}

int NUVOValidateGrid(const nuvo_grid *grid, int *verdict) {
  int nxyz = 0;
  *verdict = grid->nx < 1                                                     ? -601
             : grid->ny < 1                                                   ? -602
             : grid->nz < 1                                                   ? -603
             : grid->sx < 1e-15                                               ? -604
             : grid->sy < 1e-15                                               ? -605
             : grid->sz < 1e-15                                               ? -606
             : !nuvo::productFitsInInt({grid->nx, grid->ny, grid->nz}, &nxyz) ? -610
                                                                              : 0;
  return 0;
}

int NUVOCmpGrid(const nuvo_grid *a, const nuvo_grid *b) {
  if (a == b) return 0;
  const int fieldOrder[] = {
      nuvo::order(a->nx, b->nx),   nuvo::order(a->ny, b->ny),    nuvo::order(a->nz, b->nz),
      nuvo::order(a->sx, b->sx),   nuvo::order(a->sy, b->sy),    nuvo::order(a->sz, b->sz),
      nuvo::order(a->ox, b->ox),   nuvo::order(a->oy, b->oy),    nuvo::order(a->oz, b->oz),
      nuvo::order(a->nxy, b->nxy), nuvo::order(a->nxyz, b->nxyz)};
  for (int k = 0; k < 11; ++k)
    if (fieldOrder[k] != 0) return fieldOrder[k] * (k + 1);
  return 0;
}

int NUVOGridCoordToId(const nuvo_grid *grid, int ix, int iy, int iz, int iv, int *id) {
  // Computed in 64 bits so that unchecked indices cannot overflow; a valid node of
  // a valid image always fits.
  *id = static_cast<int>(ix + std::int64_t{grid->nx} * iy + std::int64_t{grid->nxy} * iz +
                         std::int64_t{grid->nxyz} * iv);
  return 0;
}

int NUVOGridIdToCoord(const nuvo_grid *grid, int id, int *ix, int *iy, int *iz, int *iv) {
  *iv = id / grid->nxyz;
  *iz = (id % grid->nxyz) / grid->nxy;
  *iy = (id % grid->nxy) / grid->nx;
  *ix = (id % grid->nxy) % grid->nx;
  return 0;
}

}  // extern "C"
