// Simulation inputs built in memory, for the tests of conversion, validation and
// simulation and for the benchmarks: records allocated the way the library owns
// them (so NUVOFreeSimInput releases them), a bare input holding only what the
// data preparation reads, and a complete valid input.
#pragma once

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <initializer_list>

#include "input/text_io.hpp"
#include "nuvo_siminput.h"
#include "tests/support/make_image.hpp"

namespace nuvo_test {

template <typename T>
T *valuesOf(std::initializer_list<T> values) {
  T *a = static_cast<T *>(std::calloc(values.size(), sizeof(T)));
  std::copy(values.begin(), values.end(), a);
  return a;
}

template <typename T, typename Init>
T *initialisedRecords(int n, Init init) {
  T *a = static_cast<T *>(std::calloc(static_cast<std::size_t>(n), sizeof(T)));
  for (int i = 0; i < n; ++i) init(&a[i]);
  return a;
}

inline char *ownedText(const char *value) {
  char *t = nuvo::allocateText(NUVO_FILE_NAME_MAX + 1);
  std::strcpy(t, value);
  return t;
}

// Texts in slots of slotSize characters, as the parameter reader stores names.
inline char **ownedTexts(std::initializer_list<const char *> values, int slotSize) {
  char **slots = nuvo::allocateTextSlots(static_cast<int>(values.size()), slotSize);
  int k = 0;
  for (const char *v : values) std::strcpy(slots[k++], v);
  return slots;
}

// Stops the program when a step of the building fails: a half-built input would
// only make the test fail later for a reason far from its cause.
inline void require(int rc) {
  if (rc != 0) std::abort();
}

// Binary facies in stripes three nodes wide across x.
inline void makeStripeImage(nuvo_image *image, int nx, int ny, int nz) {
  require(makeImage(image, nx, ny, nz, {"facies"},
                    [](int ix, int, int, int) { return static_cast<double>(ix / 3 % 2); }));
}

// An image allocated the way the input owns its images, filled as by makeImage.
template <typename Value>
nuvo_image *newImage(int nx, int ny, int nz, const std::vector<std::string> &names, Value value) {
  nuvo_image *image = initialisedRecords<nuvo_image>(1, NUVOInitImage);
  require(makeImage(image, nx, ny, nz, names, value));
  return image;
}

inline nuvo_image *copyOf(const nuvo_image &image) {
  nuvo_image *copy = initialisedRecords<nuvo_image>(1, NUVOInitImage);
  require(NUVOCopyImage(&image, copy));
  return copy;
}

// Appends a zeroed record to a counted array and returns it.
template <typename T>
T *appendRecord(T *&array, int &n) {
  array = static_cast<T *>(std::realloc(array, (n + 1) * sizeof(T)));
  array[n] = T{};
  return &array[n++];
}

// Appends a copy of `ti` as training image, or the simulation grid itself when
// ti is null.
inline void addTrainImage(nuvo_simInput *si, const nuvo_image *ti) {
  int nflag = si->ntrainImage;
  *appendRecord(si->simGridAsTiFlag, nflag) = ti == nullptr ? 1 : 0;
  nuvo_image *slot = appendRecord(si->trainImage, si->ntrainImage);
  if (ti != nullptr) require(NUVOCopyImage(ti, slot));
}

inline void addDataImage(nuvo_simInput *si, const nuvo_image &image) {
  require(NUVOCopyImage(&image, appendRecord(si->dataImage, si->ndataImage)));
}

inline void addDataPointSet(nuvo_simInput *si, const nuvo_pointSet &ps) {
  require(NUVOCopyPointSet(&ps, appendRecord(si->dataPointSet, si->ndataPointSet)));
}

inline void setMask(nuvo_simInput *si, const nuvo_image &mask) {
  si->maskImageFlag = 1;
  si->maskImage = copyOf(mask);
}

// A simulation input freed with everything it holds at the end of the scope.
struct OwnedSimInput {
  OwnedSimInput() { NUVOInitSimInput(&si); }
  // A bare input: a copy of the simulation image and one distance type per
  // variable; training images, data and a mask are added with the functions above.
  OwnedSimInput(const nuvo_image &simImage, std::initializer_list<int> distanceType)
      : OwnedSimInput() {
    si.simImage = copyOf(simImage);
    si.nvar = simImage.nvar;
    si.distanceType = valuesOf<int>(distanceType);
  }
  ~OwnedSimInput() { NUVOFreeSimInput(&si); }
  OwnedSimInput(const OwnedSimInput &) = delete;
  OwnedSimInput &operator=(const OwnedSimInput &) = delete;

  nuvo_simInput si;
};

// Replaces the training images by n copies of the first one (none for n = 0),
// none of them the simulation grid, with scan fractions 0.5 and 0.2 (post-processing).
inline void setTrainingImageCount(nuvo_simInput *si, int n) {
  nuvo_image first;
  NUVOInitImage(&first);
  NUVOCopyImage(&si->trainImage[0], &first);
  for (int t = 0; t < si->ntrainImage; ++t) NUVOFreeImage(&si->trainImage[t]);
  std::free(si->trainImage);
  std::free(si->simGridAsTiFlag);
  std::free(si->maxScanFraction);
  std::free(si->postProcessingMaxScanFraction);
  si->ntrainImage = n;
  si->trainImage = static_cast<nuvo_image *>(std::calloc(n + 1, sizeof(nuvo_image)));
  si->simGridAsTiFlag = static_cast<signed char *>(std::calloc(n + 1, sizeof(signed char)));
  si->maxScanFraction = static_cast<double *>(std::calloc(n + 1, sizeof(double)));
  si->postProcessingMaxScanFraction = static_cast<double *>(std::calloc(n + 1, sizeof(double)));
  for (int t = 0; t < n; ++t) {
    NUVOInitImage(&si->trainImage[t]);
    NUVOCopyImage(&first, &si->trainImage[t]);
    si->maxScanFraction[t] = 0.5;
    si->postProcessingMaxScanFraction[t] = 0.2;
  }
  NUVOFreeImage(&first);
  // With several training images, each is used with the same probability everywhere.
  if (si->pdfTrainImage != nullptr) NUVOFreeImage(si->pdfTrainImage);
  std::free(si->pdfTrainImage);
  si->pdfTrainImage = nullptr;
  if (n > 1) {
    const nuvo_grid &g = *si->simImage->grid;
    si->pdfTrainImage = initialisedRecords<nuvo_image>(1, NUVOInitImage);
    NUVOMallocImage(si->pdfTrainImage, g.nxyz, n);
    *si->pdfTrainImage->grid = g;
    si->pdfTrainImage->nvar = n;
    si->pdfTrainImage->nxyzv = g.nxyz * n;
    for (int t = 0; t < n; ++t) std::snprintf(si->pdfTrainImage->varName[t], 128, "p%d", t);
    std::fill_n(si->pdfTrainImage->var, g.nxyz * n, 1.0 / n);
  }
}

// Replaces the simulation grid by an nx x ny x nz grid of missing values of the
// variable "facies".
inline void setSimGrid(nuvo_simInput *si, int nx, int ny, int nz) {
  NUVOFreeImage(si->simImage);
  require(makeImage(si->simImage, nx, ny, nz, {"facies"},
                    [](int, int, int, int) { return NUVO_MISSING_VALUE; }));
}

// Constant homothety ratios (usage 1: one value per axis, 2: lower and upper bounds).
inline void setHomothety(nuvo_simInput *si, int usage, std::initializer_list<double> x,
                         std::initializer_list<double> y, std::initializer_list<double> z) {
  si->homothetyUsage = usage;
  si->homothetyXRatioValue = valuesOf<double>(x);
  si->homothetyYRatioValue = valuesOf<double>(y);
  si->homothetyZRatioValue = valuesOf<double>(z);
}

// Constant rotation angles in degrees, as setHomothety.
inline void setRotation(nuvo_simInput *si, int usage, std::initializer_list<double> azimuth,
                        std::initializer_list<double> dip, std::initializer_list<double> plunge) {
  si->rotationUsage = usage;
  si->rotationAzimuthValue = valuesOf<double>(azimuth);
  si->rotationDipValue = valuesOf<double>(dip);
  si->rotationPlungeValue = valuesOf<double>(plunge);
}

// Fills an initialised record with a valid input: one categorical variable
// "facies" on a 30 x 30 x 1 simulation grid (all values missing), a copy of `ti`
// as the only training image, one output file, a manual isotropic neighborhood of
// radii 3, 3, 0, 24 neighbors, threshold 0.05, scan fraction 0.5, one
// post-processing path and one realization.
inline void buildValidSimInput(nuvo_simInput *si, const nuvo_image &ti) {
  si->simImage = initialisedRecords<nuvo_image>(1, NUVOInitImage);
  setSimGrid(si, 30, 30, 1);
  si->nvar = 1;
  si->outputVarFlag = valuesOf<signed char>({1});
  si->formatStringVar = ownedTexts({"%.10g"}, NUVO_VAR_NAME_MAX + 1);
  si->outputSimJob = OUTPUT_SIM_ALL_IN_ONE_FILE;
  si->outputSimImageFileName = ownedTexts({"sim.gslib"}, NUVO_FILE_NAME_MAX + 1);
  si->outputReportFlag = 1;
  si->outputReportFileName = ownedText("report.txt");
  addTrainImage(si, &ti);
  si->normalizingType = NORMALIZING_LINEAR;
  si->searchNeighborhoodParameters = initialisedRecords<nuvo_searchNeighborhoodParameters>(
      1, NUVOInitSearchNeighborhoodParameters);
  nuvo_searchNeighborhoodParameters &p = si->searchNeighborhoodParameters[0];
  p.radiusMode = SEARCHNEIGHBORHOOD_RADIUS_MANUAL;
  p.rx = p.ry = 3.0;
  p.anisotropyRatioMode = SEARCHNEIGHBORHOOD_ANISOTROPY_RATIO_ONE;
  si->nneighboringNode = valuesOf<int>({24});
  si->neighboringNodeDensity = valuesOf<double>({1.0});
  si->rescalingMode = valuesOf<int>({RESCALING_NONE});
  si->rescalingTargetMin = valuesOf<double>({0.0});
  si->rescalingTargetMax = valuesOf<double>({0.0});
  si->rescalingTargetMean = valuesOf<double>({0.0});
  si->rescalingTargetLength = valuesOf<double>({0.0});
  si->relativeDistanceFlag = valuesOf<signed char>({0});
  si->distanceType = valuesOf<int>({0});
  si->powerLpDistance = valuesOf<double>({2.0});
  si->powerLpDistanceInv = valuesOf<double>({0.5});
  si->conditioningWeightFactor = valuesOf<double>({1.0});
  si->simAndPathParameters =
      initialisedRecords<nuvo_simAndPathParameters>(1, NUVOInitSimAndPathParameters);
  si->distanceThreshold = valuesOf<double>({0.05});
  si->softProbability = initialisedRecords<nuvo_softProbability>(1, NUVOInitSoftProbability);
  si->connectivity = initialisedRecords<nuvo_connectivity>(1, NUVOInitConnectivity);
  si->blockData = initialisedRecords<nuvo_blockData>(1, NUVOInitBlockData);
  si->maxScanFraction = valuesOf<double>({0.5});
  si->pyramidGeneralParameters =
      initialisedRecords<nuvo_pyramidGeneralParameters>(1, NUVOInitPyramidGeneralParameters);
  si->npostProcessingPathMax = 1;
  si->postProcessingNneighboringNode = valuesOf<int>({8});
  si->postProcessingNeighboringNodeDensity = valuesOf<double>({1.0});
  si->postProcessingDistanceThreshold = valuesOf<double>({0.02});
  si->postProcessingMaxScanFraction = valuesOf<double>({0.2});
  si->seed = 1;
  si->seedIncrement = 1;
  si->nrealization = 1;
}

}  // namespace nuvo_test
