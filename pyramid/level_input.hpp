// The simulation input of one pyramid level and step: a nuvo_simInput of its own
// on the level's grid, so that the level runs through the same preparation and
// realization as a standard simulation.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "nuvo_siminput.h"
#include "pyramid/level_image.hpp"

namespace nuvo {

// One variable of a level: a simulated (pyramid) variable or a conditioning
// variable from the other level. It takes the settings of variable `source` of
// the whole input, with its number of neighbours and threshold scaled.
struct LevelVariable {
  int source = 0;
  std::string name;
  int distanceType = 0;
  double neighborFactor = 1.0;
  double thresholdFactor = 1.0;
  bool conditioning = false;  // a variable of the other level, informed beforehand
};

// The images of a level shared by its steps: mask, probabilities of the
// training images and maps of the transforms (empty where the input has none).
struct LevelMaps {
  LevelImage mask;
  LevelImage pdfTrainImage;
  LevelImage homothety[3];
  LevelImage rotation[3];
};

class LevelInput {
 public:
  LevelInput(const LevelInput &) = delete;
  LevelInput &operator=(const LevelInput &) = delete;

  // The input on `grid` for the variables `vars`, with the training images
  // `trainImage` (one per training image of `base`, holding the variables in
  // order; unused for a training image that is the simulation grid) and the
  // scan fractions of `base` times `scanFactor`. `maps` must outlive it.
  // Returns 0 or -1.
  static int make(const nuvo_simInput &base, const nuvo_grid &grid, std::vector<LevelVariable> vars,
                  std::vector<LevelImage> trainImage, const LevelMaps &maps, double scanFactor,
                  std::unique_ptr<LevelInput> *out);

  const nuvo_simInput &input() const { return si_; }
  const std::vector<LevelVariable> &variables() const { return vars_; }
  int nsimulated() const;

  // The simulation image for the next run: allocated on the level's grid, every
  // value missing; replaced at each call. Its variables are named.
  nuvo_image *resetSimImage();

  // The mask of the next run; null for none. The returned image, allocated on
  // the grid, belongs to the level input and replaces the level's mask.
  nuvo_image *ownMask();

 private:
  LevelInput() = default;

  nuvo_simInput si_{};
  std::vector<LevelVariable> vars_;
  std::vector<LevelImage> trainImage_;
  LevelImage simImage_, ownMask_;
  nuvo_grid grid_{};
  // Per-variable and per-training-image arrays that si_ points into.
  std::vector<nuvo_searchNeighborhoodParameters> neighborhood_;
  std::vector<int> nneighbor_, ppNneighbor_, distanceType_, rescaling_;
  std::vector<double> density_, ppDensity_, threshold_, ppThreshold_, power_, invPower_, weight_,
      rescaleTarget_;
  std::vector<signed char> relative_, outputFlag_, simGridAsTi_;
  std::vector<double> scan_, ppScan_;
  std::vector<nuvo_image> trainView_;
};

}  // namespace nuvo
