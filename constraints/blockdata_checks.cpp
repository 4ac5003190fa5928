#include "constraints/blockdata_checks.hpp"

#include <cmath>
#include <vector>

#include "data/values.hpp"
#include "foundation/check.hpp"
#include "nuvo_grid.h"

namespace nuvo {
namespace {

// -(first) when i < 0, -(first + 1) when i >= n.
int indexVerdict(int i, int n, int first) {
  if (i < 0) return -first;
  return i >= n ? -(first + 1) : 0;
}

// `stamp[node]` holds the last block that listed the node.
int checkBlock(const nuvo_blockData &bd, int b, const nuvo_grid &g, const double *mask,
               std::vector<int> &stamp) {
  for (int i = 0; i < bd.nnode[b]; ++i) {
    const int x = bd.ix[b][i], y = bd.iy[b][i], z = bd.iz[b][i];
    NUVO_TRY(indexVerdict(x, g.nx, 3061));
    NUVO_TRY(indexVerdict(y, g.ny, 3063));
    NUVO_TRY(indexVerdict(z, g.nz, 3065));
    const int node = x + g.nx * y + g.nxy * z;
    NUVO_FAIL_IF(mask != nullptr && mask[node] == 0.0, -3067);
    NUVO_FAIL_IF(stamp[node] == b, -3068);
    stamp[node] = b;
  }
  NUVO_FAIL_IF(isMissing(bd.value[b]) || !std::isfinite(bd.value[b]), -3071);
  return 0;
}

}  // namespace

int checkBlockDataWithInput(const nuvo_simInput &si) {
  if (si.blockData == nullptr) return 0;
  const nuvo_grid &g = *si.simImage->grid;
  // A mask on another grid is refused when the conditioning is merged.
  const nuvo_image *m = si.maskImageFlag ? si.maskImage : nullptr;
  const double *mask =
      m != nullptr && m->grid != nullptr && NUVOCmpGrid(m->grid, &g) == 0 ? m->var : nullptr;
  for (int v = 0; v < si.nvar; ++v) {
    const nuvo_blockData &bd = si.blockData[v];
    if (bd.blockDataUsage == NUVO_BLOCK_DATA_NONE) continue;
    std::vector<int> stamp(static_cast<std::size_t>(g.nxyz), -1);
    for (int b = 0; b < bd.nblock; ++b) NUVO_TRY(checkBlock(bd, b, g, mask, stamp));
    NUVO_FAIL_IF(si.normalizingType != NORMALIZING_LINEAR, -3055);
  }
  return 0;
}

}  // namespace nuvo
