// The variables that the coarse pyramid levels simulate, and how the simulated
// variables become them.
//
// Every simulated variable v with a pyramid (nlevel > 0) gives pyramid variables,
// named after it with "_lev" and the level number in three digits appended:
//  - PYRAMID_CONTINUOUS: the variable itself;
//  - PYRAMID_CATEGORICAL_AUTO: the indicator (1 or 0) of each category met in
//    the training images but the largest one, whose indicator is implied;
//  - PYRAMID_CATEGORICAL_CUSTOM: the indicator of each given class of values;
//  - PYRAMID_CATEGORICAL_TO_CONTINUOUS: one continuous variable in [0, 1], each
//    category given a value by an order that keeps connected categories close:
//    counting, over the training images, the pairs of adjacent nodes (along x, y
//    and z) holding two different categories, the order starts with the most
//    frequent category and appends each time the category not yet placed that
//    shares most such pairs with the last one placed (ties to the smaller
//    category, and to the more frequent one when none is adjacent); the category
//    of rank r among m gets r / (m - 1).
// Reduced, indicators become the local proportions of their categories.
//
// Level 0 always simulates the variables themselves: a categorical variable is
// simulated with its own categorical distance, conditioned to the pyramid
// variables of level 1 carried onto the fine grid. Its values, and thus the
// categories of the realization, are always copied from the training images;
// the indicators only steer which category the pattern search picks.
#pragma once

#include <span>
#include <string>
#include <vector>

#include "nuvo_image.h"
#include "nuvo_siminput.h"

namespace nuvo {

struct PyramidVariable {
  int source = 0;    // the simulated variable it is made from
  int type = 0;      // its pyramid type
  int index = 0;     // category (auto) or class (custom) of an indicator
  std::string name;  // base name, the level suffix added per level
};

class PyramidVariables {
 public:
  // Lists the pyramid variables of `si`, whose training images (rescaled copies,
  // or the caller's) are `trainImage`; an entry marked as the simulation grid is
  // not read. Returns 0 or -1.
  int prepare(const nuvo_simInput &si, std::span<const nuvo_image> trainImage);

  const std::vector<PyramidVariable> &list() const { return list_; }

  // Indices in list() of the pyramid variables taking part at level j >= 1.
  std::vector<int> atLevel(int j) const;

  // The pyramid variables of an image holding the simulated variables (missing
  // stays missing), on the same grid, into `out` (initialised; replaced). With
  // `data` set, a datum of a variable turned continuous that is no training
  // category fails with -554. Returns 0, -1 or -554.
  int transform(const nuvo_image &in, bool data, nuvo_image *out) const;

  // The distance type of pyramid variable i at the coarse levels.
  int distanceType(int i) const;

 private:
  const nuvo_simInput *si_ = nullptr;
  std::vector<PyramidVariable> list_;
  std::vector<std::vector<double>> category_;   // per simulated variable: its categories
  std::vector<std::vector<double>> rankValue_;  // per variable turned continuous: per category
};

// The name of a pyramid variable at level j.
std::string levelName(const std::string &base, int j);

}  // namespace nuvo
