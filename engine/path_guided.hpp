// The distance-guided paths behind the NUVOPath... functions and their
// multithreaded twins.
#pragma once

#include "engine/path_distance.hpp"

namespace nuvo {

enum class Metric { kNearest, kSummed };
enum class Order { kPdf, kSort };

struct Guide {
  Metric metric;
  Order order;
  double s, p;
};

// Orders the n entries in place as `guide` says, the distances computed on
// nthread threads; the random draws, and so the path, do not depend on nthread.
int guided(const PathGrid &g, EntryForm form, int n, int *entries, const signed char *simFlag,
           const Guide &guide, nuvo_randContext *ctx, int nthread);

}  // namespace nuvo
