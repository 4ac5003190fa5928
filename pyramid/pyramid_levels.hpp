// The pyramid of a simulation: the level grids, the pyramids of the training
// images, of the mask, of the probabilities of the training images and of the
// transform maps, and the list of level simulations (steps) of the mode.
//
// Modes. Each step simulates one level as an input of its own (LevelInput) whose
// variables are the simulated variables of that level followed by conditioning
// variables carried over from another level; their training images hold the
// same variables, built the same way from the training-image pyramids.
//  - PYRAMID_SIM_HIERARCHICAL, step A (fine to coarse), for j = 0 .. n - 1:
//    level j + 1 is simulated where the reduction of what is known at level j
//    reaches (the reduction with the least filter weight, so every coarse node
//    whose filter touches a known node), conditioned to that reduction. Level 0
//    knows its conditioning data; a coarser level what step A simulated there.
//    Step B (coarse to fine): level n is simulated alone, then each level j is
//    simulated conditioned to level j + 1 carried onto its grid by the nearest
//    coarse node.
//  - PYRAMID_SIM_HIERARCHICAL_USING_EXPANSION: the same, level j + 1 carried
//    onto level j by the gaussian expansion.
//  - PYRAMID_SIM_ALL_LEVEL_ONE_BY_ONE: levels n down to 0, each conditioned to
//    every coarser level (carried by the nearest coarse node); the conditioning
//    data are put on the coarse levels at their nearest node.
// The values of a conditioning variable, and the data of a continuous pyramid
// variable on a coarse level (a datum of a thin body sits at its nearest coarse
// node, where the reduced training images never reach its value), are kept
// inside the range the level's training images give them, so the data checks of
// the level see no outlier.
#pragma once

#include <array>
#include <cstdio>
#include <memory>
#include <vector>

#include "nuvo_siminput.h"
#include "pyramid/level_image.hpp"
#include "pyramid/level_input.hpp"
#include "pyramid/pyramid_variables.hpp"

namespace nuvo {

enum class StepKind { kSpread, kSimulate };

// One level simulation of a realization.
struct LevelStep {
  StepKind kind = StepKind::kSimulate;
  int level = 0;
  std::unique_ptr<LevelInput> input;
  std::vector<int> main;  // pyramid variables simulated (level > 0)
  // Conditioning variables: per source level, the pyramid variables taken from it.
  std::vector<std::pair<int, std::vector<int>>> conditioning;
  std::vector<double> low, high;  // range of each variable of the level in its training images
};

class PyramidLevels {
 public:
  // Builds the levels of the validated input `si` whose training images are
  // `trainImage` (with the input's rescaling applied). Returns 0, -1, -3656, -3670 or
  // the error of a reduction.
  int prepare(const nuvo_simInput &si, std::span<const nuvo_image> trainImage);

  int nlevel() const { return n_; }
  int mode() const { return si_->pyramidGeneralParameters->pyramidSimulationMode; }
  const nuvo_grid &grid(int j) const { return grid_[j]; }
  const Steps &step(int j) const { return k_[j]; }  // from level j to j + 1
  const PyramidVariables &variables() const { return vars_; }
  std::vector<LevelStep> &steps() { return steps_; }
  const std::vector<LevelStep> &steps() const { return steps_; }
  const LevelMaps &maps(int j) const { return maps_[j]; }
  // Grid of training image t at level j (null for the simulation grid).
  const nuvo_grid *trainGrid(int t, int j) const;
  const std::vector<nuvo_grid> &grids() const { return grid_; }

  // Carries `source`, the pyramid variables at level `from` on grids[from], to
  // `level`: by the spreading reduction for a step A, else by lifting level
  // after level (by expansion in PYRAMID_SIM_HIERARCHICAL_USING_EXPANSION).
  int carry(const nuvo_image &source, int from, int level, StepKind kind,
            std::span<const nuvo_grid> grids, nuvo_image *out) const;

 private:
  int prepareMaps();
  int addStep(StepKind kind, int level, std::vector<int> mainVars,
              std::vector<std::pair<int, std::vector<int>>> conditioning, double mainFactor,
              std::vector<double> conditioningFactor, double thresholdMain,
              std::vector<double> thresholdConditioning);

  const nuvo_simInput *si_ = nullptr;
  std::span<const nuvo_image> ti0_;
  int n_ = 0;
  std::vector<Steps> k_;
  std::vector<nuvo_grid> grid_;
  PyramidVariables vars_;
  std::vector<std::vector<LevelImage>> tiP_;  // [level][ti]: pyramid variables
  std::vector<LevelMaps> maps_;
  std::vector<LevelStep> steps_;
};

// Nodes of each level simulated in step A (fine to coarse) and in step B (the
// levels simulated coarse to fine, or one by one), given where the data of
// level 0 are (`data`: its pyramid variables) and the masks of the levels.
using PathCounts = std::vector<std::array<long long, 2>>;
int countPaths(const PyramidLevels &levels, const nuvo_image &data, PathCounts *counts);

// Writes the layout of the pyramid to the report.
void writePyramidLayout(FILE *report, const nuvo_simInput &si, const PyramidLevels &levels,
                        const PathCounts &counts);

}  // namespace nuvo
