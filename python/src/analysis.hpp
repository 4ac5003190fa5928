// The statistics of realizations beside those of their training image, as
// `nuvosim analyze` measures them, for numpy arrays.
#pragma once

#include <pybind11/pybind11.h>

#include <vector>

#include "image_arrays.hpp"

namespace nuvo::python {

// Analyses variable `variable` of the training image `ti` (nvar, nz, ny, nx) and
// of each array of `realizations` (same shape), up to lag `lags` along each axis.
// Returns (categorical, rows, divergence): rows of (statistic, category, lag, ti,
// mean, p05, p95), lag 0 where the statistic has none and NaN where undefined;
// the pattern divergence in bits (NaN for a continuous variable). Throws
// LibraryError or std::invalid_argument.
py::tuple analyze(const Values &ti, const std::vector<Values> &realizations, int variable,
                  int lags);

}  // namespace nuvo::python
