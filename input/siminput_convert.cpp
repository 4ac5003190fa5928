// NUVOSimInputASCIIToSimInput: from the text twin of the input to the input
// itself, loading every file the text twin names. Fields are filled in the
// order of the record, so the first failure met is the one reported and
// everything built before it stays in the output for NUVOFreeSimInput.
#include <algorithm>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <memory>

#include "data/names.hpp"
#include "foundation/check.hpp"
#include "input/siminput_common.hpp"
#include "input/text_io.hpp"
#include "nuvo_imagefile.h"
#include "nuvo_siminput.h"
#include "nuvo_text.h"

namespace nuvo {
namespace {

constexpr int kVarSlot = NUVO_VAR_NAME_MAX + 1;
constexpr int kFileSlot = NUVO_FILE_NAME_MAX + 1;
constexpr char kDefaultFormat[] = "%.10g";

struct FileCloser {
  void operator()(FILE *file) const { std::fclose(file); }
};
using File = std::unique_ptr<FILE, FileCloser>;

// Copies at most size - 1 characters of src into the slot dst of size bytes.
void copyInto(char *dst, const char *src, int size) {
  std::strncpy(dst, src, static_cast<std::size_t>(size) - 1);
  dst[size - 1] = '\0';
}

// An owned copy of the n values of src (nothing for a null src or n <= 0).
template <typename T>
int copyArray(const T *src, int n, T **dst) {
  if (src == nullptr) return 0;
  NUVO_TRY(allocateArray(n, dst));
  if (n > 0) std::copy(src, src + n, *dst);
  return 0;
}

// An owned copy of a text in a slot of slotSize bytes (nothing for a null text).
int copyText(const char *src, int slotSize, char **dst) {
  if (src == nullptr) return 0;
  *dst = allocateText(slotSize);
  NUVO_FAIL_IF(*dst == nullptr, kAllocationFailed);
  copyInto(*dst, src, slotSize);
  return 0;
}

// Reads the file into an initialised record with read(record, stream); a file
// that cannot be opened gives openCode.
template <typename T, typename Read>
int loadFile(const char *fileName, int openCode, T *record, Read read) {
  File file(fileName != nullptr ? std::fopen(fileName, "r") : nullptr);
  NUVO_FAIL_IF(file == nullptr, openCode);
  return read(record, file.get());
}

int readGslibImage(nuvo_image *image, FILE *stream) {
  return NUVOReadImage(image, NUVO_IMAGE_FORMAT_GSLIB, stream);
}

int loadImage(const char *fileName, int openCode, nuvo_image *image) {
  return loadFile(fileName, openCode, image, readGslibImage);
}

// A new image record, owned by *image, read from the file.
int loadImagePointer(const char *fileName, int openCode, nuvo_image **image) {
  NUVO_TRY(allocateRecords(1, image, NUVOInitImage));
  return loadImage(fileName, openCode, *image);
}

// Step 1: the simulation grid with its named variables, every value missing.
int buildSimImage(const nuvo_simInputASCII &in, nuvo_simInput *out) {
  NUVO_FAIL_IF(in.simGridNx < 1, -601);
  NUVO_FAIL_IF(in.simGridNy < 1, -602);
  NUVO_FAIL_IF(in.simGridNz < 1, -603);
  long long nxyz = static_cast<long long>(in.simGridNx) * in.simGridNy * in.simGridNz;
  long long nxyzv = nxyz * std::max(in.nsimVar, 1);
  NUVO_FAIL_IF(nxyzv > INT_MAX, -610);
  NUVO_TRY(allocateRecords(1, &out->simImage, NUVOInitImage));
  nuvo_image *image = out->simImage;
  NUVO_TRY(NUVOMallocImage(image, static_cast<int>(nxyz), in.nsimVar));
  *image->grid = nuvo_grid{
      in.simGridNx,          in.simGridNy, in.simGridNz, in.simGridSx, in.simGridSy,
      in.simGridSz,          in.simGridOx, in.simGridOy, in.simGridOz, in.simGridNx * in.simGridNy,
      static_cast<int>(nxyz)};
  if (in.nsimVar <= 0) return 0;
  image->nvar = in.nsimVar;
  image->nxyzv = static_cast<int>(nxyzv);
  std::fill(image->var, image->var + image->nxyzv, NUVO_MISSING_VALUE);
  for (int iv = 0; in.simVarName != nullptr && iv < in.nsimVar; ++iv)
    copyInto(image->varName[iv], in.simVarName[iv], kNameSlot);
  return 0;
}

// Steps 2 and 3: output flags, formats and file names.
int copyOutput(const nuvo_simInputASCII &in, nuvo_simInput *out) {
  int nvar = out->nvar;
  NUVO_TRY(copyArray(in.outputVarFlag, nvar, &out->outputVarFlag));
  if (in.formatStringVar != nullptr && nvar > 0) {
    out->formatStringVar = allocateTextSlots(nvar, kVarSlot);
    NUVO_FAIL_IF(out->formatStringVar == nullptr, kAllocationFailed);
    for (int iv = 0; iv < nvar; ++iv) {
      bool byDefault = std::strcmp(in.formatStringVar[iv], NUVO_DEFAULT_FORMAT_NAME) == 0;
      copyInto(out->formatStringVar[iv], byDefault ? kDefaultFormat : in.formatStringVar[iv],
               kVarSlot);
    }
  }
  out->outputSimJob = in.outputSimJob;
  int nname = outputSimImageFileCount(in.outputSimJob, in.outputVarFlag, nvar);
  if (in.outputSimImageFileName != nullptr && nname > 0) {
    out->outputSimImageFileName = allocateTextSlots(nname, kFileSlot);
    NUVO_FAIL_IF(out->outputSimImageFileName == nullptr, kAllocationFailed);
    for (int k = 0; k < nname; ++k)
      copyInto(out->outputSimImageFileName[k], in.outputSimImageFileName[k], kFileSlot);
  }
  out->outputPathIndexFlag = in.outputPathIndexFlag;
  NUVO_TRY(copyText(in.outputPathIndexFileName, kFileSlot, &out->outputPathIndexFileName));
  out->outputErrorFlag = in.outputErrorFlag;
  NUVO_TRY(copyText(in.outputErrorFileName, kFileSlot, &out->outputErrorFileName));
  out->outputTiGridNodeIndexFlag = in.outputTiGridNodeIndexFlag;
  NUVO_TRY(
      copyText(in.outputTiGridNodeIndexFileName, kFileSlot, &out->outputTiGridNodeIndexFileName));
  out->outputTiIndexFlag = in.outputTiIndexFlag;
  NUVO_TRY(copyText(in.outputTiIndexFileName, kFileSlot, &out->outputTiIndexFileName));
  out->outputReportFlag = in.outputReportFlag;
  return copyText(in.outputReportFileName, kFileSlot, &out->outputReportFileName);
}

// Step 4: the training images and, with several, the pdf of their use.
int loadTrainingImages(const nuvo_simInputASCII &in, nuvo_simInput *out) {
  out->ntrainImage = in.ntrainImage;
  if (in.ntrainImage <= 0) return 0;
  NUVO_TRY(allocateArray(in.ntrainImage, &out->simGridAsTiFlag));
  NUVO_TRY(allocateRecords(in.ntrainImage, &out->trainImage, NUVOInitImage));
  for (int i = 0; i < in.ntrainImage; ++i) {
    const char *name = in.trainImageFileName != nullptr ? in.trainImageFileName[i] : nullptr;
    if (name != nullptr && std::strcmp(name, NUVO_SIM_GRID_AS_TI_NAME) == 0)
      out->simGridAsTiFlag[i] = 1;
    else
      NUVO_TRY(loadImage(name, -112, &out->trainImage[i]));
  }
  if (in.ntrainImage > 1)
    NUVO_TRY(loadImagePointer(in.pdfTrainImageFileName, -119, &out->pdfTrainImage));
  return 0;
}

// Step 5, first part: data images, point sets and the mask.
int loadConditioning(const nuvo_simInputASCII &in, nuvo_simInput *out) {
  if (in.ndataImageFile > 0) {
    NUVO_TRY(allocateRecords(in.ndataImageFile, &out->dataImage, NUVOInitImage));
    out->ndataImage = in.ndataImageFile;
    for (int i = 0; i < in.ndataImageFile; ++i)
      NUVO_TRY(loadImage(in.dataImageFileName != nullptr ? in.dataImageFileName[i] : nullptr, -111,
                         &out->dataImage[i]));
  }
  if (in.ndataPointSetFile > 0) {
    NUVO_TRY(allocateRecords(in.ndataPointSetFile, &out->dataPointSet, NUVOInitPointSet));
    out->ndataPointSet = in.ndataPointSetFile;
    for (int i = 0; i < in.ndataPointSetFile; ++i)
      NUVO_TRY(loadFile(in.dataPointSetFileName != nullptr ? in.dataPointSetFileName[i] : nullptr,
                        -123, &out->dataPointSet[i], NUVOReadPointSet));
  }
  out->maskImageFlag = in.maskImageFlag;
  if (in.maskImageFlag) NUVO_TRY(loadImagePointer(in.maskImageFileName, -125, &out->maskImage));
  return 0;
}

// One transform (homothety or rotation) along its three axes: an image where the
// flag is set, else the constant values.
struct TransformAxis {
  signed char inFlag;
  double *inValues;
  const char *fileName;
  int openCode;
  signed char *flag;
  double **values;
  nuvo_image **image;
};

int copyTransform(int usage, const TransformAxis (&axes)[3]) {
  if (usage <= 0) return 0;
  for (const TransformAxis &axis : axes) {
    *axis.flag = axis.inFlag;
    if (axis.inFlag)
      NUVO_TRY(loadImagePointer(axis.fileName, axis.openCode, axis.image));
    else
      NUVO_TRY(copyArray(axis.inValues, usage, axis.values));
  }
  return 0;
}

// Step 5, second part: homothety and rotation.
int loadTransforms(const nuvo_simInputASCII &in, nuvo_simInput *out) {
  out->homothetyUsage = in.homothetyUsage;
  NUVO_TRY(copyTransform(
      in.homothetyUsage,
      {{in.homothetyXRatioImageFlag, in.homothetyXRatioValue, in.homothetyXRatioImageFileName, -113,
        &out->homothetyXRatioImageFlag, &out->homothetyXRatioValue, &out->homothetyXRatioImage},
       {in.homothetyYRatioImageFlag, in.homothetyYRatioValue, in.homothetyYRatioImageFileName, -114,
        &out->homothetyYRatioImageFlag, &out->homothetyYRatioValue, &out->homothetyYRatioImage},
       {in.homothetyZRatioImageFlag, in.homothetyZRatioValue, in.homothetyZRatioImageFileName, -115,
        &out->homothetyZRatioImageFlag, &out->homothetyZRatioValue, &out->homothetyZRatioImage}}));
  out->rotationUsage = in.rotationUsage;
  return copyTransform(
      in.rotationUsage,
      {{in.rotationAzimuthImageFlag, in.rotationAzimuthValue, in.rotationAzimuthImageFileName, -116,
        &out->rotationAzimuthImageFlag, &out->rotationAzimuthValue, &out->rotationAzimuthImage},
       {in.rotationDipImageFlag, in.rotationDipValue, in.rotationDipImageFileName, -117,
        &out->rotationDipImageFlag, &out->rotationDipValue, &out->rotationDipImage},
       {in.rotationPlungeImageFlag, in.rotationPlungeValue, in.rotationPlungeImageFileName, -118,
        &out->rotationPlungeImageFlag, &out->rotationPlungeValue, &out->rotationPlungeImage}});
}

// Converts every per-variable record of a text form with convert(in, out) into
// an array of initialised records.
template <typename In, typename Out, typename Init, typename Convert>
int convertRecords(const In *in, int n, Out **out, Init init, Convert convert) {
  NUVO_TRY(allocateRecords(n, out, init));
  for (int i = 0; in != nullptr && i < n; ++i) NUVO_TRY(convert(&in[i], &(*out)[i]));
  return 0;
}

// Step 6: the per-variable settings, the path, the constraints, the scan
// fractions and the pyramids.
int copyVariableSettings(const nuvo_simInputASCII &in, nuvo_simInput *out) {
  int nvar = out->nvar;
  out->trainValueRangeExtensionMax = in.trainValueRangeExtensionMax;
  out->normalizingType = in.normalizingType;
  NUVO_TRY(copyArray(in.searchNeighborhoodParameters, nvar, &out->searchNeighborhoodParameters));
  NUVO_TRY(copyArray(in.nneighboringNode, nvar, &out->nneighboringNode));
  NUVO_TRY(copyArray(in.neighboringNodeDensity, nvar, &out->neighboringNodeDensity));
  NUVO_TRY(copyArray(in.rescalingMode, nvar, &out->rescalingMode));
  NUVO_TRY(copyArray(in.rescalingTargetMin, nvar, &out->rescalingTargetMin));
  NUVO_TRY(copyArray(in.rescalingTargetMax, nvar, &out->rescalingTargetMax));
  NUVO_TRY(copyArray(in.rescalingTargetMean, nvar, &out->rescalingTargetMean));
  NUVO_TRY(copyArray(in.rescalingTargetLength, nvar, &out->rescalingTargetLength));
  NUVO_TRY(copyArray(in.relativeDistanceFlag, nvar, &out->relativeDistanceFlag));
  NUVO_TRY(copyArray(in.distanceType, nvar, &out->distanceType));
  NUVO_TRY(copyArray(in.powerLpDistance, nvar, &out->powerLpDistance));
  NUVO_TRY(copyArray(in.powerLpDistanceInv, nvar, &out->powerLpDistanceInv));
  NUVO_TRY(copyArray(in.conditioningWeightFactor, nvar, &out->conditioningWeightFactor));
  if (in.simAndPathParameters != nullptr) {
    NUVO_TRY(allocateRecords(1, &out->simAndPathParameters, NUVOInitSimAndPathParameters));
    NUVO_TRY(NUVOCopySimAndPathParameters(in.simAndPathParameters, out->simAndPathParameters));
  }
  NUVO_TRY(copyArray(in.distanceThreshold, nvar, &out->distanceThreshold));
  NUVO_TRY(convertRecords(in.softProbabilityASCII, nvar, &out->softProbability,
                          NUVOInitSoftProbability, NUVOSoftProbabilityASCIIToSoftProbability));
  NUVO_TRY(convertRecords(in.connectivityASCII, nvar, &out->connectivity, NUVOInitConnectivity,
                          NUVOConnectivityASCIIToConnectivity));
  NUVO_TRY(convertRecords(in.blockDataASCII, nvar, &out->blockData, NUVOInitBlockData,
                          NUVOBlockDataASCIIToBlockData));
  NUVO_TRY(copyArray(in.maxScanFraction, out->ntrainImage, &out->maxScanFraction));
  NUVO_TRY(convertRecords(in.pyramidGeneralParametersASCII, 1, &out->pyramidGeneralParameters,
                          NUVOInitPyramidGeneralParameters,
                          NUVOPyramidGeneralParametersASCIIToPyramidGeneralParameters));
  return convertRecords(in.pyramidParameters, nvar, &out->pyramidParameters,
                        NUVOInitPyramidParameters, NUVOCopyPyramidParameters);
}

// Post-processing settings by default: fewer neighbors in grids of fewer
// dimensions, full density, tight thresholds, at most a fifth of each TI.
int setDefaultPostProcessing(const nuvo_simInputASCII &in, nuvo_simInput *out) {
  int nvar = out->nvar;
  int nti = out->ntrainImage;
  NUVO_TRY(allocateArray(nvar, &out->postProcessingNneighboringNode));
  NUVO_TRY(allocateArray(nvar, &out->postProcessingNeighboringNodeDensity));
  NUVO_TRY(allocateArray(nvar, &out->postProcessingDistanceThreshold));
  NUVO_TRY(allocateArray(nti, &out->postProcessingMaxScanFraction));
  int d = (in.simGridNx > 1) + (in.simGridNy > 1) + (in.simGridNz > 1);
  for (int iv = 0; iv < nvar; ++iv) {
    out->postProcessingNneighboringNode[iv] = d == 3 ? 8 : d == 2 ? 6 : 4;
    out->postProcessingNeighboringNodeDensity[iv] = 1.0;
    bool categorical = in.distanceType != nullptr && in.distanceType[iv] == 0;
    out->postProcessingDistanceThreshold[iv] = categorical ? 0.02 : 0.01;
  }
  for (int i = 0; i < nti; ++i)
    out->postProcessingMaxScanFraction[i] =
        in.maxScanFraction != nullptr ? std::min(0.2, in.maxScanFraction[i]) : 0.2;
  out->postProcessingTolerance = 0.0;
  return 0;
}

// Post-processing settings as the main ones (SAME) or as given (MANUAL).
int copyPostProcessing(const int *nn, const double *density, const double *threshold,
                       const double *scan, double tolerance, nuvo_simInput *out) {
  NUVO_TRY(copyArray(nn, out->nvar, &out->postProcessingNneighboringNode));
  NUVO_TRY(copyArray(density, out->nvar, &out->postProcessingNeighboringNodeDensity));
  NUVO_TRY(copyArray(threshold, out->nvar, &out->postProcessingDistanceThreshold));
  NUVO_TRY(copyArray(scan, out->ntrainImage, &out->postProcessingMaxScanFraction));
  out->postProcessingTolerance = tolerance;
  return 0;
}

// Step 7: tolerance, post-processing, seeds and number of realizations.
int copyPostProcessingAndSeeds(const nuvo_simInputASCII &in, nuvo_simInput *out) {
  out->tolerance = in.tolerance;
  out->npostProcessingPathMax = in.npostProcessingPathMax;
  out->seed = in.seed;
  out->seedIncrement = in.seedIncrement;
  out->nrealization = in.nrealization;
  if (in.npostProcessingPathMax <= 0) return 0;
  switch (in.postProcessingParametersJob) {
    case POST_PROCESSING_PARAMETERS_DEFAULT:
      return setDefaultPostProcessing(in, out);
    case POST_PROCESSING_PARAMETERS_SAME:
      return copyPostProcessing(in.nneighboringNode, in.neighboringNodeDensity,
                                in.distanceThreshold, in.maxScanFraction, in.tolerance, out);
    case POST_PROCESSING_PARAMETERS_MANUAL:
      return copyPostProcessing(in.postProcessingNneighboringNode,
                                in.postProcessingNeighboringNodeDensity,
                                in.postProcessingDistanceThreshold,
                                in.postProcessingMaxScanFraction, in.postProcessingTolerance, out);
    default:
      return -861;
  }
}

int convert(const nuvo_simInputASCII &in, nuvo_simInput *out) {
  out->consoleAppFlag = in.consoleAppFlag;
  NUVO_TRY(buildSimImage(in, out));
  out->nvar = std::max(in.nsimVar, 0);
  NUVO_TRY(copyOutput(in, out));
  NUVO_TRY(loadTrainingImages(in, out));
  NUVO_TRY(loadConditioning(in, out));
  NUVO_TRY(loadTransforms(in, out));
  NUVO_TRY(copyVariableSettings(in, out));
  return copyPostProcessingAndSeeds(in, out);
}

}  // namespace
}  // namespace nuvo

extern "C" {

int NUVOSimInputASCIIToSimInput(const nuvo_simInputASCII *in, nuvo_simInput *out) {
  return nuvo::guardedCall([&] { return nuvo::convert(*in, out); });
}

}  // extern "C"
