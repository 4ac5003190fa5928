// The levels of a pyramid simulation and the level simulations of each mode.
#include "pyramid/pyramid_levels.hpp"

#include <algorithm>

#include "data/values.hpp"
#include "foundation/check.hpp"
#include "nuvo_pyramidparams.h"

namespace nuvo {
namespace {

// The least filter weight of the reduction that spreads what is known at a level:
// any coarse node whose filter touches a known node is informed.
constexpr double kSpreadWeight = 1e-10;
constexpr double kLevelWeight = 0.6;

int copyIfAny(const nuvo_image *image, bool use, LevelImage *out) {
  return use && image != nullptr ? NUVOCopyImage(image, out->get()) : 0;
}

// Nodes of a reduced mask are simulated when at least half of their filter is.
void binarizeMask(nuvo_image *mask) {
  for (double &m : variableValues(mask, 0)) m = (!isMissing(m) && m >= 0.5) ? 1.0 : 0.0;
}

}  // namespace

const nuvo_grid *PyramidLevels::trainGrid(int t, int j) const {
  const LevelImage &image = tiP_[j][t];
  return image.empty() ? nullptr : image.get()->grid;
}

int PyramidLevels::prepare(const nuvo_simInput &si, std::span<const nuvo_image> trainImage) {
  si_ = &si;
  ti0_ = trainImage;
  NUVO_FAIL_IF(
      si.pyramidGeneralParameters == nullptr || si.pyramidGeneralParameters->npyramidLevel < 1,
      -3656);
  const nuvo_pyramidGeneralParameters &gp = *si.pyramidGeneralParameters;
  n_ = gp.npyramidLevel;
  NUVO_TRY(vars_.prepare(si, trainImage));
  for (int j = 1; j <= n_; ++j) NUVO_FAIL_IF(vars_.atLevel(j).empty(), -3670);
  grid_.push_back(*si.simImage->grid);
  for (int j = 0; j < n_; ++j) {
    k_.push_back({gp.kx[j], gp.ky[j], gp.kz[j]});
    nuvo_grid coarse;
    NUVO_TRY(reduceGrid(grid_[j], k_[j], &coarse));
    grid_.push_back(coarse);
  }
  tiP_.resize(static_cast<std::size_t>(n_) + 1);
  for (int t = 0; t < si.ntrainImage; ++t) {
    for (int j = 0; j <= n_; ++j) tiP_[j].emplace_back();
    if (si.simGridAsTiFlag[t]) continue;
    NUVO_TRY(vars_.transform(trainImage[t], false, tiP_[0][t].get()));
    for (int j = 0; j < n_; ++j)
      NUVO_TRY(reduceImage(*tiP_[j][t].get(), k_[j], kLevelWeight, tiP_[j + 1][t].get()));
  }
  NUVO_TRY(prepareMaps());

  const double *fn = gp.factorNneighboringNode;
  const double *ft = gp.factorDistanceThreshold;
  const int n = n_;
  if (gp.pyramidSimulationMode == PYRAMID_SIM_ALL_LEVEL_ONE_BY_ONE) {
    for (int j = n; j >= 0; --j) {
      std::vector<std::pair<int, std::vector<int>>> cond;
      std::vector<double> fc, tc;
      for (int i = j + 1; i <= n; ++i) {
        cond.push_back({i, vars_.atLevel(i)});
        fc.push_back(fn[i]);
        tc.push_back(ft[i]);
      }
      NUVO_TRY(addStep(StepKind::kSimulate, j, j > 0 ? vars_.atLevel(j) : std::vector<int>{},
                       std::move(cond), fn[j], fc, ft[j], tc));
    }
    return 0;
  }
  for (int j = 0; j < n; ++j)
    NUVO_TRY(addStep(StepKind::kSpread, j + 1, vars_.atLevel(j + 1), {{j, vars_.atLevel(j)}},
                     fn[4 * j + 1], {fn[4 * j]}, ft[4 * j + 1], {ft[4 * j]}));
  NUVO_TRY(addStep(StepKind::kSimulate, n, vars_.atLevel(n), {}, fn[4 * n], {}, ft[4 * n], {}));
  for (int j = n - 1; j >= 0; --j)
    NUVO_TRY(addStep(StepKind::kSimulate, j, j > 0 ? vars_.atLevel(j) : std::vector<int>{},
                     {{j + 1, vars_.atLevel(j + 1)}}, fn[4 * j + 3], {fn[4 * j + 2]}, ft[4 * j + 3],
                     {ft[4 * j + 2]}));
  return 0;
}

int PyramidLevels::prepareMaps() {
  const nuvo_simInput &si = *si_;
  maps_.resize(static_cast<std::size_t>(n_) + 1);
  LevelMaps &m0 = maps_[0];
  NUVO_TRY(copyIfAny(si.maskImage, si.maskImageFlag != 0, &m0.mask));
  NUVO_TRY(copyIfAny(si.pdfTrainImage, si.ntrainImage > 1, &m0.pdfTrainImage));
  const bool h = si.homothetyUsage != 0, r = si.rotationUsage != 0;
  NUVO_TRY(copyIfAny(si.homothetyXRatioImage, h && si.homothetyXRatioImageFlag, &m0.homothety[0]));
  NUVO_TRY(copyIfAny(si.homothetyYRatioImage, h && si.homothetyYRatioImageFlag, &m0.homothety[1]));
  NUVO_TRY(copyIfAny(si.homothetyZRatioImage, h && si.homothetyZRatioImageFlag, &m0.homothety[2]));
  NUVO_TRY(copyIfAny(si.rotationAzimuthImage, r && si.rotationAzimuthImageFlag, &m0.rotation[0]));
  NUVO_TRY(copyIfAny(si.rotationDipImage, r && si.rotationDipImageFlag, &m0.rotation[1]));
  NUVO_TRY(copyIfAny(si.rotationPlungeImage, r && si.rotationPlungeImageFlag, &m0.rotation[2]));
  for (int j = 0; j < n_; ++j) {
    const LevelMaps &fine = maps_[j];
    LevelMaps &coarse = maps_[j + 1];
    const auto reduce = [this, j](const LevelImage &in, LevelImage *out) {
      return in.empty() ? 0 : reduceImage(*in.get(), k_[j], kLevelWeight, out->get());
    };
    NUVO_TRY(reduce(fine.mask, &coarse.mask));
    if (!coarse.mask.empty()) binarizeMask(coarse.mask.get());
    NUVO_TRY(reduce(fine.pdfTrainImage, &coarse.pdfTrainImage));
    for (int a = 0; a < 3; ++a) {
      NUVO_TRY(reduce(fine.homothety[a], &coarse.homothety[a]));
      if (!fine.rotation[a].empty())
        NUVO_TRY(reduceAngleImage(*fine.rotation[a].get(), k_[j], coarse.rotation[a].get()));
    }
  }
  return 0;
}

int PyramidLevels::carry(const nuvo_image &source, int from, int level, StepKind kind,
                         std::span<const nuvo_grid> grids, nuvo_image *out) const {
  if (kind == StepKind::kSpread) return reduceImage(source, k_[from], kSpreadWeight, out);
  const bool expansion = si_->pyramidGeneralParameters->pyramidSimulationMode ==
                         PYRAMID_SIM_HIERARCHICAL_USING_EXPANSION;
  LevelImage image;
  NUVO_TRY(NUVOCopyImage(&source, image.get()));
  for (int i = from - 1; i >= level; --i) {
    LevelImage finer;
    NUVO_TRY(liftImage(*image.get(), grids[i], k_[i], expansion, finer.get()));
    image = std::move(finer);
  }
  std::swap(*out, *image.get());
  return 0;
}

int PyramidLevels::addStep(StepKind kind, int level, std::vector<int> mainVars,
                           std::vector<std::pair<int, std::vector<int>>> conditioning,
                           double mainFactor, std::vector<double> conditioningFactor,
                           double thresholdMain, std::vector<double> thresholdConditioning) {
  const nuvo_simInput &si = *si_;
  const std::vector<PyramidVariable> &pv = vars_.list();
  LevelStep step;
  step.kind = kind;
  step.level = level;
  std::vector<LevelVariable> vars;
  if (level == 0) {
    for (int v = 0; v < si.nvar; ++v)
      vars.push_back(
          {v, si.simImage->varName[v], si.distanceType[v], mainFactor, thresholdMain, false});
  }
  for (int i : mainVars)
    vars.push_back({pv[i].source, levelName(pv[i].name, level), vars_.distanceType(i), mainFactor,
                    thresholdMain, false});
  for (std::size_t c = 0; c < conditioning.size(); ++c)
    for (int i : conditioning[c].second)
      vars.push_back({pv[i].source, levelName(pv[i].name, conditioning[c].first),
                      vars_.distanceType(i), conditioningFactor[c], thresholdConditioning[c],
                      true});

  std::vector<LevelImage> tis;
  const std::size_t nmain = level == 0 ? static_cast<std::size_t>(si.nvar) : mainVars.size();
  step.low.assign(vars.size(), 0.0);
  step.high.assign(vars.size(), 0.0);
  std::vector<char> seen(vars.size(), 0);
  for (int t = 0; t < si.ntrainImage; ++t) {
    tis.emplace_back();
    if (si.simGridAsTiFlag[t]) continue;
    const nuvo_image *fine = level == 0 ? &ti0_[t] : tiP_[level][t].get();
    std::vector<VariableSource> sources;
    std::vector<LevelImage> held(conditioning.size());
    for (std::size_t j = 0; j < nmain; ++j)
      sources.push_back({fine, level == 0 ? static_cast<int>(j) : mainVars[j], vars[j].name});
    for (std::size_t c = 0; c < conditioning.size(); ++c) {
      std::vector<nuvo_grid> grids;
      for (int i = 0; i <= n_; ++i) grids.push_back(*tiP_[i][t].get()->grid);
      const int from = conditioning[c].first;
      NUVO_TRY(carry(*tiP_[from][t].get(), from, level, kind, grids, held[c].get()));
      for (int i : conditioning[c].second)
        sources.push_back({held[c].get(), i, vars[sources.size()].name});
    }
    NUVO_TRY(gatherVariables(*fine->grid, sources, tis.back().get()));
    for (std::size_t j = 0; j < vars.size(); ++j) {
      const InformedSummary s =
          summarizeInformed(variableValues(tis.back().get(), static_cast<int>(j)));
      if (s.n == 0) continue;
      step.low[j] = seen[j] ? std::min(step.low[j], s.min) : s.min;
      step.high[j] = seen[j] ? std::max(step.high[j], s.max) : s.max;
      seen[j] = 1;
    }
  }
  step.main = std::move(mainVars);
  step.conditioning = std::move(conditioning);
  NUVO_TRY(LevelInput::make(si, grid_[level], std::move(vars), std::move(tis), maps_[level],
                            si.pyramidGeneralParameters->factorMaxScanFraction[level],
                            &step.input));
  steps_.push_back(std::move(step));
  return 0;
}

}  // namespace nuvo
