// Quantiles of sorted values, shared by the summaries of `nuvosim analyze`.
#pragma once

#include <cstddef>
#include <vector>

namespace nuvo::runfile {

// Quantile q (0 to 1) of non-empty ascending values, interpolated linearly between
// the two nearest ranks.
inline double quantile(const std::vector<double> &sorted, double q) {
  const double position = q * static_cast<double>(sorted.size() - 1);
  const std::size_t below = static_cast<std::size_t>(position);
  if (below + 1 >= sorted.size()) return sorted.back();
  const double t = position - static_cast<double>(below);
  return sorted[below] + t * (sorted[below + 1] - sorted[below]);
}

}  // namespace nuvo::runfile
