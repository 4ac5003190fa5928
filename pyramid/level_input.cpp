// The simulation input of a pyramid level.
#include "pyramid/level_input.hpp"

#include <algorithm>
#include <cstdio>

#include "data/values.hpp"
#include "engine/owned.hpp"

namespace nuvo {
namespace {

nuvo_image *orNull(const LevelImage &image) {
  return image.empty() ? nullptr : const_cast<nuvo_image *>(image.get());
}

}  // namespace

int LevelInput::make(const nuvo_simInput &base, const nuvo_grid &grid,
                     std::vector<LevelVariable> vars, std::vector<LevelImage> trainImage,
                     const LevelMaps &maps, double scanFactor, std::unique_ptr<LevelInput> *out) {
  std::unique_ptr<LevelInput> level(new LevelInput());
  LevelInput &l = *level;
  l.vars_ = std::move(vars);
  l.trainImage_ = std::move(trainImage);
  l.grid_ = grid;
  for (const LevelVariable &lv : l.vars_) {
    const int v = lv.source;
    const auto scaled = [&lv](int n) {
      return std::max(1, static_cast<int>(n * lv.neighborFactor));
    };
    const auto threshold = [&lv](double t) {
      return std::clamp(t * lv.thresholdFactor, 1e-6, 1.0);
    };
    l.neighborhood_.push_back(base.searchNeighborhoodParameters[v]);
    l.nneighbor_.push_back(scaled(base.nneighboringNode[v]));
    l.density_.push_back(base.neighboringNodeDensity[v]);
    l.rescaling_.push_back(RESCALING_NONE);
    l.rescaleTarget_.push_back(0.0);
    l.relative_.push_back(lv.distanceType == base.distanceType[v] ? base.relativeDistanceFlag[v]
                                                                  : 0);
    l.distanceType_.push_back(lv.distanceType);
    l.power_.push_back(base.powerLpDistance[v]);
    l.invPower_.push_back(base.powerLpDistanceInv[v]);
    l.weight_.push_back(base.conditioningWeightFactor[v]);
    l.threshold_.push_back(threshold(base.distanceThreshold[v]));
    l.outputFlag_.push_back(0);
    if (base.npostProcessingPathMax > 0) {
      l.ppNneighbor_.push_back(scaled(base.postProcessingNneighboringNode[v]));
      l.ppDensity_.push_back(base.postProcessingNeighboringNodeDensity[v]);
      l.ppThreshold_.push_back(threshold(base.postProcessingDistanceThreshold[v]));
    }
  }
  for (int t = 0; t < base.ntrainImage; ++t) {
    l.simGridAsTi_.push_back(base.simGridAsTiFlag[t]);
    l.scan_.push_back(base.maxScanFraction[t] * scanFactor);
    if (base.npostProcessingPathMax > 0)
      l.ppScan_.push_back(base.postProcessingMaxScanFraction[t] * scanFactor);
    l.trainView_.push_back(*l.trainImage_[static_cast<std::size_t>(t)].get());
  }

  // Everything not set below (seeds, path, tolerances, normalisation, transform
  // usages and values) is the whole input's.
  nuvo_simInput &si = l.si_;
  si = base;
  si.consoleAppFlag = 1;
  si.simImage = nullptr;
  si.nvar = static_cast<int>(l.vars_.size());
  si.outputVarFlag = l.outputFlag_.data();
  si.formatStringVar = nullptr;
  si.outputPathIndexFlag = si.outputErrorFlag = si.outputTiGridNodeIndexFlag = 0;
  si.outputTiIndexFlag = si.outputReportFlag = 0;
  si.simGridAsTiFlag = l.simGridAsTi_.data();
  si.trainImage = l.trainView_.data();
  si.pdfTrainImage = orNull(maps.pdfTrainImage);
  si.ndataImage = si.ndataPointSet = 0;
  si.dataImage = nullptr;
  si.dataPointSet = nullptr;
  si.maskImageFlag = maps.mask.empty() ? 0 : 1;
  si.maskImage = orNull(maps.mask);
  si.homothetyXRatioImage = orNull(maps.homothety[0]);
  si.homothetyYRatioImage = orNull(maps.homothety[1]);
  si.homothetyZRatioImage = orNull(maps.homothety[2]);
  si.rotationAzimuthImage = orNull(maps.rotation[0]);
  si.rotationDipImage = orNull(maps.rotation[1]);
  si.rotationPlungeImage = orNull(maps.rotation[2]);
  si.searchNeighborhoodParameters = l.neighborhood_.data();
  si.nneighboringNode = l.nneighbor_.data();
  si.neighboringNodeDensity = l.density_.data();
  si.rescalingMode = l.rescaling_.data();
  si.rescalingTargetMin = si.rescalingTargetMax = l.rescaleTarget_.data();
  si.rescalingTargetMean = si.rescalingTargetLength = l.rescaleTarget_.data();
  si.relativeDistanceFlag = l.relative_.data();
  si.distanceType = l.distanceType_.data();
  si.powerLpDistance = l.power_.data();
  si.powerLpDistanceInv = l.invPower_.data();
  si.conditioningWeightFactor = l.weight_.data();
  si.distanceThreshold = l.threshold_.data();
  si.softProbability = nullptr;
  si.connectivity = nullptr;
  si.blockData = nullptr;
  si.maxScanFraction = l.scan_.data();
  si.pyramidGeneralParameters = nullptr;
  si.pyramidParameters = nullptr;
  si.postProcessingNneighboringNode = l.ppNneighbor_.data();
  si.postProcessingNeighboringNodeDensity = l.ppDensity_.data();
  si.postProcessingDistanceThreshold = l.ppThreshold_.data();
  si.postProcessingMaxScanFraction = l.ppScan_.data();
  si.nrealization = 1;
  NUVO_TRY(l.resetSimImage() == nullptr ? -1 : 0);
  *out = std::move(level);
  return 0;
}

int LevelInput::nsimulated() const {
  return static_cast<int>(std::count_if(vars_.begin(), vars_.end(),
                                        [](const LevelVariable &v) { return !v.conditioning; }));
}

nuvo_image *LevelInput::resetSimImage() {
  NUVOFreeImage(simImage_.get());
  if (allocateOnGrid(grid_, static_cast<int>(vars_.size()), simImage_.get()) != 0) return nullptr;
  for (std::size_t i = 0; i < vars_.size(); ++i)
    std::snprintf(simImage_.get()->varName[i], kNameSlot, "%s", vars_[i].name.c_str());
  si_.simImage = simImage_.get();
  return simImage_.get();
}

nuvo_image *LevelInput::ownMask() {
  NUVOFreeImage(ownMask_.get());
  if (allocateOnGrid(grid_, 1, ownMask_.get()) != 0) return nullptr;
  si_.maskImageFlag = 1;
  si_.maskImage = ownMask_.get();
  return ownMask_.get();
}

}  // namespace nuvo
