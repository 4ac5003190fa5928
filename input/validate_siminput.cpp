// Validation of a simulation input: every field checked in a fixed order, the
// first failure deciding the verdict, and the automatic search neighborhood modes
// turned into numbers on the way.
#include <algorithm>
#include <cmath>
#include <cstring>
#include <utility>

#include "constraints/blockdata_checks.hpp"
#include "constraints/connectivity_checks.hpp"
#include "constraints/probability_checks.hpp"
#include "data/values.hpp"
#include "foundation/check.hpp"
#include "input/finite_values.hpp"
#include "input/resolve_neighborhood.hpp"
#include "input/siminput_common.hpp"
#include "input/transform_checks.hpp"
#include "nuvo_siminput.h"

namespace nuvo {
namespace {

constexpr int kMaxTrainImage = 100;
constexpr int kMaxNeighbors = 1000;
constexpr int kMaxPostProcessingPath = 100;
constexpr int kMaxRealization = 1000000;
constexpr double kMaxRangeExtension = 10.0;
constexpr double kMaxTolerance = 100.0;
// Lower bound of densities, distance thresholds and scan fractions.
constexpr double kSmallestFraction = 1e-6;
constexpr double kLpPowerTolerance = 1e-10;

// 0 when v lies in [lo, hi]; tooSmall below it or for a NaN, tooLarge above it.
int rangeVerdict(double v, double lo, double hi, int tooSmall, int tooLarge) {
  if (!(v >= lo)) return tooSmall;
  return v > hi ? tooLarge : 0;
}

template <typename... Pointers>
bool allAllocated(const Pointers *...p) {
  return ((p != nullptr) && ...);
}

bool nameTooLong(const char *name) {
  return name != nullptr && strnlen(name, NUVO_FILE_NAME_MAX + 1) > NUVO_FILE_NAME_MAX;
}

bool anySimGridTi(const nuvo_simInput &si) {
  for (int t = 0; t < si.ntrainImage; ++t)
    if (isSimGridTi(si, t)) return true;
  return false;
}

bool usesHomothetyOrRotation(const nuvo_simInput &si) {
  return si.homothetyUsage != 0 || si.rotationUsage != 0;
}

bool isTiRangeMode(int radiusMode) {
  return radiusMode >= SEARCHNEIGHBORHOOD_RADIUS_TI_RANGE_DEFAULT &&
         radiusMode <= SEARCHNEIGHBORHOOD_RADIUS_TI_RANGE_XYZ;
}

int checkOutputs(const nuvo_simInput &si) {
  NUVO_FAIL_IF(si.nvar < 1, -629);
  NUVO_FAIL_IF(si.simImage == nullptr || si.simImage->nvar != si.nvar, -645);
  NUVO_FAIL_IF(si.simImage->grid == nullptr, kMemoryNotAllocated);
  const signed char *flag = si.outputVarFlag;
  NUVO_FAIL_IF(
      flag == nullptr || std::none_of(flag, flag + si.nvar, [](signed char f) { return f != 0; }),
      -647);
  for (int iv = 0; si.formatStringVar != nullptr && iv < si.nvar; ++iv)
    NUVO_FAIL_IF(si.formatStringVar[iv] == nullptr || si.formatStringVar[iv][0] != '%', -648);
  NUVO_FAIL_IF(static_cast<unsigned>(si.outputSimJob) > OUTPUT_SIM_ONE_FILE_PER_REALIZATION, -651);
  const int nname = outputSimImageFileCount(si.outputSimJob, si.outputVarFlag, si.nvar);
  NUVO_FAIL_IF(nname > 0 && si.outputSimImageFileName == nullptr, kMemoryNotAllocated);
  for (int k = 0; k < nname; ++k) NUVO_FAIL_IF(nameTooLong(si.outputSimImageFileName[k]), -652);
  // Each map asked for is written to files named from its prefix.
  const std::pair<signed char, const char *> maps[] = {
      {si.outputPathIndexFlag, si.outputPathIndexFileName},
      {si.outputErrorFlag, si.outputErrorFileName},
      {si.outputTiGridNodeIndexFlag, si.outputTiGridNodeIndexFileName},
      {si.outputTiIndexFlag, si.outputTiIndexFileName}};
  for (int m = 0; m < 4; ++m) {
    NUVO_FAIL_IF(maps[m].first != 0 && maps[m].second == nullptr, kMemoryNotAllocated);
    NUVO_FAIL_IF(nameTooLong(maps[m].second), -595 - m);
  }
  NUVO_FAIL_IF(nameTooLong(si.outputReportFileName), -653);
  return 0;
}

int checkTrainingImages(const nuvo_simInput &si) {
  NUVO_FAIL_IF(si.ntrainImage < 1, -656);
  NUVO_FAIL_IF(si.ntrainImage > kMaxTrainImage, -657);
  int nsimGrid = 0;
  for (int t = 0; t < si.ntrainImage; ++t) {
    if (isSimGridTi(si, t)) {
      ++nsimGrid;
      continue;
    }
    NUVO_FAIL_IF(si.trainImage == nullptr, kMemoryNotAllocated);
    const nuvo_image &ti = si.trainImage[t];
    NUVO_FAIL_IF(ti.nvar != si.nvar, -655);
    NUVO_FAIL_IF(ti.grid == nullptr || ti.var == nullptr, kMemoryNotAllocated);
  }
  NUVO_FAIL_IF(nsimGrid > 1, -654);
  NUVO_FAIL_IF(si.trainValueRangeExtensionMax > kMaxRangeExtension, -1151);
  NUVO_FAIL_IF(static_cast<unsigned>(si.normalizingType) > NORMALIZING_NORMAL, -1155);
  return 0;
}

// Rescaling maps the training values onto a target interval: meaningless for
// categories (distance type 0), for relative distances, and when the simulation
// grid is a training image.
int checkRescaling(const nuvo_simInput &si, int iv) {
  const int mode = si.rescalingMode[iv];
  NUVO_FAIL_IF(static_cast<unsigned>(mode) > RESCALING_MEAN_LENGTH, -2130);
  if (mode == RESCALING_NONE) return 0;
  const bool minMax = mode == RESCALING_MIN_MAX;
  NUVO_FAIL_IF(si.distanceType[iv] == 0, minMax ? -2131 : -2133);
  NUVO_FAIL_IF(si.relativeDistanceFlag[iv] != 0, minMax ? -2132 : -2134);
  NUVO_FAIL_IF(anySimGridTi(si), minMax ? -2141 : -2142);
  return 0;
}

int checkDistances(const nuvo_simInput &si) {
  NUVO_FAIL_IF(!allAllocated(si.distanceType, si.relativeDistanceFlag, si.rescalingMode),
               kMemoryNotAllocated);
  for (int iv = 0; iv < si.nvar; ++iv) {
    const int type = si.distanceType[iv];
    NUVO_FAIL_IF(static_cast<unsigned>(type) > 4u, -667);
    NUVO_FAIL_IF(si.relativeDistanceFlag[iv] != 0 && type == 0, -710);
    if (type == 3) {
      NUVO_FAIL_IF(!allAllocated(si.powerLpDistance, si.powerLpDistanceInv), kMemoryNotAllocated);
      const double p = si.powerLpDistance[iv];
      NUVO_FAIL_IF(!(p > 0.0), -668);
      NUVO_FAIL_IF(!(std::fabs(p * si.powerLpDistanceInv[iv] - 1.0) <= kLpPowerTolerance), -669);
    }
    NUVO_TRY(checkRescaling(si, iv));
  }
  return 0;
}

int checkNeighborhoods(nuvo_simInput &si, nuvo_progressMonitor *pm, nuvo_progressCallback callback,
                       int *error) {
  if (si.searchNeighborhoodParameters == nullptr) {
    *error = kMemoryNotAllocated;
    return 0;
  }
  const bool simGridTi = anySimGridTi(si);
  for (int iv = 0; iv < si.nvar; ++iv) {
    const nuvo_searchNeighborhoodParameters &p = si.searchNeighborhoodParameters[iv];
    NUVOValidateSearchNeighborhoodParameters(&p, error);
    if (*error == 0 && simGridTi && isTiRangeMode(p.radiusMode)) *error = -689;
    if (*error != 0) return 0;
    NUVO_TRY(resolveSearchNeighborhood(si, iv, pm, callback, error));
    if (*error != 0) return 0;
  }
  return 0;
}

// Maximal number and density of the neighbors in a data event (main settings or
// post-processing ones).
int checkDataEvents(const nuvo_simInput &si, const int *nneighbor, const double *density) {
  NUVO_FAIL_IF(!allAllocated(nneighbor, density), kMemoryNotAllocated);
  for (int iv = 0; iv < si.nvar; ++iv) {
    NUVO_FAIL_IF(nneighbor[iv] < 1, -663);
    NUVO_FAIL_IF(nneighbor[iv] > kMaxNeighbors, -664);
    NUVO_TRY(rangeVerdict(density[iv], kSmallestFraction, 1.0, -665, -666));
  }
  return 0;
}

int checkWeightsAndPath(const nuvo_simInput &si) {
  NUVO_FAIL_IF(!allAllocated(si.conditioningWeightFactor, si.simAndPathParameters),
               kMemoryNotAllocated);
  for (int iv = 0; iv < si.nvar; ++iv) NUVO_FAIL_IF(!(si.conditioningWeightFactor[iv] > 0.0), -670);
  int error = 0;
  NUVOValidateSimAndPathParameters(si.simAndPathParameters, &error);
  return error;
}

int checkThresholds(const nuvo_simInput &si, const double *threshold) {
  NUVO_FAIL_IF(threshold == nullptr, kMemoryNotAllocated);
  for (int iv = 0; iv < si.nvar; ++iv)
    NUVO_TRY(rangeVerdict(threshold[iv], kSmallestFraction, 1.0, -672, -673));
  return 0;
}

// The constraint records of the variables that use them, variable by variable.
int checkConstraints(nuvo_simInput &si, nuvo_progressMonitor *pm, nuvo_progressCallback callback,
                     int *error) {
  for (int iv = 0; iv < si.nvar && *error == 0; ++iv) {
    if (si.softProbability != nullptr &&
        si.softProbability[iv].probabilityConstraintUsage != NUVO_PROBABILITY_CONSTRAINT_NONE)
      NUVO_TRY(NUVOValidateSoftProbability(&si.softProbability[iv], pm, callback, error));
    if (*error == 0 && si.connectivity != nullptr &&
        si.connectivity[iv].connectivityConstraintUsage != NUVO_CONNECTIVITY_NONE)
      NUVOValidateConnectivity(&si.connectivity[iv], error);
    if (*error == 0 && si.blockData != nullptr &&
        si.blockData[iv].blockDataUsage != NUVO_BLOCK_DATA_NONE)
      NUVO_TRY(NUVOValidateBlockData(&si.blockData[iv], pm, callback, error));
  }
  return 0;
}

// Scan fractions of the training images; with homothety or rotation the same
// bounds apply, reported with their own codes.
int checkScanFractions(const nuvo_simInput &si, const double *fraction) {
  NUVO_FAIL_IF(fraction == nullptr, kMemoryNotAllocated);
  const bool transformed = usesHomothetyOrRotation(si);
  for (int t = 0; t < si.ntrainImage; ++t)
    NUVO_TRY(rangeVerdict(fraction[t], kSmallestFraction, 1.0, transformed ? -734 : -674,
                          transformed ? -735 : -675));
  return 0;
}

// Pyramids against the rest of the input: the deepest variable must reach the
// general number of levels; a variable compared by non-matching nodes (distance
// type 0) is a category and needs a categorical pyramid type, any other needs the
// continuous one; probability constraints, block data and connectivity patterns
// act on the full-resolution grid only and are excluded.
int checkPyramidsWithInput(const nuvo_simInput &si) {
  int deepest = 0;
  for (int iv = 0; iv < si.nvar; ++iv) deepest = std::max(deepest, si.pyramidParameters[iv].nlevel);
  NUVO_FAIL_IF(deepest != si.pyramidGeneralParameters->npyramidLevel, -3655);
  for (int iv = 0; iv < si.nvar; ++iv) {
    if (si.pyramidParameters[iv].nlevel < 1) continue;
    const bool categoricalType = si.pyramidParameters[iv].pyramidType != PYRAMID_CONTINUOUS;
    const bool categoricalDistance = si.distanceType[iv] == 0;
    NUVO_FAIL_IF(categoricalType && !categoricalDistance, -3657);
    NUVO_FAIL_IF(!categoricalType && categoricalDistance, -3658);
  }
  for (int iv = 0; iv < si.nvar; ++iv)
    NUVO_FAIL_IF(
        si.softProbability != nullptr &&
            si.softProbability[iv].probabilityConstraintUsage != NUVO_PROBABILITY_CONSTRAINT_NONE,
        -3665);
  for (int iv = 0; iv < si.nvar; ++iv)
    NUVO_FAIL_IF(si.blockData != nullptr && si.blockData[iv].blockDataUsage != NUVO_BLOCK_DATA_NONE,
                 -3666);
  for (int iv = 0; iv < si.nvar; ++iv)
    NUVO_FAIL_IF(si.connectivity != nullptr &&
                     si.connectivity[iv].connectivityConstraintUsage >= NUVO_CONNECTIVITY_PATTERN,
                 -3667);
  return 0;
}

int checkPyramids(const nuvo_simInput &si, nuvo_progressMonitor *pm, nuvo_progressCallback callback,
                  int *error) {
  const nuvo_pyramidGeneralParameters *general = si.pyramidGeneralParameters;
  if (general == nullptr) return 0;
  NUVO_TRY(NUVOValidatePyramidGeneralParameters(general, pm, callback, error));
  if (*error != 0 || general->npyramidLevel < 1) return 0;
  if (si.pyramidParameters == nullptr) {
    *error = kMemoryNotAllocated;
    return 0;
  }
  for (int iv = 0; iv < si.nvar && *error == 0; ++iv)
    NUVO_TRY(NUVOValidatePyramidParameters(&si.pyramidParameters[iv], pm, callback, error));
  if (*error == 0) *error = checkPyramidsWithInput(si);
  return 0;
}

int checkPostProcessing(const nuvo_simInput &si) {
  NUVO_TRY(rangeVerdict(si.tolerance, 0.0, kMaxTolerance, -676, -677));
  NUVO_FAIL_IF(si.npostProcessingPathMax < 0, -1661);
  NUVO_FAIL_IF(si.npostProcessingPathMax > kMaxPostProcessingPath, -1662);
  if (si.npostProcessingPathMax == 0) return 0;
  NUVO_TRY(checkDataEvents(si, si.postProcessingNneighboringNode,
                           si.postProcessingNeighboringNodeDensity));
  NUVO_TRY(checkThresholds(si, si.postProcessingDistanceThreshold));
  return checkScanFractions(si, si.postProcessingMaxScanFraction);
}

int checkTransforms(const nuvo_simInput &si) {
  NUVO_TRY(checkTransform(homothetyParameters(si), si));
  return checkTransform(rotationParameters(si), si);
}

// The local probabilities of the training images: one variable per training
// image on the simulation grid, informed, non-negative, summing to 1 at every
// node (within 1e-6).
int checkTrainImagePdf(const nuvo_simInput &si) {
  if (si.ntrainImage < 2) return 0;
  const nuvo_image *pdf = si.pdfTrainImage;
  NUVO_FAIL_IF(pdf == nullptr || pdf->grid == nullptr || pdf->var == nullptr, -1651);
  NUVO_FAIL_IF(NUVOCmpGrid(pdf->grid, si.simImage->grid) != 0, -1652);
  NUVO_FAIL_IF(pdf->nvar != si.ntrainImage, -1653);
  const int nxyz = pdf->grid->nxyz;
  for (int k = 0; k < nxyz; ++k) {
    double sum = 0.0;
    for (int t = 0; t < si.ntrainImage; ++t) {
      const double p = pdf->var[static_cast<long long>(t) * nxyz + k];
      NUVO_FAIL_IF(p == NUVO_MISSING_VALUE, -1654);
      NUVO_FAIL_IF(p < 0.0, -1655);
      sum += p;
    }
    NUVO_FAIL_IF(std::fabs(sum - 1.0) > 1e-6, -1656);
  }
  return 0;
}

int validateSimInput(nuvo_simInput &si, nuvo_progressMonitor *pm, nuvo_progressCallback callback,
                     int *error) {
  *error = 0;
  NUVO_TRY(checkStop(pm));
  // Checks that only read the record give a verdict; the steps that may report
  // warnings also give a status, returned at once when not 0.
  const auto failed = [error](int verdict) {
    *error = verdict;
    return verdict != 0;
  };
  if (failed(checkOutputs(si)) || failed(checkTrainingImages(si)) || failed(checkDistances(si)))
    return 0;
  NUVO_TRY(checkNeighborhoods(si, pm, callback, error));
  if (*error != 0 || failed(checkDataEvents(si, si.nneighboringNode, si.neighboringNodeDensity)) ||
      failed(checkWeightsAndPath(si)) || failed(checkThresholds(si, si.distanceThreshold)))
    return 0;
  NUVO_TRY(checkConstraints(si, pm, callback, error));
  if (*error != 0 || failed(checkProbabilityConstraintsWithInput(si)) ||
      failed(checkBlockDataWithInput(si)) || failed(checkConnectivityWithInput(si)) ||
      failed(checkScanFractions(si, si.maxScanFraction)))
    return 0;
  NUVO_TRY(checkPyramids(si, pm, callback, error));
  if (*error != 0 || failed(checkPostProcessing(si))) return 0;
  if (failed(si.nrealization > kMaxRealization ? -678 : 0)) return 0;
  if (failed(checkTrainImagePdf(si)) || failed(checkTransforms(si))) return 0;
  failed(checkFiniteValues(si));
  return 0;
}

}  // namespace
}  // namespace nuvo

extern "C" int NUVOValidateSimInput(nuvo_simInput *si, nuvo_progressMonitor *pm,
                                    nuvo_progressCallback callback, int *error) {
  return nuvo::guardedCall([&] { return nuvo::validateSimInput(*si, pm, callback, error); });
}
