// Cropping and padding of an image to a window of nodes and variables.
#include <cstdint>
#include <cstdio>
#include <cstring>

#include "data/values.hpp"
#include "nuvo_image.h"

namespace nuvo {
namespace {

// One axis of the window: its first source index and its length.
struct Span {
  int first;
  int count;
};

// The window [lo, hi] along one axis, or `emptyCode` when hi < lo; the length is
// checked by the caller once all axes are known.
int windowAlong(int lo, int hi, int emptyCode, std::int64_t *count) {
  NUVO_FAIL_IF(hi < lo, emptyCode);
  *count = std::int64_t{hi} - lo + 1;
  return 0;
}

void setWindowGrid(const nuvo_grid &src, Span x, Span y, Span z, nuvo_grid *dst) {
  dst->nx = x.count;
  dst->ny = y.count;
  dst->nz = z.count;
  dst->sx = src.sx;
  dst->sy = src.sy;
  dst->sz = src.sz;
  dst->ox = src.ox + x.first * src.sx;
  dst->oy = src.oy + y.first * src.sy;
  dst->oz = src.oz + z.first * src.sz;
  dst->nxy = x.count * y.count;
  dst->nxyz = dst->nxy * z.count;
}

bool inside(int i, int n) {
  return i >= 0 && i < n;
}

// Copies source variable `iv` (all-missing when it does not exist) into the window
// values `out`, node by node in the window's order.
void copyWindow(const nuvo_image &src, int iv, Span x, Span y, Span z, double *out) {
  const nuvo_grid &g = *src.grid;
  const bool exists = validVariable(&src, iv);
  std::size_t k = 0;
  for (int dz = 0; dz < z.count; ++dz)
    for (int dy = 0; dy < y.count; ++dy)
      for (int dx = 0; dx < x.count; ++dx) {
        const int ix = x.first + dx, iy = y.first + dy, iz = z.first + dz;
        const bool in = exists && inside(ix, g.nx) && inside(iy, g.ny) && inside(iz, g.nz);
        out[k++] =
            in ? variableValues(&src, iv)[ix + std::size_t(g.nx) * iy + std::size_t(g.nxy) * iz]
               : NUVO_MISSING_VALUE;
      }
}

}  // namespace
}  // namespace nuvo

extern "C" {

int NUVOResizeImage(const nuvo_image *src, nuvo_image *dst, int ix0, int ix1, int iy0, int iy1,
                    int iz0, int iz1, int iv0, int iv1) {
  std::int64_t nx = 0, ny = 0, nz = 0, nvar = 0;
  NUVO_TRY(nuvo::windowAlong(ix0, ix1, -2001, &nx));
  NUVO_TRY(nuvo::windowAlong(iy0, iy1, -2002, &ny));
  NUVO_TRY(nuvo::windowAlong(iz0, iz1, -2003, &nz));
  NUVO_TRY(nuvo::windowAlong(iv0, iv1, -2004, &nvar));
  int nxyz = 0, nxyzv = 0;
  NUVO_FAIL_IF(!nuvo::productFitsInInt({nx, ny, nz}, &nxyz), -620);
  NUVO_FAIL_IF(!nuvo::productFitsInInt({nxyz, nvar}, &nxyzv), -626);
  const nuvo::Span x{ix0, int(nx)}, y{iy0, int(ny)}, z{iz0, int(nz)};

  NUVO_TRY(NUVOMallocImage(dst, nxyz, int(nvar)));
  nuvo::setWindowGrid(*src->grid, x, y, z, dst->grid);
  dst->nvar = int(nvar);
  dst->nxyzv = nxyzv;
  for (int j = 0; j < dst->nvar; ++j) {
    const int iv = iv0 + j;
    if (nuvo::validVariable(src, iv))
      std::memcpy(dst->varName[j], src->varName[iv], nuvo::kNameSlot);
    else
      std::snprintf(dst->varName[j], nuvo::kNameSlot, "var%02d", j);
    nuvo::copyWindow(*src, iv, x, y, z, nuvo::variableValues(dst, j).data());
  }
  return 0;
}

}  // extern "C"
