// Dumps of nuvo_simInput and nuvo_simInputASCII. Both records share most of
// their fields under the same names, so the groups they share are printed by
// one template each; the groups that differ (images or file names, constraint
// records or their text forms) have one function per record.
#include "foundation/check.hpp"
#include "input/keywords.hpp"
#include "input/siminput_common.hpp"
#include "input/text_io.hpp"
#include "nuvo_imagefile.h"
#include "nuvo_siminput.h"

namespace nuvo {
namespace {

constexpr char kReal[] = "%14.6f";

int printImage(const FieldPrinter &out, const char *name, const nuvo_image *image) {
  return printNested(out, name, image, NUVOPrintImage);
}

template <typename Record>
void printOutput(const FieldPrinter &out, const Record &r, int nvar) {
  out.items("outputVarFlag", kPerVariable, r.outputVarFlag, nvar, "%d");
  if (r.formatStringVar == nullptr)
    out.text("formatStringVar", "UNUSED (NOT ALLOCATED)");
  else
    out.items("formatStringVar", kPerVariable, r.formatStringVar, nvar, "%s");
  out.keyword("outputSimJob", kOutputSimJobKeywords, r.outputSimJob);
  int nname = outputSimImageFileCount(r.outputSimJob, r.outputVarFlag, nvar);
  if (nname > 0 && r.outputSimImageFileName == nullptr) {
    out.notAllocated("outputSimImageFileName");
  } else if (r.outputSimJob == OUTPUT_SIM_ONE_FILE_PER_VARIABLE && nname > 0) {
    // One name per variable flagged for output, numbered by that variable.
    for (int iv = 0, k = 0; iv < nvar; ++iv) {
      if (r.outputVarFlag[iv] != 1) continue;
      out.startItem("outputSimImageFileName", kPerVariable, iv);
      std::fprintf(out.stream(), "%s\n", r.outputSimImageFileName[k++]);
    }
  } else if (nname == 1) {
    out.text("outputSimImageFileName", r.outputSimImageFileName[0]);
  }
  out.blank();
  const struct {
    const char *flagName;
    signed char flag;
    const char *fileName;
    const char *file;
  } maps[] = {
      {"outputPathIndexFlag", r.outputPathIndexFlag, "outputPathIndexFileName",
       r.outputPathIndexFileName},
      {"outputErrorFlag", r.outputErrorFlag, "outputErrorFileName", r.outputErrorFileName},
      {"outputTiGridNodeIndexFlag", r.outputTiGridNodeIndexFlag, "outputTiGridNodeIndexFileName",
       r.outputTiGridNodeIndexFileName},
      {"outputTiIndexFlag", r.outputTiIndexFlag, "outputTiIndexFileName", r.outputTiIndexFileName},
      {"outputReportFlag", r.outputReportFlag, "outputReportFileName", r.outputReportFileName},
  };
  for (const auto &map : maps) {
    out.field(map.flagName, "%d", map.flag);
    if (map.flag) out.text(map.fileName, map.file);
  }
  out.blank();
}

// One transform (homothety or rotation): its usage, then per axis the flag and
// either the constant values or, through printSource, the image or its file.
template <typename PrintSource>
int printTransform(const FieldPrinter &out, const char *usageName, int usage,
                   const char *const (&flagNames)[3], const signed char (&flags)[3],
                   const char *const (&valueNames)[3], double *const (&values)[3],
                   PrintSource printSource) {
  out.field(usageName, "%d", usage);
  if (usage <= 0) return 0;
  for (int k = 0; k < 3; ++k) {
    out.field(flagNames[k], "%d", flags[k]);
    if (flags[k])
      NUVO_TRY(printSource(k));
    else
      out.values(valueNames[k], values[k], usage, kReal);
  }
  return 0;
}

template <typename Record, typename PrintSource>
int printHomothety(const FieldPrinter &out, const Record &r, PrintSource printSource) {
  return printTransform(
      out, "homothetyUsage", r.homothetyUsage,
      {"homothetyXRatioImageFlag", "homothetyYRatioImageFlag", "homothetyZRatioImageFlag"},
      {r.homothetyXRatioImageFlag, r.homothetyYRatioImageFlag, r.homothetyZRatioImageFlag},
      {"homothetyXRatioValue", "homothetyYRatioValue", "homothetyZRatioValue"},
      {r.homothetyXRatioValue, r.homothetyYRatioValue, r.homothetyZRatioValue}, printSource);
}

template <typename Record, typename PrintSource>
int printRotation(const FieldPrinter &out, const Record &r, PrintSource printSource) {
  return printTransform(
      out, "rotationUsage", r.rotationUsage,
      {"rotationAzimuthImageFlag", "rotationDipImageFlag", "rotationPlungeImageFlag"},
      {r.rotationAzimuthImageFlag, r.rotationDipImageFlag, r.rotationPlungeImageFlag},
      {"rotationAzimuthValue", "rotationDipValue", "rotationPlungeValue"},
      {r.rotationAzimuthValue, r.rotationDipValue, r.rotationPlungeValue}, printSource);
}

// From trainValueRangeExtensionMax to distanceThreshold, without the
// constraints that follow.
template <typename Record>
int printSearchAndDistance(const FieldPrinter &out, const Record &r, int nvar) {
  out.field("trainValueRangeExtensionMax", kReal, r.trainValueRangeExtensionMax);
  out.keyword("normalizingType", kNormalizingTypeKeywords, r.normalizingType);
  out.blank();
  NUVO_TRY(printNestedItems(out, "searchNeighborhoodParameters", kPerVariable,
                            r.searchNeighborhoodParameters, nvar,
                            NUVOPrintSearchNeighborhoodParameters));
  out.items("nneighboringNode", kPerVariable, r.nneighboringNode, nvar, "%d");
  out.items("neighboringNodeDensity", kPerVariable, r.neighboringNodeDensity, nvar, kReal);
  out.blank();
  out.keywordItems("rescalingMode", kPerVariable, r.rescalingMode, nvar, kRescalingModeKeywords);
  out.items("rescalingTargetMin", kPerVariable, r.rescalingTargetMin, nvar, kReal);
  out.items("rescalingTargetMax", kPerVariable, r.rescalingTargetMax, nvar, kReal);
  out.items("rescalingTargetMean", kPerVariable, r.rescalingTargetMean, nvar, kReal);
  out.items("rescalingTargetLength", kPerVariable, r.rescalingTargetLength, nvar, kReal);
  out.blank();
  out.items("relativeDistanceFlag", kPerVariable, r.relativeDistanceFlag, nvar, "%d");
  out.items("distanceType", kPerVariable, r.distanceType, nvar, "%d");
  out.items("powerLpDistance", kPerVariable, r.powerLpDistance, nvar, kReal);
  out.items("powerLpDistanceInv", kPerVariable, r.powerLpDistanceInv, nvar, kReal);
  out.items("conditioningWeightFactor", kPerVariable, r.conditioningWeightFactor, nvar, kReal);
  out.blank();
  NUVO_TRY(printNested(out, "simAndPathParameters", r.simAndPathParameters,
                       NUVOPrintSimAndPathParameters));
  out.blank();
  out.items("distanceThreshold", kPerVariable, r.distanceThreshold, nvar, kReal);
  out.blank();
  return 0;
}

// From tolerance to the end; ASCII says whether it has postProcessingParametersJob.
template <typename Record>
void printPostProcessingAndSeeds(const FieldPrinter &out, const Record &r, int nvar, int nti) {
  out.field("tolerance", kReal, r.tolerance);
  out.blank();
  out.field("npostProcessingPathMax", "%d", r.npostProcessingPathMax);
  if constexpr (requires { r.postProcessingParametersJob; }) {
    if (r.npostProcessingPathMax > 0)
      out.keyword("postProcessingParametersJob", kPostProcessingParametersKeywords,
                  r.postProcessingParametersJob);
  }
  if (r.npostProcessingPathMax > 0) {
    out.items("postProcessingNneighboringNode", kPerVariable, r.postProcessingNneighboringNode,
              nvar, "%d");
    out.items("postProcessingNeighboringNodeDensity", kPerVariable,
              r.postProcessingNeighboringNodeDensity, nvar, kReal);
    out.items("postProcessingDistanceThreshold", kPerVariable, r.postProcessingDistanceThreshold,
              nvar, kReal);
    out.items("postProcessingMaxScanFraction", kPerTrainImage, r.postProcessingMaxScanFraction, nti,
              kReal);
    out.field("postProcessingTolerance", kReal, r.postProcessingTolerance);
  }
  out.blank();
  out.field("seed", "%d", r.seed);
  out.field("seedIncrement", "%d", r.seedIncrement);
  out.field("nrealization", "%d", r.nrealization);
}

int printSimInput(const nuvo_simInput &si, const FieldPrinter &out) {
  out.field("consoleAppFlag", "%d", si.consoleAppFlag);
  out.blank();
  NUVO_TRY(printImage(out, "simImage", si.simImage));
  out.field("nvar", "%d", si.nvar);
  out.blank();
  printOutput(out, si, si.nvar);

  out.field("ntrainImage", "%d", si.ntrainImage);
  out.items("simGridAsTiFlag", kPerTrainImage, si.simGridAsTiFlag, si.ntrainImage, "%d");
  if (si.trainImage == nullptr) {
    out.notAllocated("trainImage");
  } else {
    out.heading("trainImage");
    std::string nested = nestedPrefix(out.prefix());
    for (int i = 0; i < si.ntrainImage; ++i) {
      out.itemHeading("trainImage", kPerTrainImage, i);
      if (si.simGridAsTiFlag != nullptr && si.simGridAsTiFlag[i] == 1)
        std::fprintf(out.stream(), "%ssimulation grid is set as training image\n", nested.c_str());
      else
        NUVO_TRY(NUVOPrintImage(&si.trainImage[i], nested.c_str(), out.stream()));
    }
  }
  if (si.ntrainImage > 1) NUVO_TRY(printImage(out, "pdfTrainImage", si.pdfTrainImage));
  out.blank();

  out.field("ndataImage", "%d", si.ndataImage);
  if (si.ndataImage > 0)
    NUVO_TRY(printNestedItems(out, "dataImage", "data image", si.dataImage, si.ndataImage,
                              NUVOPrintImage));
  out.field("ndataPointSet", "%d", si.ndataPointSet);
  if (si.ndataPointSet > 0)
    NUVO_TRY(printNestedItems(out, "dataPointSet", "data point set", si.dataPointSet,
                              si.ndataPointSet, NUVOPrintPointSet));
  out.blank();
  out.field("maskImageFlag", "%d", si.maskImageFlag);
  if (si.maskImageFlag) NUVO_TRY(printImage(out, "maskImage", si.maskImage));
  out.blank();

  const char *const homothetyNames[] = {"homothetyXRatioImage", "homothetyYRatioImage",
                                        "homothetyZRatioImage"};
  const nuvo_image *const homothetyImages[] = {si.homothetyXRatioImage, si.homothetyYRatioImage,
                                               si.homothetyZRatioImage};
  NUVO_TRY(printHomothety(
      out, si, [&](int k) { return printImage(out, homothetyNames[k], homothetyImages[k]); }));
  out.blank();
  const char *const rotationNames[] = {"rotationAzimuthImage", "rotationDipImage",
                                       "rotationPlungeImage"};
  const nuvo_image *const rotationImages[] = {si.rotationAzimuthImage, si.rotationDipImage,
                                              si.rotationPlungeImage};
  NUVO_TRY(printRotation(
      out, si, [&](int k) { return printImage(out, rotationNames[k], rotationImages[k]); }));
  out.blank();

  NUVO_TRY(printSearchAndDistance(out, si, si.nvar));
  NUVO_TRY(printNestedItems(out, "softProbability", kPerVariable, si.softProbability, si.nvar,
                            NUVOPrintSoftProbability));
  NUVO_TRY(printNestedItems(out, "connectivity", kPerVariable, si.connectivity, si.nvar,
                            NUVOPrintConnectivity));
  NUVO_TRY(
      printNestedItems(out, "blockData", kPerVariable, si.blockData, si.nvar, NUVOPrintBlockData));
  out.blank();
  out.items("maxScanFraction", kPerTrainImage, si.maxScanFraction, si.ntrainImage, kReal);
  out.blank();
  NUVO_TRY(printNested(out, "pyramidGeneralParameters", si.pyramidGeneralParameters,
                       NUVOPrintPyramidGeneralParameters));
  NUVO_TRY(printNestedItems(out, "pyramidParameters", kPerVariable, si.pyramidParameters, si.nvar,
                            NUVOPrintPyramidParameters));
  out.blank();
  printPostProcessingAndSeeds(out, si, si.nvar, si.ntrainImage);
  return 0;
}

int printSimInputASCII(const nuvo_simInputASCII &si, const FieldPrinter &out) {
  out.field("consoleAppFlag", "%d", si.consoleAppFlag);
  out.blank();
  out.field("simGridNx", "%d", si.simGridNx);
  out.field("simGridNy", "%d", si.simGridNy);
  out.field("simGridNz", "%d", si.simGridNz);
  out.field("simGridSx", kReal, si.simGridSx);
  out.field("simGridSy", kReal, si.simGridSy);
  out.field("simGridSz", kReal, si.simGridSz);
  out.field("simGridOx", kReal, si.simGridOx);
  out.field("simGridOy", kReal, si.simGridOy);
  out.field("simGridOz", kReal, si.simGridOz);
  out.field("nsimVar", "%d", si.nsimVar);
  out.items("simVarName", kPerVariable, si.simVarName, si.nsimVar, "%s");
  out.blank();
  printOutput(out, si, si.nsimVar);

  out.field("ntrainImage", "%d", si.ntrainImage);
  out.items("trainImageFileName", kPerTrainImage, si.trainImageFileName, si.ntrainImage, "%s");
  if (si.ntrainImage > 1) out.text("pdfTrainImageFileName", si.pdfTrainImageFileName);
  out.blank();
  out.field("ndataImageFile", "%d", si.ndataImageFile);
  if (si.ndataImageFile > 0)
    out.items("dataImageFileName", "data image", si.dataImageFileName, si.ndataImageFile, "%s");
  out.field("ndataPointSetFile", "%d", si.ndataPointSetFile);
  if (si.ndataPointSetFile > 0)
    out.items("dataPointSetFileName", "data point set", si.dataPointSetFileName,
              si.ndataPointSetFile, "%s");
  out.blank();
  out.field("maskImageFlag", "%d", si.maskImageFlag);
  if (si.maskImageFlag) out.text("maskImageFileName", si.maskImageFileName);
  out.blank();

  const char *const homothetyNames[] = {"homothetyXRatioImageFileName",
                                        "homothetyYRatioImageFileName",
                                        "homothetyZRatioImageFileName"};
  const char *const homothetyFiles[] = {si.homothetyXRatioImageFileName,
                                        si.homothetyYRatioImageFileName,
                                        si.homothetyZRatioImageFileName};
  NUVO_TRY(printHomothety(out, si, [&](int k) {
    out.text(homothetyNames[k], homothetyFiles[k]);
    return 0;
  }));
  out.blank();
  const char *const rotationNames[] = {"rotationAzimuthImageFileName", "rotationDipImageFileName",
                                       "rotationPlungeImageFileName"};
  const char *const rotationFiles[] = {si.rotationAzimuthImageFileName, si.rotationDipImageFileName,
                                       si.rotationPlungeImageFileName};
  NUVO_TRY(printRotation(out, si, [&](int k) {
    out.text(rotationNames[k], rotationFiles[k]);
    return 0;
  }));
  out.blank();

  NUVO_TRY(printSearchAndDistance(out, si, si.nsimVar));
  NUVO_TRY(printNestedItems(out, "softProbabilityASCII", kPerVariable, si.softProbabilityASCII,
                            si.nsimVar, NUVOPrintSoftProbabilityASCII));
  NUVO_TRY(printNestedItems(out, "connectivityASCII", kPerVariable, si.connectivityASCII,
                            si.nsimVar, NUVOPrintConnectivityASCII));
  NUVO_TRY(printNestedItems(out, "blockDataASCII", kPerVariable, si.blockDataASCII, si.nsimVar,
                            NUVOPrintBlockDataASCII));
  out.blank();
  out.items("maxScanFraction", kPerTrainImage, si.maxScanFraction, si.ntrainImage, kReal);
  out.blank();
  NUVO_TRY(printNested(out, "pyramidGeneralParametersASCII", si.pyramidGeneralParametersASCII,
                       NUVOPrintPyramidGeneralParametersASCII));
  if (si.pyramidParameters != nullptr)
    NUVO_TRY(printNestedItems(out, "pyramidParameters", kPerVariable, si.pyramidParameters,
                              si.nsimVar, NUVOPrintPyramidParameters));
  out.blank();
  printPostProcessingAndSeeds(out, si, si.nsimVar, si.ntrainImage);
  return 0;
}

}  // namespace
}  // namespace nuvo

extern "C" {

int NUVOPrintSimInput(const nuvo_simInput *si, const char *prefix, FILE *stream) {
  return nuvo::guardedCall([&] { return nuvo::printSimInput(*si, {stream, prefix}); });
}

int NUVOPrintSimInputASCII(const nuvo_simInputASCII *si, const char *prefix, FILE *stream) {
  return nuvo::guardedCall([&] { return nuvo::printSimInputASCII(*si, {stream, prefix}); });
}

}  // extern "C"
