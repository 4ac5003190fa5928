// Geobodies: the connected components of the nodes of a class.
#pragma once

#include <vector>

#include "nuvo_image.h"
#include "toolkit/class_share.hpp"

namespace nuvo {

// Labels the geobodies of the nodes of `v` (one value per node of `g`) that are
// in the class: two such nodes are neighbours when they share a face
// (connectivity 0, 6 neighbours), a face or an edge (1, 18 neighbours), or a
// face, an edge or a corner (2, 26 neighbours). Returns one label per node: 0
// outside the class, else 1, 2, ... numbered in the order of the bodies' first
// nodes. Each node is visited once and each of its neighbours looked at once, so
// the cost is linear in the number of nodes. Throws std::bad_alloc.
std::vector<int> labelGeobodies(const nuvo_grid &g, const double *v, int connectivity);

}  // namespace nuvo
