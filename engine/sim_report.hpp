// The parameter details a simulation writes to its report before the realizations.
#pragma once

#include <cstdio>

#include "constraints/connectivity_paths.hpp"
#include "engine/prepared_data.hpp"
#include "nuvo_siminput.h"
#include "nuvo_simneighborhoods.h"

namespace nuvo {

// Entry counts of the path template, in the one-by-one and the vector form.
struct PathCounts {
  int notSimulated = 0, simulated = 0;
  int vectorNotSimulated = 0, vectorSimulated = 0;
};

void writeParameterDetails(FILE *report, const nuvo_simInput &si,
                           const nuvo_simSearchNeighborhoods &nb, const PreparedData &prepared,
                           const PathCounts &counts, const ConnectivityPaths &connectivity);

}  // namespace nuvo
