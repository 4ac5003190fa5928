// The Euclidean distance map on a given number of threads (the same map for any
// number), for the multithreaded family.
#pragma once

#include "nuvo_grid.h"

namespace nuvo {

// As NUVOEuclideanDistanceMap, on nthread >= 1 threads.
int euclideanDistanceMap(const nuvo_grid &grid, const signed char *informed, double *distance,
                         int nthread);

}  // namespace nuvo
