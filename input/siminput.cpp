// Life cycle of nuvo_simInput and nuvo_simInputASCII.
#include <cstdlib>

#include "input/siminput_common.hpp"
#include "input/text_io.hpp"
#include "nuvo_siminput.h"

namespace nuvo {
namespace {

// Releases the fields that both records hold under the same name and type.
template <typename Record>
void freeCommonFields(Record *r, int nvar) {
  std::free(r->outputVarFlag);
  freeTextSlots(r->formatStringVar);
  freeTextSlots(r->outputSimImageFileName);
  for (char *name :
       {r->outputPathIndexFileName, r->outputErrorFileName, r->outputTiGridNodeIndexFileName,
        r->outputTiIndexFileName, r->outputReportFileName})
    std::free(name);
  for (double *values : {r->homothetyXRatioValue, r->homothetyYRatioValue, r->homothetyZRatioValue,
                         r->rotationAzimuthValue, r->rotationDipValue, r->rotationPlungeValue})
    std::free(values);
  std::free(r->searchNeighborhoodParameters);
  std::free(r->nneighboringNode);
  std::free(r->rescalingMode);
  std::free(r->relativeDistanceFlag);
  std::free(r->distanceType);
  for (double *values : {r->neighboringNodeDensity, r->rescalingTargetMin, r->rescalingTargetMax,
                         r->rescalingTargetMean, r->rescalingTargetLength, r->powerLpDistance,
                         r->powerLpDistanceInv, r->conditioningWeightFactor, r->distanceThreshold,
                         r->maxScanFraction, r->postProcessingNeighboringNodeDensity,
                         r->postProcessingDistanceThreshold, r->postProcessingMaxScanFraction})
    std::free(values);
  std::free(r->postProcessingNneighboringNode);
  freeRecords(r->simAndPathParameters, 1, NUVOFreeSimAndPathParameters);
  freeRecords(r->pyramidParameters, nvar, NUVOFreePyramidParameters);
}

}  // namespace
}  // namespace nuvo

extern "C" {

void NUVOInitSimInput(nuvo_simInput *si) {
  *si = nuvo_simInput{};
}

void NUVOInitSimInputASCII(nuvo_simInputASCII *si) {
  *si = nuvo_simInputASCII{};
}

void NUVOFreeSimInput(nuvo_simInput *si) {
  using nuvo::freeImagePointer;
  using nuvo::freeRecords;
  nuvo::freeCommonFields(si, si->nvar);
  freeImagePointer(si->simImage);
  std::free(si->simGridAsTiFlag);
  freeRecords(si->trainImage, si->ntrainImage, NUVOFreeImage);
  freeImagePointer(si->pdfTrainImage);
  freeRecords(si->dataImage, si->ndataImage, NUVOFreeImage);
  freeRecords(si->dataPointSet, si->ndataPointSet, NUVOFreePointSet);
  for (nuvo_image *image :
       {si->maskImage, si->homothetyXRatioImage, si->homothetyYRatioImage, si->homothetyZRatioImage,
        si->rotationAzimuthImage, si->rotationDipImage, si->rotationPlungeImage})
    freeImagePointer(image);
  freeRecords(si->softProbability, si->nvar, NUVOFreeSoftProbability);
  freeRecords(si->connectivity, si->nvar, NUVOFreeConnectivity);
  freeRecords(si->blockData, si->nvar, NUVOFreeBlockData);
  freeRecords(si->pyramidGeneralParameters, 1, NUVOFreePyramidGeneralParameters);
  NUVOInitSimInput(si);
}

void NUVOFreeSimInputASCII(nuvo_simInputASCII *si) {
  using nuvo::freeRecords;
  nuvo::freeCommonFields(si, si->nsimVar);
  nuvo::freeTextSlots(si->simVarName);
  nuvo::freeTextSlots(si->trainImageFileName);
  nuvo::freeTextSlots(si->dataImageFileName);
  nuvo::freeTextSlots(si->dataPointSetFileName);
  for (char *name : {si->pdfTrainImageFileName, si->maskImageFileName,
                     si->homothetyXRatioImageFileName, si->homothetyYRatioImageFileName,
                     si->homothetyZRatioImageFileName, si->rotationAzimuthImageFileName,
                     si->rotationDipImageFileName, si->rotationPlungeImageFileName})
    std::free(name);
  freeRecords(si->softProbabilityASCII, si->nsimVar, NUVOFreeSoftProbabilityASCII);
  freeRecords(si->connectivityASCII, si->nsimVar, NUVOFreeConnectivityASCII);
  freeRecords(si->blockDataASCII, si->nsimVar, NUVOFreeBlockDataASCII);
  freeRecords(si->pyramidGeneralParametersASCII, 1, NUVOFreePyramidGeneralParametersASCII);
  NUVOInitSimInputASCII(si);
}

}  // extern "C"
