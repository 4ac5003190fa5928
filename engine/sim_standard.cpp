// The standard simulation: everything shared by the realizations is prepared
// once, then each realization is reset to the conditioned state, given its path,
// simulated, and written out.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <span>
#include <vector>

#include "constraints/connectivity_paths.hpp"
#include "engine/conditioning.hpp"
#include "engine/local_transform.hpp"
#include "engine/owned.hpp"
#include "engine/prepared_data.hpp"
#include "engine/realization.hpp"
#include "engine/realization_loop.hpp"
#include "engine/sim_files.hpp"
#include "engine/sim_level.hpp"
#include "engine/sim_report.hpp"
#include "engine/sim_standard.hpp"
#include "engine/variable_transforms.hpp"
#include "foundation/check.hpp"
#include "nuvo_conditioning.h"
#include "nuvo_omp.h"
#include "nuvo_path.h"
#include "nuvo_sim.h"
#include "nuvo_simneighborhoods.h"

namespace nuvo {
namespace {

struct OwnedNeighborhoods {
  OwnedNeighborhoods() { NUVOInitSimSearchNeighborhoods(&value); }
  ~OwnedNeighborhoods() { NUVOFreeSimSearchNeighborhoods(&value); }
  OwnedNeighborhoods(const OwnedNeighborhoods &) = delete;
  OwnedNeighborhoods &operator=(const OwnedNeighborhoods &) = delete;
  nuvo_simSearchNeighborhoods value;
};

// Largest data event of a variable: its number of neighbouring nodes, and at
// most the given density of its neighbourhood's nodes.
int maxEventNodes(int nneighboringNode, double density, int neighborhoodSize) {
  const int byDensity = std::max(1, static_cast<int>(density * neighborhoodSize));
  return std::min(nneighboringNode, byDensity);
}

// Removes from a realization's path the entries its conditioning fixed (the
// connecting paths): in vector mode a node stays while one variable is to simulate.
void dropFixedEntries(std::span<const signed char> entryFlag, int nvar, bool vectorMode,
                      std::vector<int> &path) {
  const std::size_t nxyz = entryFlag.size() / static_cast<std::size_t>(nvar);
  std::erase_if(path, [&](int entry) {
    if (!vectorMode) return entryFlag[static_cast<std::size_t>(entry)] == 0;
    for (int v = 0; v < nvar; ++v)
      if (entryFlag[v * nxyz + static_cast<std::size_t>(entry)] != 0) return false;
    return true;
  });
}

// Copies of the training images, transformed for the simulation.
struct OwnedImages {
  OwnedImages() = default;
  ~OwnedImages() {
    for (nuvo_image &image : value) NUVOFreeImage(&image);
  }
  OwnedImages(const OwnedImages &) = delete;
  OwnedImages &operator=(const OwnedImages &) = delete;
  std::vector<nuvo_image> value;
};

// Under NORMALIZING_LINEAR, distances of continuous variables compared in
// absolute terms are measured on their range mapped onto [0, 1]: the threshold
// is scaled by the range instead. Under NORMALIZING_UNIFORM the values already
// lie in [0, 1], and under NORMALIZING_NORMAL the threshold is read in standard
// normal units, so neither is scaled.
double rangeScale(const nuvo_simInput &si, const VariableMeasure &m, int v) {
  if (si.distanceType[v] == 0 || si.relativeDistanceFlag[v] || isNormalized(si, v)) return 1.0;
  const double range = m.max - m.min;
  return range > 0.0 ? range : 1.0;
}

class StandardSimulation {
 public:
  StandardSimulation(const nuvo_simInput &si, nuvo_simOutput *out, FILE *report,
                     nuvo_progressMonitor *pm, nuvo_progressCallback callback,
                     const ThreadSettings &threads)
      : si_(si), out_(out), report_(report), pm_(pm), callback_(callback), threads_(threads) {}

  int prepare();
  int run();
  // The preparation without report details and output, for one simulation
  // among others (a pyramid level).
  int prepareShared();
  // One realization into the working image, from `seed`.
  int realize(int seed, nuvo_randContext *ctx, const RealizationMaps &maps);
  const nuvo_image &result() const { return work_.image; }

 private:
  void prepareSetup();
  PathSettings pathSettings(const int *nneighbor, const double *density, const double *threshold,
                            const double *scanFraction, double tolerance) const;
  int prepareTrainingImages();
  int prepareBlocks();
  int normalize();
  void denormalize();
  int preparePathTemplate();
  int orderPath(std::vector<int> &path, std::span<const signed char> entryFlag,
                nuvo_randContext *ctx) const;

  const nuvo_simInput &si_;
  nuvo_simOutput *out_;
  FILE *report_;
  nuvo_progressMonitor *pm_;
  nuvo_progressCallback callback_;
  ThreadSettings threads_;

  OwnedImage conditioned_;                  // the simulation image with its conditioning data
  OwnedImage original_;                     // the same, before normalisation (when normalising)
  OwnedImages trainCopy_;                   // transformed training images (when transforming)
  const nuvo_image *trainImage_ = nullptr;  // the training images the realizations read
  std::vector<std::vector<double>> normalized_;  // per variable: its normalisation table
  OwnedImage work_;                              // the realization being simulated
  PreparedData prepared_;
  ProbabilityConstraints probability_;
  BlockConstraints blocks_;
  ConnectivityPaths connectivity_;
  ConnectivityPattern pattern_;
  std::vector<signed char> realizationFlag_;  // entry flags with this realization's pasted paths
  LocalTransform transform_;
  OwnedNeighborhoods neighborhoods_;
  RealizationSetup setup_;
  std::vector<int> pathTemplate_;  // entries to simulate, in template order
  PathCounts pathCounts_;
  OutputWriter writer_;
};

int StandardSimulation::prepare() {
  NUVO_TRY(prepareShared());
  if (report_ != nullptr) {
    writeParameterDetails(report_, si_, neighborhoods_.value, prepared_, pathCounts_,
                          connectivity_);
    blocks_.writeStatistics(report_);
  }
  return writer_.prepare(si_, out_);
}

int StandardSimulation::prepareShared() {
  NUVO_TRY(NUVOCopyImage(si_.simImage, &conditioned_.image));
  std::vector<int> label;
  NUVO_TRY(integrateConditioning(si_, &conditioned_.image, &label, pm_, callback_));
  NUVO_TRY(prepareTrainingImages());
  NUVO_TRY(probability_.prepare(si_, std::span<const nuvo_image>(trainImage_, si_.ntrainImage),
                                conditioned_.image));
  NUVO_TRY(simPrepareData(si_, std::span<const nuvo_image>(trainImage_, si_.ntrainImage),
                          conditioned_.image, &prepared_, pm_, callback_));
  NUVO_TRY(prepareBlocks());
  if (!label.empty()) {
    NUVO_TRY(
        connectivity_.prepare(si_, label, conditioned_.image, trainImage_, prepared_.entryFlag));
    NUVO_TRY(pattern_.prepare(si_, label, conditioned_.image, trainImage_));
  }
  NUVO_TRY(checkStop(pm_));
  NUVO_TRY(normalize());
  NUVO_TRY(NUVOCopyImage(&conditioned_.image, &work_.image));
  NUVO_TRY(transform_.prepare(si_));

  nuvo_randContext ctx;
  NUVOInitRandContext(&ctx);
  NUVO_TRY(NUVOSimPrepareSearchNeighborhood(&si_, prepared_.entryFlag.data(), &neighborhoods_.value,
                                            &ctx, pm_));
  prepareSetup();
  return preparePathTemplate();
}

// The realizations read the caller's training images unless some variable is
// rescaled or normalised: they then read copies, rescaled here and normalised
// once the training values are known.
int StandardSimulation::prepareTrainingImages() {
  trainImage_ = si_.trainImage;
  bool transformed = false;
  for (int v = 0; v < si_.nvar; ++v)
    transformed = transformed || isNormalized(si_, v) || si_.rescalingMode[v] != RESCALING_NONE;
  if (!transformed) return 0;
  trainCopy_.value.resize(static_cast<std::size_t>(si_.ntrainImage));
  for (nuvo_image &image : trainCopy_.value) NUVOInitImage(&image);
  for (int t = 0; t < si_.ntrainImage; ++t)
    if (!si_.simGridAsTiFlag[t]) NUVO_TRY(NUVOCopyImage(&si_.trainImage[t], &trainCopy_.value[t]));
  trainImage_ = trainCopy_.value.data();
  return rescaleTrainCopies(si_, trainCopy_.value.data());
}

// Block data read the training values as the realizations copy them (block data
// require the linear normalizing type, which leaves them unchanged).
int StandardSimulation::prepareBlocks() {
  std::vector<BlockVariableRange> range(static_cast<std::size_t>(si_.nvar));
  for (int v = 0; v < si_.nvar; ++v) {
    const VariableMeasure &m = prepared_.variable[v];
    range[v] = {m.categorical, m.value, m.min, m.max};
  }
  return blocks_.prepare(si_, std::span<const nuvo_image>(trainImage_, si_.ntrainImage),
                         conditioned_.image, range, pm_, callback_);
}

// Maps the normalised variables of the training-image copies and of the
// conditioned simulation image through their tables, keeping the conditioned
// image as it was to restore the conditioning data exactly after each realization.
int StandardSimulation::normalize() {
  normalized_.assign(static_cast<std::size_t>(si_.nvar), {});
  bool any = false;
  for (int v = 0; v < si_.nvar; ++v) {
    if (!isNormalized(si_, v)) continue;
    if (!any) NUVO_TRY(NUVOCopyImage(&conditioned_.image, &original_.image));
    any = true;
    const std::vector<double> &x = prepared_.variable[v].value;
    normalized_[v] = normalizedValues(prepared_.variable[v], si_.normalizingType);
    const int n = static_cast<int>(x.size());
    for (int t = 0; t < si_.ntrainImage; ++t)
      if (!si_.simGridAsTiFlag[t])
        NUVO_TRY(NUVOTransformExplicitImageVar(&trainCopy_.value[t], v, n, x.data(),
                                               normalized_[v].data()));
    NUVO_TRY(
        NUVOTransformExplicitImageVar(&conditioned_.image, v, n, x.data(), normalized_[v].data()));
    if (nuvo_image *pasted = connectivity_.pastedValues(v))
      NUVO_TRY(NUVOTransformExplicitImageVar(pasted, 0, n, x.data(), normalized_[v].data()));
  }
  return 0;
}

// Maps the realization back through the inverse tables, then puts back every
// fixed entry (conditioning datum or masked node) from the saved image: a datum
// that is not a training value was only approximated by the table.
void StandardSimulation::denormalize() {
  const std::size_t nxyz = static_cast<std::size_t>(work_.image.grid->nxyz);
  for (int v = 0; v < si_.nvar; ++v) {
    if (normalized_[v].empty()) continue;
    const std::vector<double> &x = prepared_.variable[v].value;
    NUVOTransformExplicitImageVar(&work_.image, v, static_cast<int>(x.size()),
                                  normalized_[v].data(), x.data());
    double *values = work_.image.var + static_cast<std::size_t>(v) * nxyz;
    const double *saved = original_.image.var + static_cast<std::size_t>(v) * nxyz;
    for (std::size_t k = 0; k < nxyz; ++k)
      if (prepared_.flag(v, static_cast<int>(k)) == kEntryFixed) values[k] = saved[k];
  }
}

PathSettings StandardSimulation::pathSettings(const int *nneighbor, const double *density,
                                              const double *threshold, const double *scanFraction,
                                              double tolerance) const {
  PathSettings s;
  for (int v = 0; v < si_.nvar; ++v) {
    s.maxNodes.push_back(maxEventNodes(nneighbor[v], density[v], setup_.neighborhood[v]->size));
    s.invThreshold.push_back(1.0 / (threshold[v] * rangeScale(si_, prepared_.variable[v], v)));
  }
  s.maxScan = maxScanTable(setup_, std::span<const double>(scanFraction, si_.ntrainImage));
  s.tolerance = tolerance;
  return s;
}

void StandardSimulation::prepareSetup() {
  const nuvo_simSearchNeighborhoods &nb = neighborhoods_.value;
  setup_.nvar = si_.nvar;
  setup_.vectorMode = si_.simAndPathParameters->simType == SIM_VARIABLE_VECTOR;
  setup_.nthread = threads_.nthread;
  setup_.waitTotals = threads_.waits;
  for (int t = 0; t < si_.ntrainImage; ++t) {
    setup_.ti.push_back(si_.simGridAsTiFlag[t] ? &work_.image : &trainImage_[t]);
    setup_.simGridAsTi.push_back(si_.simGridAsTiFlag[t]);
  }
  setup_.pdfTrainImage = si_.ntrainImage > 1 ? si_.pdfTrainImage : nullptr;
  for (int v = 0; v < si_.nvar; ++v) {
    setup_.neighborhood.push_back(&nb.searchNeighborhood[nb.searchNeighborhoodIndex[v]]);
    setup_.uniformWeights.push_back(nb.weightUnifFlag[v]);
    setup_.distanceType.push_back(si_.distanceType[v]);
    setup_.relativeDistance.push_back(si_.relativeDistanceFlag[v]);
    setup_.conditioningWeight.push_back(si_.conditioningWeightFactor[v]);
    setup_.power.push_back(si_.powerLpDistance[v]);
    setup_.invPower.push_back(si_.powerLpDistanceInv[v]);
  }
  std::vector<std::vector<double>> categories(si_.nvar);
  for (int v = 0; v < si_.nvar; ++v)
    if (prepared_.variable[v].categorical) categories[v] = prepared_.variable[v].value;
  codeCategories(setup_, std::move(categories));
  setup_.initial = pathSettings(si_.nneighboringNode, si_.neighboringNodeDensity,
                                si_.distanceThreshold, si_.maxScanFraction, si_.tolerance);
  setup_.npostProcessingPathMax = si_.npostProcessingPathMax;
  setup_.transform = transform_.active() ? &transform_ : nullptr;
  if (!blocks_.empty()) setup_.blocks = &blocks_;
  if (!pattern_.empty()) setup_.pattern = &pattern_;
  if (!probability_.empty()) {
    setup_.probability = &probability_;
    for (int v = 0; v < si_.nvar; ++v)
      if (ProbabilityConstraint *c = probability_.of(v)) c->attach(*setup_.neighborhood[v]);
  }
  if (si_.npostProcessingPathMax > 0)
    setup_.postProcessing =
        pathSettings(si_.postProcessingNneighboringNode, si_.postProcessingNeighboringNodeDensity,
                     si_.postProcessingDistanceThreshold, si_.postProcessingMaxScanFraction,
                     si_.postProcessingTolerance);
}

int StandardSimulation::preparePathTemplate() {
  const int nxyz = conditioned_.image.grid->nxyz;
  const int npath = nxyz * si_.nvar;
  std::vector<int> oneByOne(npath), vector(nxyz);
  PathCounts &c = pathCounts_;
  NUVO_TRY(NUVOSimPrepareSimulationPath(&si_, prepared_.entryFlag.data(), npath, oneByOne.data(),
                                        &c.notSimulated, &c.simulated, vector.data(),
                                        &c.vectorNotSimulated, &c.vectorSimulated));
  if (setup_.vectorMode)
    pathTemplate_.assign(vector.begin() + c.vectorNotSimulated, vector.end());
  else
    pathTemplate_.assign(oneByOne.begin() + c.notSimulated, oneByOne.end());
  return 0;
}

// Orders the entries of a realization's path by the path type, the distances
// of the guided paths computed on the simulation's threads (the same path).
int StandardSimulation::orderPath(std::vector<int> &path, std::span<const signed char> entryFlag,
                                  nuvo_randContext *ctx) const {
  const nuvo_simAndPathParameters &p = *si_.simAndPathParameters;
  const nuvo_grid &g = *conditioned_.image.grid;
  const int n = static_cast<int>(path.size());
  const signed char *flag = entryFlag.data();
  const bool v = setup_.vectorMode;
  switch (p.pathType) {
    case PATH_RANDOM_HD_DISTANCE_PDF:
      return (v ? NUVOOMPVectorPathDistancePdfRandom : NUVOOMPPathDistancePdfRandom)(
          n, path.data(), flag, g.nx, g.ny, g.nz, si_.nvar, g.sx, g.sy, g.sz, p.strength, ctx,
          threads_.nthread);
    case PATH_RANDOM_HD_DISTANCE_SORT:
      return (v ? NUVOOMPVectorPathDistanceSortRandom : NUVOOMPPathDistanceSortRandom)(
          n, path.data(), flag, g.nx, g.ny, g.nz, si_.nvar, g.sx, g.sy, g.sz, p.strength, ctx,
          threads_.nthread);
    case PATH_RANDOM_HD_DISTANCE_SUM_PDF:
      return (v ? NUVOOMPVectorPathDistanceSumPdfRandom : NUVOOMPPathDistanceSumPdfRandom)(
          n, path.data(), flag, g.nx, g.ny, g.nz, si_.nvar, g.sx, g.sy, g.sz, p.strength, p.pow,
          ctx, threads_.nthread);
    case PATH_RANDOM_HD_DISTANCE_SUM_SORT:
      return (v ? NUVOOMPVectorPathDistanceSumSortRandom : NUVOOMPPathDistanceSumSortRandom)(
          n, path.data(), flag, g.nx, g.ny, g.nz, si_.nvar, g.sx, g.sy, g.sz, p.strength, p.pow,
          ctx, threads_.nthread);
    case PATH_UNILATERAL:
      return v ? NUVOPathUnilateral3D(n, path.data(), g.nx, g.ny, g.nz, p.unilateralOrder, ctx)
               : NUVOPathUnilateral4D(n, path.data(), g.nx, g.ny, g.nz, si_.nvar, p.unilateralOrder,
                                      ctx);
    default:
      return NUVOPathRandom(n, path.data(), ctx);
  }
}

int StandardSimulation::realize(int seed, nuvo_randContext *ctx, const RealizationMaps &maps) {
  // The seeding form of the draw: a seed of 0 continues the previous stream.
  NUVODoubleRand(seed, ctx);
  std::memcpy(work_.image.var, conditioned_.image.var,
              sizeof(double) * static_cast<std::size_t>(work_.image.nxyzv));
  std::vector<int> path(pathTemplate_);
  std::span<const signed char> entryFlag = prepared_.entryFlag;
  if (connectivity_.pastes()) {
    realizationFlag_ = prepared_.entryFlag;
    NUVO_TRY(connectivity_.paste(&work_.image, realizationFlag_, ctx, pm_, callback_));
    dropFixedEntries(realizationFlag_, setup_.nvar, setup_.vectorMode, path);
    entryFlag = realizationFlag_;
  }
  // The constraints count what the grid holds now: data and pasted paths.
  NUVO_TRY(probability_.beginRealization(work_.image));
  blocks_.beginRealization(work_.image);
  pattern_.beginRealization();
  NUVO_TRY(orderPath(path, entryFlag, ctx));
  NUVO_TRY(simulateRealization(setup_, &work_.image, entryFlag, path, seed, maps, report_, pm_,
                               callback_));
  denormalize();
  return 0;
}

int StandardSimulation::run() {
  nuvo_randContext ctx;
  NUVOInitRandContext(&ctx);
  return runRealizations(si_, report_, pm_, writer_,
                         [&](int, int seed, const nuvo_image **result) {
                           NUVO_TRY(realize(seed, &ctx, writer_.maps()));
                           *result = &work_.image;
                           return 0;
                         });
}

}  // namespace

int simulateLevel(const nuvo_simInput &si, int seed, nuvo_image *result,
                  const RealizationMaps &maps, FILE *report, nuvo_progressMonitor *pm,
                  nuvo_progressCallback callback, const ThreadSettings &threads) {
  StandardSimulation simulation(si, nullptr, report, pm, callback, threads);
  NUVO_TRY(simulation.prepareShared());
  nuvo_randContext ctx;
  NUVOInitRandContext(&ctx);
  NUVO_TRY(simulation.realize(seed, &ctx, maps));
  NUVOFreeImage(result);
  return NUVOCopyImage(&simulation.result(), result);
}

int simulateStandard(const nuvo_simInput &si, nuvo_simOutput *out, FILE *report,
                     nuvo_progressMonitor *pm, nuvo_progressCallback callback,
                     const ThreadSettings &threads) {
  return guardedCall([&] {
    StandardSimulation simulation(si, out, report, pm, callback, threads);
    NUVO_TRY(simulation.prepare());
    return simulation.run();
  });
}

}  // namespace nuvo

extern "C" int NUVOSimStandard(const nuvo_simInput *si, nuvo_simOutput *out, FILE *report,
                               nuvo_progressMonitor *pm, nuvo_progressCallback callback) {
  return nuvo::simulateStandard(*si, out, report, pm, callback, {});
}
