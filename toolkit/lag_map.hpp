// The frame shared by the lag-map functions: checks of the variable and of the box
// of lags, the map image laid out over that box, the loop over its lags with the
// progress lines. Each function only says what value a lag gets.
#pragma once

#include <functional>

#include "nuvo_image.h"

namespace nuvo {

// Lags along one axis, in nodes: min to max by step.
struct LagRange {
  int min, max, step;
};

// The value of the map at lag (hx, hy, hz), missing when the lag has no pair.
using LagValue = std::function<double(int hx, int hy, int hz)>;

// Builds the statistic of one variable (its values `v`, one per node of `g`) once
// the arguments are known to be valid: whatever it needs of the whole image
// (a mean, the geobodies) is computed here, once for all lags.
using LagStatistic = std::function<LagValue(const nuvo_grid &g, const double *v)>;

// Fills `map` (initialised, empty) with the statistic at every lag of the box
// x by y by z, z slowest; its variable is named after variable iv plus `suffix`.
// Returns 0, -1100 (iv out of range), -2011 (invalid lags) or -1 / -3 when an
// allocation fails.
int buildLagMap(const nuvo_image &image, nuvo_image *map, int iv, LagRange x, LagRange y,
                LagRange z, signed char progressFlag, const char *suffix,
                const LagStatistic &statistic);

}  // namespace nuvo
