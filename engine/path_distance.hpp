// Distances of path entries to the conditioning data, for the distance-guided paths.
#pragma once

#include <vector>

#include "engine/path_grid.hpp"
#include "nuvo_random.h"

namespace nuvo {

// Path entries are v*nxyz + k (one by one) or node indices k (vector).
enum class EntryForm { kOneByOne, kVector };

struct PathEntries {
  EntryForm form;
  int n;
  const int *entries;
  const signed char *simFlag;  // nvar*nxyz flags, 0 for an informed entry
};

// Euclidean distance of each entry to the nearest conditioning node, combined over
// the variables in the one-by-one form. When nothing is informed, one entry drawn
// from ctx stands in as the only conditioning node. The maps are computed on
// nthread threads (the same distances for any number). Returns 0 or an error code.
int nearestDatumDistances(const PathGrid &g, const PathEntries &e, nuvo_randContext *ctx,
                          std::vector<double> *distance, int nthread);

// Power mean (exponent p) of the Euclidean distances of each entry to all the
// conditioning nodes, combined over the variables in the one-by-one form, the
// nodes shared among nthread threads. *found is false, and distance untouched,
// when there is no conditioning node.
int summedDistances(const PathGrid &g, const PathEntries &e, double p,
                    std::vector<double> *distance, bool *found, int nthread);

}  // namespace nuvo
