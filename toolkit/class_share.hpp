// The class of the indicator-style lag statistics (transiogram, connectivity
// functions) and the share of pairs they report.
#pragma once

#include "nuvo_image.h"

namespace nuvo {

// A node is in the class when its value is informed and not 0, so an indicator
// variable (1 inside, 0 outside) names its class directly.
inline bool inClass(double value) {
  return (value != 0.0) & (value != NUVO_MISSING_VALUE);
}

// part / whole, or the missing value when no pair qualifies.
inline double classShare(long long part, long long whole) {
  return whole > 0 ? static_cast<double>(part) / whole : NUVO_MISSING_VALUE;
}

}  // namespace nuvo
