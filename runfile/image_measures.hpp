// The statistics that `nuvosim analyze` measures on one image: for a categorical
// variable the proportion, the share of isolated nodes (no face neighbour of the
// same category), the indicator variograms and the connectivity function of each
// category along x, y and z; for a continuous one a summary of its values
// and its variograms along the axes.
#pragma once

#include <string>
#include <vector>

#include "nuvo_image.h"

namespace nuvo::runfile {

// One measured value. `lag` is 0 for the statistics that have none; `value` is
// NaN where the statistic is undefined (no pair of nodes at that lag).
struct Measure {
  std::string statistic;
  std::string category;  // empty for a continuous variable
  int lag;
  double value;
};

// What to measure, the same for the training image and every realization.
struct MeasurePlan {
  std::vector<double> categories;  // empty for a continuous variable
  int maxLag;                      // along each axis, at most the grid size - 1
};

// The categories of variable iv when it is categorical: at most kMaxCategories
// distinct informed values, all of them whole numbers. Else an empty list.
// Returns 0 or a library code.
inline constexpr int kMaxCategories = 20;
int findCategories(const nuvo_image &image, int iv, std::vector<double> *categories);

// Appends the measures of variable iv of `image` to `out`. Returns 0 or a library
// code.
int measureImage(const nuvo_image &image, int iv, const MeasurePlan &plan,
                 std::vector<Measure> *out);

}  // namespace nuvo::runfile
