// General pyramid parameters: life cycle, text form, printing, conversion with
// the default factors, and validation. The record and its text form share the
// levels, the steps, the mode and the factor arrays; the text form adds the
// setting mode of each factor list.
#include <algorithm>
#include <cmath>
#include <cstdio>

#include "constraints/owned.hpp"
#include "data/stream_room.hpp"
#include "foundation/check.hpp"
#include "input/text_io.hpp"
#include "nuvo_pyramidparams.h"
#include "pyramid/keywords.hpp"

namespace nuvo {
namespace {

constexpr int kMaxLevel = 10;
constexpr int kMaxStep = 5;

// The value of MANUAL in the three setting-mode enumerations.
constexpr int kManual = 1;
static_assert(PYRAMID_NNEIGHBOR_ADAPTING_FACTOR_MANUAL == kManual &&
              PYRAMID_THRESHOLD_ADAPTING_FACTOR_MANUAL == kManual &&
              PYRAMID_MAX_SCAN_FRACTION_ADAPTING_FACTOR_MANUAL == kManual);

bool isHierarchical(int mode) {
  return mode == PYRAMID_SIM_HIERARCHICAL || mode == PYRAMID_SIM_HIERARCHICAL_USING_EXPANSION;
}

bool isPyramidMode(int mode) {
  return isHierarchical(mode) || mode == PYRAMID_SIM_ALL_LEVEL_ONE_BY_ONE;
}

// Length of factorMaxScanFraction: one factor per level, the simulation grid included.
int scanFractionCount(int mode, int n) {
  return isPyramidMode(mode) && n > 0 ? n + 1 : 0;
}

// A copy of the first count values of source (none when count < 1 or source is null).
template <typename T>
int copyPrefix(const T *source, int count, T **copy) {
  return count > 0 ? copyArray(source, count, copy) : 0;
}

// ---- Fields common to the record and its text form ----

template <typename Record>
void freeCommon(Record *p) {
  releaseArray(&p->kx);
  releaseArray(&p->ky);
  releaseArray(&p->kz);
  releaseArray(&p->factorNneighboringNode);
  releaseArray(&p->factorDistanceThreshold);
  releaseArray(&p->factorMaxScanFraction);
}

template <typename Record>
int copyLevels(const Record *in, nuvo_pyramidGeneralParameters *out) {
  const int n = in->npyramidLevel;
  out->npyramidLevel = n;
  out->pyramidSimulationMode = in->pyramidSimulationMode;
  NUVO_TRY(copyPrefix(in->kx, n, &out->kx));
  NUVO_TRY(copyPrefix(in->ky, n, &out->ky));
  return copyPrefix(in->kz, n, &out->kz);
}

// A factor list, one line per level, or one "NOT ALLOCATED" line. With perStep
// (the neighbor and threshold factors of a hierarchical mode) the list holds the
// four factors of each step and the factor of the coarsest level.
void printFactors(FILE *stream, const char *prefix, const char *title, const double *f, int n,
                  bool perStep) {
  if (f == nullptr) {
    std::fprintf(stream, "%s%s: %s\n", prefix, title, kNotAllocated);
    return;
  }
  std::fprintf(stream, "%s%s:\n", prefix, title);
  if (!perStep) {
    for (int j = 0; j <= n; ++j)
      std::fprintf(stream, "%sfactor for pyramid level %10d: %5.3lf\n", prefix, j, f[j]);
    return;
  }
  for (int j = 0; j < n; ++j) {
    const double *s = f + 4 * j;
    std::fprintf(stream,
                 "%s...for level %2d: %5.3lf, %5.3lf (a - cond / sim), %5.3lf, %5.3lf (b - cond / "
                 "sim)\n",
                 prefix, j, s[0], s[1], s[2], s[3]);
  }
  std::fprintf(stream, "%s...for coarsest level (%2d): %5.3lf (b)\n", prefix, n, f[4 * n]);
}

constexpr const char *kNneighborTitle =
    "Pyramid factor for maximal number of neighboring nodes (factorNneighboringNode)";
constexpr const char *kThresholdTitle =
    "Pyramid factor for distance threshold (factorDistanceThreshold)";
constexpr const char *kScanFractionTitle =
    "Pyramid factor for maximal scan fraction (factorMaxScanFraction)";

// The levels, the steps and the mode. False when there is no factor to print.
template <typename Record>
bool printLevels(const Record *p, const char *prefix, FILE *stream) {
  const int n = p->npyramidLevel;
  if (n < 1) {
    std::fprintf(stream, "%snpyramidLevel: %d (no use of pyramid)\n", prefix, n);
    return false;
  }
  std::fprintf(stream, "%snpyramidLevel: %d\n", prefix, n);
  std::fprintf(stream, "%sReduction factors (kx, ky, kz):\n", prefix);
  if (p->kx != nullptr && p->ky != nullptr && p->kz != nullptr) {
    for (int i = 0; i < n; ++i)
      std::fprintf(stream, "%sfor level %2d: %2d, %2d, %2d\n", prefix, i + 1, p->kx[i], p->ky[i],
                   p->kz[i]);
  }
  std::fprintf(stream, "%sPyramid simulation mode (pyramidSimulationMode):%s\n", prefix,
               keywordOf(kPyramidSimulationModeKeywords, p->pyramidSimulationMode));
  return isPyramidMode(p->pyramidSimulationMode);
}

// "Setting mode for factor (<field>):<keyword>" and, in manual mode, the factors.
void printSettingAndFactors(FILE *stream, const char *prefix, const char *field,
                            KeywordTable keywords, int settingMode, const char *title,
                            const double *f, int n, bool perStep) {
  std::fprintf(stream, "%sSetting mode for factor (%s):%s\n", prefix, field,
               keywordOf(keywords, settingMode));
  if (settingMode == kManual) printFactors(stream, prefix, title, f, n, perStep);
}

// ---- Reading the text form ----

// A number of levels larger than the bytes left in the stream cannot be
// followed by its steps: it is refused, with the code of the first step, before
// allocating for it.
int readSteps(nuvo_pyramidGeneralParametersASCII *p, FILE *stream) {
  const int n = p->npyramidLevel;
  NUVO_FAIL_IF(!streamCanHold(stream, n), -3602);
  NUVO_TRY(allocateArray(&p->kx, n));
  NUVO_TRY(allocateArray(&p->ky, n));
  NUVO_TRY(allocateArray(&p->kz, n));
  for (int i = 0; i < n; ++i) {
    NUVO_TRY(readInt(stream, &p->kx[i], -3602));
    NUVO_TRY(readInt(stream, &p->ky[i], -3603));
    NUVO_TRY(readInt(stream, &p->kz[i], -3604));
  }
  return 0;
}

// A setting-mode keyword and, in manual mode, count factors.
int readFactorList(FILE *stream, KeywordTable keywords, int *settingMode, int modeCode,
                   double **factors, int count, int factorCode) {
  NUVO_TRY(readKeyword(stream, keywords, settingMode, modeCode));
  if (*settingMode != kManual) return 0;
  NUVO_TRY(allocateArray(factors, count));
  return readList(stream, *factors, count, factorCode);
}

int readGeneral(nuvo_pyramidGeneralParametersASCII *p, FILE *stream) {
  NUVO_TRY(readInt(stream, &p->npyramidLevel, -3600));
  const int n = p->npyramidLevel;
  if (n < 1) return 0;
  NUVO_TRY(readSteps(p, stream));
  NUVO_TRY(readKeyword(stream, kPyramidSimulationModeKeywords, &p->pyramidSimulationMode, -3601));
  const int mode = p->pyramidSimulationMode;
  if (mode == PYRAMID_SIM_NONE) return 0;
  const int nfactor = NUVOGetPyramidNFactor(mode, n);
  NUVO_TRY(readFactorList(stream, kPyramidNneighborFactorModeKeywords,
                          &p->factorNneighboringNodeSettingMode, -3590, &p->factorNneighboringNode,
                          nfactor, -3595));
  NUVO_TRY(readFactorList(stream, kPyramidThresholdFactorModeKeywords,
                          &p->factorDistanceThresholdSettingMode, -3591,
                          &p->factorDistanceThreshold, nfactor, -3596));
  return readFactorList(stream, kPyramidMaxScanFractionFactorModeKeywords,
                        &p->factorMaxScanFractionSettingMode, -3592, &p->factorMaxScanFraction,
                        n + 1, -3597);
}

// ---- Default factors ----

// Neighbor factors: a half of the neighbors on both sides of the fine-to-coarse
// step; on the way back a quarter (a half next to the coarsest level) for the
// simulated level and a third of that for the conditioning level; all of them
// at the coarsest level. One level after another: an equal share per level.
void defaultNneighborFactors(int mode, int n, double *f) {
  if (!isHierarchical(mode)) {
    std::fill_n(f, n + 1, 1.0 / (n + 1));
    return;
  }
  for (int j = 0; j < n; ++j) {
    const double fbSim = std::pow(0.5, std::min(n - j, 2));
    f[4 * j] = 0.5;
    f[4 * j + 1] = 0.5;
    f[4 * j + 2] = fbSim / 3.0;
    f[4 * j + 3] = fbSim;
  }
  f[4 * n] = 1.0;
}

// Scan-fraction factors grow with the size ratio of each reduction, so that about
// the same number of coarse training-image nodes is scanned at every level.
// A direction whose step is 0 (or not given) keeps its size.
int sizeRatio(const int *k, int i) {
  return k != nullptr ? std::max(k[i], 1) : 1;
}

void defaultScanFractionFactors(const nuvo_pyramidGeneralParametersASCII *in, double *f) {
  f[0] = 1.0;
  for (int j = 1; j <= in->npyramidLevel; ++j) {
    const int i = j - 1;
    f[j] = f[i] * (sizeRatio(in->kx, i) * sizeRatio(in->ky, i) * sizeRatio(in->kz, i));
  }
}

// A manual list is copied; a default one is allocated and filled by setDefault.
template <typename SetDefault>
int resolveFactors(int settingMode, const double *manual, int count, double **out,
                   SetDefault setDefault) {
  if (settingMode == kManual) return copyPrefix(manual, count, out);
  NUVO_TRY(allocateArray(out, count));
  setDefault(*out);
  return 0;
}

int convert(const nuvo_pyramidGeneralParametersASCII *in, nuvo_pyramidGeneralParameters *out) {
  NUVO_TRY(copyLevels(in, out));
  const int n = in->npyramidLevel;
  const int mode = in->pyramidSimulationMode;
  if (!isPyramidMode(mode) || n < 1) return 0;
  const int nfactor = NUVOGetPyramidNFactor(mode, n);
  NUVO_TRY(resolveFactors(in->factorNneighboringNodeSettingMode, in->factorNneighboringNode,
                          nfactor, &out->factorNneighboringNode,
                          [&](double *f) { defaultNneighborFactors(mode, n, f); }));
  NUVO_TRY(resolveFactors(in->factorDistanceThresholdSettingMode, in->factorDistanceThreshold,
                          nfactor, &out->factorDistanceThreshold,
                          [&](double *f) { std::fill_n(f, nfactor, 1.0); }));
  return resolveFactors(in->factorMaxScanFractionSettingMode, in->factorMaxScanFraction, n + 1,
                        &out->factorMaxScanFraction,
                        [&](double *f) { defaultScanFractionFactors(in, f); });
}

// ---- Validation ----

int validateStep(const int *k, int i, int belowCode, int aboveCode) {
  NUVO_FAIL_IF(k == nullptr || k[i] < 0, belowCode);
  NUVO_FAIL_IF(k[i] > kMaxStep, aboveCode);
  return 0;
}

// A factor outside [1e-6, max] (a missing list counts as too small).
int validateFactor(const double *f, int i, double max, int belowCode, int aboveCode) {
  NUVO_FAIL_IF(f == nullptr || f[i] < 1e-6, belowCode);
  NUVO_FAIL_IF(f[i] > max, aboveCode);
  return 0;
}

int validate(const nuvo_pyramidGeneralParameters *p) {
  const int n = p->npyramidLevel;
  NUVO_FAIL_IF(n < 0, -3621);
  NUVO_FAIL_IF(n > kMaxLevel, -3622);
  if (n == 0) return 0;
  for (int i = 0; i < n; ++i) {
    NUVO_TRY(validateStep(p->kx, i, -3624, -3625));
    NUVO_TRY(validateStep(p->ky, i, -3626, -3627));
    NUVO_TRY(validateStep(p->kz, i, -3628, -3629));
  }
  NUVO_FAIL_IF(!isPyramidMode(p->pyramidSimulationMode), -3623);
  const int nfactor = NUVOGetPyramidNFactor(p->pyramidSimulationMode, n);
  for (int i = 0; i < nfactor; ++i) {
    NUVO_TRY(validateFactor(p->factorNneighboringNode, i, 100.0, -3617, -3618));
    NUVO_TRY(validateFactor(p->factorDistanceThreshold, i, 1e6, -3619, -3620));
  }
  for (int i = 0; i <= n; ++i)
    NUVO_TRY(validateFactor(p->factorMaxScanFraction, i, 1e6, -3651, -3652));
  return 0;
}

}  // namespace
}  // namespace nuvo

extern "C" {

int NUVOGetPyramidNFactor(int pyramidSimulationMode, int npyramidLevel) {
  if (npyramidLevel < 1) return 0;
  if (nuvo::isHierarchical(pyramidSimulationMode)) return 4 * npyramidLevel + 1;
  if (pyramidSimulationMode == PYRAMID_SIM_ALL_LEVEL_ONE_BY_ONE) return npyramidLevel + 1;
  return 0;
}

void NUVOInitPyramidGeneralParameters(nuvo_pyramidGeneralParameters *p) {
  *p = nuvo_pyramidGeneralParameters{};
}

int NUVOCopyPyramidGeneralParameters(const nuvo_pyramidGeneralParameters *in,
                                     nuvo_pyramidGeneralParameters *out) {
  NUVO_TRY(nuvo::copyLevels(in, out));
  const int mode = in->pyramidSimulationMode;
  const int n = in->npyramidLevel;
  const int nfactor = NUVOGetPyramidNFactor(mode, n);
  NUVO_TRY(nuvo::copyPrefix(in->factorNneighboringNode, nfactor, &out->factorNneighboringNode));
  NUVO_TRY(nuvo::copyPrefix(in->factorDistanceThreshold, nfactor, &out->factorDistanceThreshold));
  return nuvo::copyPrefix(in->factorMaxScanFraction, nuvo::scanFractionCount(mode, n),
                          &out->factorMaxScanFraction);
}

void NUVOFreePyramidGeneralParameters(nuvo_pyramidGeneralParameters *p) {
  nuvo::freeCommon(p);
  NUVOInitPyramidGeneralParameters(p);
}

int NUVOPrintPyramidGeneralParameters(const nuvo_pyramidGeneralParameters *p, const char *prefix,
                                      FILE *stream) {
  if (!nuvo::printLevels(p, prefix, stream)) return 0;
  const int n = p->npyramidLevel;
  const bool perStep = nuvo::isHierarchical(p->pyramidSimulationMode);
  nuvo::printFactors(stream, prefix, nuvo::kNneighborTitle, p->factorNneighboringNode, n, perStep);
  nuvo::printFactors(stream, prefix, nuvo::kThresholdTitle, p->factorDistanceThreshold, n, perStep);
  nuvo::printFactors(stream, prefix, nuvo::kScanFractionTitle, p->factorMaxScanFraction, n, false);
  return 0;
}

int NUVOValidatePyramidGeneralParameters(const nuvo_pyramidGeneralParameters *p,
                                         nuvo_progressMonitor *, nuvo_progressCallback,
                                         int *error) {
  *error = nuvo::validate(p);
  return 0;
}

void NUVOInitPyramidGeneralParametersASCII(nuvo_pyramidGeneralParametersASCII *p) {
  *p = nuvo_pyramidGeneralParametersASCII{};
}

void NUVOFreePyramidGeneralParametersASCII(nuvo_pyramidGeneralParametersASCII *p) {
  nuvo::freeCommon(p);
  NUVOInitPyramidGeneralParametersASCII(p);
}

int NUVOPrintPyramidGeneralParametersASCII(const nuvo_pyramidGeneralParametersASCII *p,
                                           const char *prefix, FILE *stream) {
  if (!nuvo::printLevels(p, prefix, stream)) return 0;
  const int n = p->npyramidLevel;
  const bool perStep = nuvo::isHierarchical(p->pyramidSimulationMode);
  nuvo::printSettingAndFactors(stream, prefix, "factorNneighboringNodeSettingMode",
                               nuvo::kPyramidNneighborFactorModeKeywords,
                               p->factorNneighboringNodeSettingMode, nuvo::kNneighborTitle,
                               p->factorNneighboringNode, n, perStep);
  nuvo::printSettingAndFactors(stream, prefix, "factorDistanceThresholdSettingMode",
                               nuvo::kPyramidThresholdFactorModeKeywords,
                               p->factorDistanceThresholdSettingMode, nuvo::kThresholdTitle,
                               p->factorDistanceThreshold, n, perStep);
  nuvo::printSettingAndFactors(stream, prefix, "factorMaxScanFractionSettingMode",
                               nuvo::kPyramidMaxScanFractionFactorModeKeywords,
                               p->factorMaxScanFractionSettingMode, nuvo::kScanFractionTitle,
                               p->factorMaxScanFraction, n, false);
  return 0;
}

int NUVOReadPyramidGeneralParametersASCII(nuvo_pyramidGeneralParametersASCII *p, FILE *stream) {
  return nuvo::readGeneral(p, stream);
}

int NUVOPyramidGeneralParametersASCIIToPyramidGeneralParameters(
    const nuvo_pyramidGeneralParametersASCII *in, nuvo_pyramidGeneralParameters *out) {
  return nuvo::convert(in, out);
}

}  // extern "C"
