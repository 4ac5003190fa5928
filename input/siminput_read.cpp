// NUVOReadSimInputASCII: the parameter file, section after section, into the
// text twin of the simulation input. Every field is read with the shared token
// readers, which give the code of the field on any failure; arrays are
// allocated as their section is reached, so a failed read leaves a record that
// NUVOFreeSimInputASCII releases.
#include <cstring>

#include "data/stream_room.hpp"
#include "foundation/check.hpp"
#include "input/keywords.hpp"
#include "input/siminput_common.hpp"
#include "input/text_io.hpp"
#include "nuvo_siminput.h"
#include "nuvo_text.h"

namespace nuvo {
namespace {

constexpr int kVarSlot = NUVO_VAR_NAME_MAX + 1;
constexpr int kFileSlot = NUVO_FILE_NAME_MAX + 1;

// Reads a count of items that follow, at least min (tooSmallCode otherwise).
// Each item takes one byte at least, so a count larger than the rest of the
// stream would make reading fail among the items: it is refused with the code of
// the first item before anything is allocated for them.
int readCount(FILE *stream, int *count, int min, int code, int tooSmallCode, int itemCode) {
  NUVO_TRY(readInt(stream, count, code));
  NUVO_FAIL_IF(*count < min, tooSmallCode);
  NUVO_FAIL_IF(*count > 0 && !streamCanHold(stream, *count), itemCode);
  return 0;
}

// One owned file name (a word of at most NUVO_FILE_NAME_MAX characters).
int readFileName(FILE *stream, char **name, int code, int tooLongCode) {
  *name = allocateText(kFileSlot);
  NUVO_FAIL_IF(*name == nullptr, kAllocationFailed);
  return readWord(stream, *name, NUVO_FILE_NAME_MAX, code, tooLongCode);
}

// n owned file names in one block of slots.
int readFileNames(FILE *stream, int n, char ***names, int code, int tooLongCode) {
  if (n <= 0) return 0;
  *names = allocateTextSlots(n, kFileSlot);
  NUVO_FAIL_IF(*names == nullptr, kAllocationFailed);
  for (int i = 0; i < n; ++i)
    NUVO_TRY(readWord(stream, (*names)[i], NUVO_FILE_NAME_MAX, code, tooLongCode));
  return 0;
}

// A flag and, when it is 1, a file name.
int readFlaggedFileName(FILE *stream, signed char *flag, char **name, int flagCode) {
  NUVO_TRY(readFlag(stream, flag, flagCode));
  return *flag ? readFileName(stream, name, flagCode - 1, flagCode - 2) : 0;
}

// An owned array of n values read in a row, all with the same code.
template <typename T>
int readArray(FILE *stream, int n, T **values, int code) {
  NUVO_TRY(allocateArray(n, values));
  return readList(stream, *values, n, code);
}

// n initialised records, each read with read(record, stream).
template <typename T, typename Init, typename Read>
int readRecords(FILE *stream, int n, T **records, Init init, Read read) {
  NUVO_TRY(allocateRecords(n, records, init));
  for (int i = 0; i < n; ++i) NUVO_TRY(read(&(*records)[i], stream));
  return 0;
}

// Sections 1 and 2: the grid, then per variable its name, output flag and format.
int readGridAndVariables(nuvo_simInputASCII *si, FILE *stream) {
  int *counts[] = {&si->simGridNx, &si->simGridNy, &si->simGridNz};
  for (int k = 0; k < 3; ++k) NUVO_TRY(readInt(stream, counts[k], -778 - k));
  double *geometry[] = {&si->simGridSx, &si->simGridSy, &si->simGridSz,
                        &si->simGridOx, &si->simGridOy, &si->simGridOz};
  for (int k = 0; k < 6; ++k) NUVO_TRY(readDouble(stream, geometry[k], -781 - k));
  NUVO_TRY(readCount(stream, &si->nsimVar, 1, -787, -629, -788));
  const int nvar = si->nsimVar;
  si->simVarName = allocateTextSlots(nvar, kVarSlot);
  si->formatStringVar = allocateTextSlots(nvar, kVarSlot);
  NUVO_FAIL_IF(si->simVarName == nullptr || si->formatStringVar == nullptr, kAllocationFailed);
  NUVO_TRY(allocateArray(nvar, &si->outputVarFlag));
  for (int iv = 0; iv < nvar; ++iv) {
    NUVO_TRY(readWord(stream, si->simVarName[iv], NUVO_VAR_NAME_MAX, -788, -789));
    NUVO_TRY(readFlag(stream, &si->outputVarFlag[iv], -790));
    if (si->outputVarFlag[iv])
      NUVO_TRY(readWord(stream, si->formatStringVar[iv], NUVO_VAR_NAME_MAX, -872, -873));
    else
      std::strcpy(si->formatStringVar[iv], NUVO_DEFAULT_FORMAT_NAME);
  }
  return 0;
}

// Sections 3 to 5: how realizations are written, the additional maps, the report.
int readOutput(nuvo_simInputASCII *si, FILE *stream) {
  NUVO_TRY(readKeyword(stream, kOutputSimJobKeywords, &si->outputSimJob, -791));
  NUVO_TRY(readFileNames(stream,
                         outputSimImageFileCount(si->outputSimJob, si->outputVarFlag, si->nsimVar),
                         &si->outputSimImageFileName, -792, -793));
  NUVO_TRY(
      readFlaggedFileName(stream, &si->outputPathIndexFlag, &si->outputPathIndexFileName, -904));
  NUVO_TRY(readFlaggedFileName(stream, &si->outputErrorFlag, &si->outputErrorFileName, -908));
  NUVO_TRY(readFlaggedFileName(stream, &si->outputTiGridNodeIndexFlag,
                               &si->outputTiGridNodeIndexFileName, -912));
  NUVO_TRY(readFlaggedFileName(stream, &si->outputTiIndexFlag, &si->outputTiIndexFileName, -916));
  return readFlaggedFileName(stream, &si->outputReportFlag, &si->outputReportFileName, -900);
}

// Sections 6 to 9: training images, conditioning data and mask.
int readImagesAndData(nuvo_simInputASCII *si, FILE *stream) {
  NUVO_TRY(readCount(stream, &si->ntrainImage, 1, -794, -794, -795));
  NUVO_TRY(readFileNames(stream, si->ntrainImage, &si->trainImageFileName, -795, -796));
  if (si->ntrainImage > 1) NUVO_TRY(readFileName(stream, &si->pdfTrainImageFileName, -797, -798));
  NUVO_TRY(readCount(stream, &si->ndataImageFile, 0, -799, -799, -800));
  NUVO_TRY(readFileNames(stream, si->ndataImageFile, &si->dataImageFileName, -800, -801));
  NUVO_TRY(readCount(stream, &si->ndataPointSetFile, 0, -802, -802, -803));
  NUVO_TRY(readFileNames(stream, si->ndataPointSetFile, &si->dataPointSetFileName, -803, -804));
  return readFlaggedFileName(stream, &si->maskImageFlag, &si->maskImageFileName, -805);
}

// One axis of a transform: the flag, then an image file or `usage` values. The
// four codes of an axis follow each other from flagCode down.
struct TransformAxis {
  signed char *flag;
  char **fileName;
  double **values;
};

// Sections 10 and 11: the usage (0, 1 or 2), then three axes.
int readTransform(FILE *stream, int *usage, const TransformAxis (&axes)[3], int usageCode) {
  NUVO_TRY(readInt(stream, usage, usageCode));
  NUVO_FAIL_IF(*usage < 0 || *usage > 2, usageCode);
  for (int k = 0; *usage > 0 && k < 3; ++k) {
    const int flagCode = usageCode - 1 - 4 * k;
    const TransformAxis &axis = axes[k];
    NUVO_TRY(readFlag(stream, axis.flag, flagCode));
    if (*axis.flag)
      NUVO_TRY(readFileName(stream, axis.fileName, flagCode - 1, flagCode - 2));
    else
      NUVO_TRY(readArray(stream, *usage, axis.values, flagCode - 3));
  }
  return 0;
}

int readTransforms(nuvo_simInputASCII *si, FILE *stream) {
  NUVO_TRY(readTransform(stream, &si->homothetyUsage,
                         {{&si->homothetyXRatioImageFlag, &si->homothetyXRatioImageFileName,
                           &si->homothetyXRatioValue},
                          {&si->homothetyYRatioImageFlag, &si->homothetyYRatioImageFileName,
                           &si->homothetyYRatioValue},
                          {&si->homothetyZRatioImageFlag, &si->homothetyZRatioImageFileName,
                           &si->homothetyZRatioValue}},
                         -810));
  return readTransform(
      stream, &si->rotationUsage,
      {{&si->rotationAzimuthImageFlag, &si->rotationAzimuthImageFileName,
        &si->rotationAzimuthValue},
       {&si->rotationDipImageFlag, &si->rotationDipImageFileName, &si->rotationDipValue},
       {&si->rotationPlungeImageFlag, &si->rotationPlungeImageFileName, &si->rotationPlungeValue}},
      -830);
}

int readSearchNeighborhood(nuvo_searchNeighborhoodParameters *p, FILE *stream) {
  return NUVOReadSearchNeighborhoodParameters(p, 1, stream);
}

// Section 17: per variable a rescaling keyword and its two parameters.
int readRescaling(nuvo_simInputASCII *si, FILE *stream) {
  const int nvar = si->nsimVar;
  NUVO_TRY(allocateArray(nvar, &si->rescalingMode));
  NUVO_TRY(allocateArray(nvar, &si->rescalingTargetMin));
  NUVO_TRY(allocateArray(nvar, &si->rescalingTargetMax));
  NUVO_TRY(allocateArray(nvar, &si->rescalingTargetMean));
  NUVO_TRY(allocateArray(nvar, &si->rescalingTargetLength));
  for (int iv = 0; iv < nvar; ++iv) {
    NUVO_TRY(readKeyword(stream, kRescalingModeKeywords, &si->rescalingMode[iv], -2120));
    if (si->rescalingMode[iv] == RESCALING_MIN_MAX) {
      NUVO_TRY(readDouble(stream, &si->rescalingTargetMin[iv], -2121));
      NUVO_TRY(readDouble(stream, &si->rescalingTargetMax[iv], -2122));
    } else if (si->rescalingMode[iv] == RESCALING_MEAN_LENGTH) {
      NUVO_TRY(readDouble(stream, &si->rescalingTargetMean[iv], -2123));
      NUVO_TRY(readDouble(stream, &si->rescalingTargetLength[iv], -2124));
    }
  }
  return 0;
}

// Section 19: per variable the distance type, an L-p type followed by p (whose
// inverse is kept beside it).
int readDistanceTypes(nuvo_simInputASCII *si, FILE *stream) {
  const int nvar = si->nsimVar;
  NUVO_TRY(allocateArray(nvar, &si->distanceType));
  NUVO_TRY(allocateArray(nvar, &si->powerLpDistance));
  NUVO_TRY(allocateArray(nvar, &si->powerLpDistanceInv));
  for (int iv = 0; iv < nvar; ++iv) {
    NUVO_TRY(readInt(stream, &si->distanceType[iv], -852));
    if (si->distanceType[iv] != 3) continue;
    NUVO_TRY(readDouble(stream, &si->powerLpDistance[iv], -853));
    si->powerLpDistanceInv[iv] = 1.0 / si->powerLpDistance[iv];
  }
  return 0;
}

// Sections 12 to 23: distances, search neighborhoods, simulation type and path.
int readSearchAndDistance(nuvo_simInputASCII *si, FILE *stream) {
  const int nvar = si->nsimVar;
  NUVO_TRY(readDouble(stream, &si->trainValueRangeExtensionMax, -845));
  NUVO_TRY(readKeyword(stream, kNormalizingTypeKeywords, &si->normalizingType, -846));
  NUVO_TRY(readRecords(stream, nvar, &si->searchNeighborhoodParameters,
                       NUVOInitSearchNeighborhoodParameters, readSearchNeighborhood));
  NUVO_TRY(readArray(stream, nvar, &si->nneighboringNode, -849));
  NUVO_TRY(readArray(stream, nvar, &si->neighboringNodeDensity, -850));
  NUVO_TRY(readRescaling(si, stream));
  NUVO_TRY(readArray(stream, nvar, &si->relativeDistanceFlag, -851));
  NUVO_TRY(readDistanceTypes(si, stream));
  NUVO_TRY(readArray(stream, nvar, &si->conditioningWeightFactor, -854));
  NUVO_TRY(readRecords(stream, 1, &si->simAndPathParameters, NUVOInitSimAndPathParameters,
                       NUVOReadSimAndPathParameters));
  return readArray(stream, nvar, &si->distanceThreshold, -857);
}

// Sections 24 to 28: constraints, scan fractions and pyramids; the per-variable
// pyramid sections follow only when the pyramid has levels.
int readConstraintsAndPyramids(nuvo_simInputASCII *si, FILE *stream) {
  const int nvar = si->nsimVar;
  NUVO_TRY(readRecords(stream, nvar, &si->softProbabilityASCII, NUVOInitSoftProbabilityASCII,
                       NUVOReadSoftProbabilityASCII));
  NUVO_TRY(readRecords(stream, nvar, &si->connectivityASCII, NUVOInitConnectivityASCII,
                       NUVOReadConnectivityASCII));
  NUVO_TRY(readRecords(stream, nvar, &si->blockDataASCII, NUVOInitBlockDataASCII,
                       NUVOReadBlockDataASCII));
  NUVO_TRY(readArray(stream, si->ntrainImage, &si->maxScanFraction, -858));
  NUVO_TRY(readRecords(stream, 1, &si->pyramidGeneralParametersASCII,
                       NUVOInitPyramidGeneralParametersASCII,
                       NUVOReadPyramidGeneralParametersASCII));
  if (si->pyramidGeneralParametersASCII->npyramidLevel <= 0) return 0;
  return readRecords(stream, nvar, &si->pyramidParameters, NUVOInitPyramidParameters,
                     NUVOReadPyramidParameters);
}

// Sections 29 and 30: tolerance and post-processing; only the manual job lists
// the post-processing settings.
int readPostProcessing(nuvo_simInputASCII *si, FILE *stream) {
  NUVO_TRY(readDouble(stream, &si->tolerance, -859));
  NUVO_TRY(readInt(stream, &si->npostProcessingPathMax, -860));
  if (si->npostProcessingPathMax <= 0) return 0;
  NUVO_TRY(readKeyword(stream, kPostProcessingParametersKeywords, &si->postProcessingParametersJob,
                       -861));
  if (si->postProcessingParametersJob != POST_PROCESSING_PARAMETERS_MANUAL) return 0;
  const int nvar = si->nsimVar;
  NUVO_TRY(readArray(stream, nvar, &si->postProcessingNneighboringNode, -862));
  NUVO_TRY(readArray(stream, nvar, &si->postProcessingNeighboringNodeDensity, -863));
  NUVO_TRY(readArray(stream, nvar, &si->postProcessingDistanceThreshold, -864));
  NUVO_TRY(readArray(stream, si->ntrainImage, &si->postProcessingMaxScanFraction, -865));
  return readDouble(stream, &si->postProcessingTolerance, -866);
}

// Sections 31 to 33: seeds, number of realizations and the closing "END".
int readSeedsAndEnd(nuvo_simInputASCII *si, FILE *stream) {
  constexpr int kEndExpected = -870;
  NUVO_TRY(readInt(stream, &si->seed, -867));
  NUVO_TRY(readInt(stream, &si->seedIncrement, -868));
  NUVO_TRY(readInt(stream, &si->nrealization, -869));
  char word[4];
  NUVO_TRY(readWord(stream, word, 3, kEndExpected, kEndExpected));
  return std::strcmp(word, "END") == 0 ? 0 : kEndExpected;
}

int readSimInput(nuvo_simInputASCII *si, FILE *stream) {
  NUVO_TRY(readGridAndVariables(si, stream));
  NUVO_TRY(readOutput(si, stream));
  NUVO_TRY(readImagesAndData(si, stream));
  NUVO_TRY(readTransforms(si, stream));
  NUVO_TRY(readSearchAndDistance(si, stream));
  NUVO_TRY(readConstraintsAndPyramids(si, stream));
  NUVO_TRY(readPostProcessing(si, stream));
  return readSeedsAndEnd(si, stream);
}

}  // namespace
}  // namespace nuvo

extern "C" {

int NUVOReadSimInputASCII(nuvo_simInputASCII *si, FILE *stream) {
  return nuvo::guardedCall([&] { return nuvo::readSimInput(si, stream); });
}

}  // extern "C"
