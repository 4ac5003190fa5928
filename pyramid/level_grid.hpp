// The grid of a pyramid level: the same origin and extent as `in`, with n nodes
// along each axis, so the cell size along an axis becomes nIn · s / n.
#pragma once

#include <array>

#include "nuvo_grid.h"

namespace nuvo {

inline void setLevelGrid(const nuvo_grid &in, const std::array<int, 3> &n, nuvo_grid *out) {
  *out = in;
  out->nx = n[0];
  out->ny = n[1];
  out->nz = n[2];
  out->sx = in.nx * in.sx / n[0];
  out->sy = in.ny * in.sy / n[1];
  out->sz = in.nz * in.sz / n[2];
  out->nxy = n[0] * n[1];
  out->nxyz = out->nxy * n[2];
}

}  // namespace nuvo
