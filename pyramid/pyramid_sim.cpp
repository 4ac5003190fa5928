// NUVOSimPyramid: the simulation through a pyramid of grids. The levels and their
// simulations are prepared once (pyramid_levels.hpp); each realization then runs
// the level simulations of the mode in order, carrying what each one simulated
// to the next, and writes out level 0.
//
// Connecting paths of the connectivity constraints (usage 1 and 2) are pasted
// into the data of the simulation grid at the start of each realization; the
// data of the coarse levels are then drawn from those data, paths included, so
// every level sees the paths as data and the simulation grid honours them.
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <vector>

#include "constraints/connectivity_paths.hpp"
#include "data/values.hpp"
#include "engine/conditioning.hpp"
#include "engine/prepared_data.hpp"
#include "engine/sim_files.hpp"
#include "engine/realization_loop.hpp"
#include "engine/sim_level.hpp"
#include "engine/variable_transforms.hpp"
#include "foundation/check.hpp"
#include "nuvo_conditioning.h"
#include "nuvo_random.h"
#include "nuvo_sim.h"
#include "pyramid/pyramid_levels.hpp"
#include "pyramid/pyramid_sim.hpp"

namespace nuvo {
namespace {

class PyramidSimulation {
 public:
  PyramidSimulation(const nuvo_simInput &si, nuvo_simOutput *out, FILE *report,
                    nuvo_progressMonitor *pm, nuvo_progressCallback callback,
                    const ThreadSettings &threads)
      : si_(si), out_(out), report_(report), pm_(pm), callback_(callback), threads_(threads) {}

  int prepare();
  int run();

 private:
  int buildDataLevels(const nuvo_image &data);
  int pastePaths(nuvo_randContext *ctx);
  int resetLevels();
  int runStep(LevelStep &step, int seed, const RealizationMaps &maps, LevelImage *result);
  int simulate(int seed, LevelImage *result);

  const nuvo_simInput &si_;
  nuvo_simOutput *out_;
  FILE *report_;
  nuvo_progressMonitor *pm_;
  nuvo_progressCallback callback_;
  ThreadSettings threads_;  // of every level's node loop

  std::vector<nuvo_image> trainImage_;  // rescaled copies (views of trainCopy_)
  std::vector<LevelImage> trainCopy_;
  LevelImage data_;                    // level 0 with its conditioning data
  ConnectivityPaths connectivity_;
  std::vector<signed char> entryFlag_;  // of data_
  LevelImage pasted_;                   // data_ with the paths of the realization
  const nuvo_image *levelData_ = nullptr;  // data_, or pasted_ when paths are pasted
  std::vector<LevelImage> dataLevel_;  // per level: the pyramid variables of the data
  std::vector<LevelImage> state_;      // per level: what is known of its pyramid variables
  PyramidLevels levels_;
  OutputWriter writer_;
};

int PyramidSimulation::prepare() {
  trainCopy_.resize(static_cast<std::size_t>(si_.ntrainImage));
  for (int t = 0; t < si_.ntrainImage; ++t) {
    if (!si_.simGridAsTiFlag[t]) NUVO_TRY(NUVOCopyImage(&si_.trainImage[t], trainCopy_[t].get()));
    trainImage_.push_back(*trainCopy_[t].get());
  }
  NUVO_TRY(rescaleTrainCopies(si_, trainImage_.data()));
  NUVO_TRY(levels_.prepare(si_, trainImage_));

  NUVO_TRY(NUVOCopyImage(si_.simImage, data_.get()));
  std::vector<int> label;
  NUVO_TRY(integrateConditioning(si_, data_.get(), &label, pm_, callback_));
  if (!label.empty()) {
    entryFlag_ = entryFlags(si_, *data_.get());
    NUVO_TRY(connectivity_.prepare(si_, label, *data_.get(), trainImage_.data(), entryFlag_));
  }
  NUVO_TRY(buildDataLevels(*data_.get()));
  const int n = levels_.nlevel();
  state_.resize(static_cast<std::size_t>(n) + 1);
  NUVO_TRY(checkStop(pm_));
  if (report_ != nullptr) {
    PathCounts counts;
    NUVO_TRY(countPaths(levels_, *dataLevel_[0].get(), &counts));
    writePyramidLayout(report_, si_, levels_, counts);
  }
  return writer_.prepare(si_, out_);
}

// The pyramid variables of the data of level 0, `data`, and of the coarse
// levels, used as such by the one-by-one mode: each datum on its nearest coarse
// node.
int PyramidSimulation::buildDataLevels(const nuvo_image &data) {
  levelData_ = &data;
  const int n = levels_.nlevel();
  dataLevel_.resize(static_cast<std::size_t>(n) + 1);
  NUVOFreeImage(dataLevel_[0].get());
  NUVO_TRY(levels_.variables().transform(data, true, dataLevel_[0].get()));
  for (int j = 0; j < n; ++j) {
    NUVOFreeImage(dataLevel_[j + 1].get());
    NUVO_TRY(sampleToCoarse(*dataLevel_[j].get(), levels_.grid(j + 1), levels_.step(j),
                            dataLevel_[j + 1].get()));
  }
  return 0;
}

// The data of the realization: those of the input with this realization's
// connecting paths, when some variable pastes them.
int PyramidSimulation::pastePaths(nuvo_randContext *ctx) {
  if (!connectivity_.pastes()) return 0;
  NUVOFreeImage(pasted_.get());
  NUVO_TRY(NUVOCopyImage(data_.get(), pasted_.get()));
  std::vector<signed char> flag(entryFlag_);
  NUVO_TRY(connectivity_.paste(pasted_.get(), flag, ctx, pm_, callback_));
  return buildDataLevels(*pasted_.get());
}

// Level 0 knows its data; the coarse levels know nothing in the hierarchical
// modes (step A fills them), their data in the one-by-one mode.
int PyramidSimulation::resetLevels() {
  const bool oneByOne =
      si_.pyramidGeneralParameters->pyramidSimulationMode == PYRAMID_SIM_ALL_LEVEL_ONE_BY_ONE;
  for (std::size_t j = 0; j < state_.size(); ++j) {
    NUVOFreeImage(state_[j].get());
    if (j == 0 || oneByOne)
      NUVO_TRY(NUVOCopyImage(dataLevel_[j].get(), state_[j].get()));
    else
      NUVO_TRY(allocateOnGrid(levels_.grid(static_cast<int>(j)), dataLevel_[0].get()->nvar,
                              state_[j].get()));
  }
  return 0;
}

void copyColumn(const nuvo_image &from, int iv, nuvo_image *to, int jv) {
  std::span<const double> a = variableValues(&from, iv);
  std::copy(a.begin(), a.end(), variableValues(to, jv).begin());
}

int PyramidSimulation::runStep(LevelStep &step, int seed, const RealizationMaps &maps,
                               LevelImage *result) {
  LevelInput &in = *step.input;
  nuvo_image *sim = in.resetSimImage();
  NUVO_FAIL_IF(sim == nullptr, -1);
  const int level = step.level;
  const int nmain = level == 0 ? si_.nvar : static_cast<int>(step.main.size());
  for (int j = 0; j < nmain; ++j) {
    if (level == 0) {
      copyColumn(*levelData_, j, sim, j);
      continue;
    }
    copyColumn(*state_[level].get(), step.main[j], sim, j);
    if (in.input().distanceType[j] == 0) continue;
    for (double &x : variableValues(sim, j))
      if (!isMissing(x)) x = std::clamp(x, step.low[j], step.high[j]);
  }
  int col = nmain;
  std::vector<char> informed(static_cast<std::size_t>(sim->grid->nxyz), 0);
  for (const auto &[from, list] : step.conditioning) {
    LevelImage carried;
    NUVO_TRY(
        levels_.carry(*state_[from].get(), from, level, step.kind, levels_.grids(), carried.get()));
    for (int i : list) {
      const std::size_t c = static_cast<std::size_t>(col);
      copyColumn(*carried.get(), i, sim, col);
      // A node that the coarse level left uninformed (next to the mask) takes
      // the middle of the range when it is to be simulated at this level.
      std::span<double> x = variableValues(sim, col++);
      for (std::size_t k = 0; k < x.size(); ++k) {
        if (isMissing(x[k])) {
          if (step.kind == StepKind::kSimulate) x[k] = 0.5 * (step.low[c] + step.high[c]);
          continue;
        }
        x[k] = std::clamp(x[k], step.low[c], step.high[c]);
        informed[k] = 1;
      }
    }
  }
  if (step.kind == StepKind::kSpread) {
    // Only the nodes that the known values of the finer level reach.
    nuvo_image *mask = in.ownMask();
    NUVO_FAIL_IF(mask == nullptr, -1);
    const LevelImage &levelMask = levels_.maps(level).mask;
    bool any = false;
    std::span<double> m = variableValues(mask, 0);
    for (std::size_t k = 0; k < m.size(); ++k) {
      const bool on = informed[k] && (levelMask.empty() || levelMask.get()->var[k] == 1.0);
      m[k] = on ? 1.0 : 0.0;
      any = any || on;
    }
    if (!any) return 0;
  }
  NUVO_TRY(simulateLevel(in.input(), seed, result->get(), maps, report_, pm_, callback_, threads_));
  if (level > 0)
    for (int j = 0; j < nmain; ++j)
      copyColumn(*result->get(), j, state_[level].get(), step.main[j]);
  return 0;
}

// Realization r from `seed`: the level simulations of the mode in order; level 0
// is left in `result`.
int PyramidSimulation::simulate(int seed, LevelImage *result) {
  // The paths, then each level simulation's own seed, are drawn from the
  // realization's stream.
  nuvo_randContext ctx;
  NUVOInitRandContext(&ctx);
  NUVODoubleRand(seed, &ctx);
  NUVO_TRY(pastePaths(&ctx));
  NUVO_TRY(resetLevels());
  const int n = levels_.nlevel();
  for (LevelStep &step : levels_.steps()) {
    const int levelSeed = 1 + static_cast<int>(NUVODoubleRand(0, &ctx) * 2147483646.0);
    if (report_ != nullptr)
      std::fprintf(report_,
                   step.kind == StepKind::kSpread
                       ? "- spreading conditioning data at pyramid level %d of %d\n"
                       : "- simulating pyramid level %d of %d\n",
                   step.level, n);
    NUVO_TRY(
        runStep(step, levelSeed, step.level == 0 ? writer_.maps() : RealizationMaps{}, result));
    NUVO_TRY(checkStop(pm_));
  }
  return 0;
}

int PyramidSimulation::run() {
  LevelImage result;
  nuvo_image view;
  return runRealizations(si_, report_, pm_, writer_,
                         [&](int, int seed, const nuvo_image **written) {
                           result = LevelImage{};
                           NUVO_TRY(simulate(seed, &result));
                           // Level 0 holds the simulated variables first.
                           view = *result.get();
                           view.nvar = si_.nvar;
                           view.nxyzv = si_.nvar * view.grid->nxyz;
                           *written = &view;
                           return 0;
                         });
}

}  // namespace

int simulatePyramid(const nuvo_simInput &si, nuvo_simOutput *out, FILE *report,
                    nuvo_progressMonitor *pm, nuvo_progressCallback callback,
                    const ThreadSettings &threads) {
  return guardedCall([&] {
    PyramidSimulation simulation(si, out, report, pm, callback, threads);
    NUVO_TRY(simulation.prepare());
    return simulation.run();
  });
}

}  // namespace nuvo

extern "C" int NUVOSimPyramid(const nuvo_simInput *si, nuvo_simOutput *out, FILE *report,
                              nuvo_progressMonitor *pm, nuvo_progressCallback callback) {
  return nuvo::simulatePyramid(*si, out, report, pm, callback, {});
}
