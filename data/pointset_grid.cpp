// Points and grid nodes: locating points on a grid, writing a point set into an
// image and turning the informed nodes of an image into a point set.
#include <algorithm>
#include <cstring>
#include <vector>

#include "data/values.hpp"
#include "nuvo_pointset.h"

namespace nuvo {
namespace {

bool insideAxis(double c, double origin, double step, int n) {
  return origin <= c && c <= origin + n * step;
}

// Node along one axis of a coordinate inside the grid: the nearest node centre,
// a tie going to the centre nearer the origin; a coordinate on the upper boundary
// falls in the last node.
int nodeAlong(double c, double origin, double step, int n) {
  const double t = (c - (origin + step / 2)) / step;
  int k = static_cast<int>(t);
  const double f = t - k;
  if (f > 0.5)
    ++k;
  else if (f < -0.5)
    --k;
  return std::clamp(k, 0, n - 1);
}

// The node of point k, false when the point lies outside the grid.
bool pointNode(const nuvo_pointSet &ps, const nuvo_grid &g, int k, int *ix, int *iy, int *iz) {
  if (!insideAxis(ps.x[k], g.ox, g.sx, g.nx) || !insideAxis(ps.y[k], g.oy, g.sy, g.ny) ||
      !insideAxis(ps.z[k], g.oz, g.sz, g.nz))
    return false;
  *ix = nodeAlong(ps.x[k], g.ox, g.sx, g.nx);
  *iy = nodeAlong(ps.y[k], g.oy, g.sy, g.ny);
  *iz = nodeAlong(ps.z[k], g.oz, g.sz, g.nz);
  return true;
}

// Calls place(k, ix, iy, iz) with the node of every point k; a point outside the
// grid returns -161, or with ignoreOutside gets -1 for all three.
template <typename Place>
int locatePoints(const nuvo_pointSet &ps, const nuvo_grid &g, int ignoreOutside, Place place) {
  for (int k = 0; k < ps.npoint; ++k) {
    int ix = -1, iy = -1, iz = -1;
    if (!pointNode(ps, g, k, &ix, &iy, &iz)) NUVO_FAIL_IF(!ignoreOutside, -161);
    place(k, ix, iy, iz);
  }
  return 0;
}

int writeVariable(const nuvo_pointSet &ps, int iv, const std::vector<int> &index,
                  std::span<double> target, int conflictMode, int &nConflict) {
  for (int k = 0; k < ps.npoint; ++k) {
    const double datum = ps.val[std::size_t(iv) * ps.npoint + k];
    if (index[k] < 0 || isMissing(datum)) continue;
    NUVO_TRY(placeDatum(target[index[k]], datum, conflictMode, nConflict, -162));
  }
  return 0;
}

int pointSetToImage(const nuvo_pointSet &ps, nuvo_image *image, int ignoreUnknownVar,
                    int ignoreOutside, int conflictMode, int &nIgnoredVar, int &nOutside,
                    int &nConflict) {
  std::vector<int> index(ps.npoint);
  NUVO_TRY(NUVOGetIndexInGridForPointSet(&ps, image->grid, index.data(), ignoreOutside));
  nOutside = static_cast<int>(std::count(index.begin(), index.end(), -1));
  for (int iv = 0; iv < ps.nvar; ++iv) {
    const int target = findName(image->varName, image->nvar, ps.varName[iv]);
    if (target < 0) {
      NUVO_FAIL_IF(!ignoreUnknownVar, -160);
      ++nIgnoredVar;
      continue;
    }
    NUVO_TRY(writeVariable(ps, iv, index, variableValues(image, target), conflictMode, nConflict));
  }
  return 0;
}

// The variables with at least one informed value, and the nodes where at least one
// variable is informed.
void informedParts(const nuvo_image &image, std::vector<int> *vars, std::vector<int> *nodes) {
  std::vector<char> nodeInformed(image.grid->nxyz, 0);
  for (int iv = 0; iv < image.nvar; ++iv) {
    const auto values = variableValues(&image, iv);
    bool any = false;
    for (std::size_t i = 0; i < values.size(); ++i) {
      if (isMissing(values[i])) continue;
      nodeInformed[i] = 1;
      any = true;
    }
    if (any) vars->push_back(iv);
  }
  for (int i = 0; i < image.grid->nxyz; ++i)
    if (nodeInformed[i]) nodes->push_back(i);
}

int imageToPointSet(const nuvo_image &image, nuvo_pointSet *ps) {
  std::vector<int> vars, nodes;
  informedParts(image, &vars, &nodes);
  NUVO_FAIL_IF(nodes.empty(), -165);
  const int npoint = static_cast<int>(nodes.size());
  NUVO_TRY(NUVOMallocPointSet(ps, npoint, static_cast<int>(vars.size())));
  const nuvo_grid &g = *image.grid;
  for (int k = 0; k < npoint; ++k) {
    int ix = 0, iy = 0, iz = 0, iv = 0;
    NUVOGridIdToCoord(&g, nodes[k], &ix, &iy, &iz, &iv);
    ps->x[k] = g.ox + (ix + 0.5) * g.sx;
    ps->y[k] = g.oy + (iy + 0.5) * g.sy;
    ps->z[k] = g.oz + (iz + 0.5) * g.sz;
  }
  for (std::size_t j = 0; j < vars.size(); ++j) {
    std::memcpy(ps->varName[j], image.varName[vars[j]], kNameSlot);
    const auto values = variableValues(&image, vars[j]);
    for (int k = 0; k < npoint; ++k) ps->val[j * npoint + k] = values[nodes[k]];
  }
  return 0;
}

}  // namespace
}  // namespace nuvo

extern "C" {

int NUVOGetXYZIndexInGridForPointSet(const nuvo_pointSet *ps, const nuvo_grid *grid, int *ix,
                                     int *iy, int *iz, int ignoreOutside) {
  return nuvo::locatePoints(*ps, *grid, ignoreOutside, [&](int k, int jx, int jy, int jz) {
    ix[k] = jx;
    iy[k] = jy;
    iz[k] = jz;
  });
}

int NUVOGetIndexInGridForPointSet(const nuvo_pointSet *ps, const nuvo_grid *grid, int *index,
                                  int ignoreOutside) {
  return nuvo::locatePoints(*ps, *grid, ignoreOutside, [&](int k, int jx, int jy, int jz) {
    index[k] = jx < 0 ? -1 : jx + grid->nx * jy + grid->nxy * jz;
  });
}

int NUVOPointSetToImage(const nuvo_pointSet *ps, nuvo_image *image, int ignoreUnknownVar,
                        int ignoreOutside, int conflictMode, int *nIgnoredVar, int *nOutside,
                        int *nConflict) {
  NUVO_FAIL_IF(nIgnoredVar == nullptr || nOutside == nullptr || nConflict == nullptr,
               nuvo::kNotAllocated);
  *nIgnoredVar = *nOutside = *nConflict = 0;
  NUVO_FAIL_IF(ps->nvar < 1, -3);
  return nuvo::guardedCall([&] {
    return nuvo::pointSetToImage(*ps, image, ignoreUnknownVar, ignoreOutside, conflictMode,
                                 *nIgnoredVar, *nOutside, *nConflict);
  });
}

int NUVOImageToPointSet(const nuvo_image *image, nuvo_pointSet *ps) {
  return nuvo::guardedCall([&] { return nuvo::imageToPointSet(*image, ps); });
}

}  // extern "C"
