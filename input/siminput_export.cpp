// NUVOExportSimInput: a simulation input in memory written as a parameter file
// that NUVOReadSimInputASCII reads back, with its images, point sets and block
// data in files beside it. Sections follow the order of the file; comment
// level 2 explains each section for a reader new to the format.
#include <cstring>
#include <string>

#include "data/c_locale.hpp"
#include "input/export_blocks.hpp"
#include "input/export_writer.hpp"
#include "input/keywords.hpp"
#include "input/text_io.hpp"
#include "nuvo_imagefile.h"
#include "nuvo_siminput.h"

namespace nuvo {
namespace {

constexpr char kDataFormat[] = "%.10g";
constexpr char kReal[] = "%lf";
constexpr char kReal3[] = "%14.6lf %14.6lf %14.6lf";

int writeImage(const ParameterFileWriter &w, const std::string &name, const nuvo_image *image) {
  return w.writeDataFile(name, [image](FILE *file) {
    return NUVOWriteImage(image, kDataFormat, NUVO_IMAGE_FORMAT_GSLIB, file);
  });
}

// Writes the image to its data file and its name into the parameter file.
int exportImage(const ParameterFileWriter &w, const std::string &remark, const std::string &name,
                const nuvo_image *image) {
  NUVO_TRY(writeImage(w, name, image));
  w.word(remark, name.c_str());
  return 0;
}

std::string variableRemark(const nuvo_simInput &si, int iv) {
  return formatted("variable #%d (%s)", iv, si.simImage->varName[iv]);
}

// One value per variable, each on its own line.
template <typename T>
void exportPerVariable(const ParameterFileWriter &w, const nuvo_simInput &si, const T *values,
                       const char *format) {
  for (int iv = 0; iv < si.nvar; ++iv) w.line(variableRemark(si, iv), format, values[iv]);
}

// One value per training image, each on its own line.
void exportPerTrainImage(const ParameterFileWriter &w, const nuvo_simInput &si,
                         const double *values) {
  for (int i = 0; i < si.ntrainImage; ++i)
    w.line(formatted("training image #%d", i), kReal, values[i]);
}

// Per-variable sections written by exportOne(writer, record or null, iv), each
// under its own heading.
template <typename T, typename Export>
int exportPerVariableSections(const ParameterFileWriter &w, const nuvo_simInput &si,
                              const char *headingFormat, const T *records, Export exportOne) {
  for (int iv = 0; iv < si.nvar; ++iv) {
    w.heading(formatted(headingFormat, iv));
    NUVO_TRY(exportOne(w, records != nullptr ? &records[iv] : nullptr, iv));
  }
  return 0;
}

// Sections 1 and 2.
void exportGridAndVariables(const ParameterFileWriter &w, const nuvo_simInput &si) {
  const nuvo_grid &g = *si.simImage->grid;
  w.heading("/* SIMULATION GRID (SG) */");
  w.notes({"nx ny nz: number of nodes along each axis; sx sy sz: cell size; ox oy oz: origin",
           "(bottom-left-down corner of the grid)."});
  w.line("dimension", "%7d %14d %14d", g.nx, g.ny, g.nz);
  w.line("cell size", kReal3, g.sx, g.sy, g.sz);
  w.line("origin", kReal3, g.ox, g.oy, g.oz);
  w.heading("/* SIMULATION VARIABLES */");
  w.notes({"Number of variables, then per variable: its name, its output flag (1: written in the",
           "output files, 0: not written) and, only with flag 1, the format (fprintf) of its",
           "values or DEFAULT_FORMAT. Example with three variables:", "   3",
           "   varName1 1 %10.5f", "   varName2 0", "   varName3 1 DEFAULT_FORMAT"});
  w.line("number of simulated variables", "%d", si.nvar);
  for (int iv = 0; iv < si.nvar; ++iv) {
    w.word(formatted("name of variable #%d", iv), si.simImage->varName[iv]);
    const int flag = si.outputVarFlag != nullptr ? si.outputVarFlag[iv] : 0;
    w.line("output flag", "%d", flag);
    if (flag == 1) w.word("format", NUVO_DEFAULT_FORMAT_NAME);
  }
}

// Sections 3 to 5: the realizations always go to one file per realization.
void exportOutput(const ParameterFileWriter &w, const nuvo_simInput &si) {
  w.heading("/* OUTPUT SETTINGS FOR SIMULATION */");
  w.notes({"OUTPUT_SIM_NO_FILE: no file;",
           "OUTPUT_SIM_ALL_IN_ONE_FILE followed by one file name: all realizations in one file;",
           "OUTPUT_SIM_ONE_FILE_PER_VARIABLE followed by one file name per variable whose output",
           "   flag is 1;",
           "OUTPUT_SIM_ONE_FILE_PER_REALIZATION followed by a prefix: the realization i is",
           "   written in <prefix>_real<i on five digits>.gslib."});
  w.word("", kOutputSimJobKeywords[OUTPUT_SIM_ONE_FILE_PER_REALIZATION]);
  w.word("prefix of the realization files", w.prefixed("").c_str());
  w.heading("/* OUTPUT: ADDITIONAL MAPS */");
  w.notes({"Four maps written for each realization, each as a flag (0 / 1), then, with 1, the",
           "prefix of its files: the path index map (index of each node in the simulation",
           "path), the error map (error e of the retained candidate, see TOLERANCE), the TI grid",
           "node index map (node of the training image retained for each node) and the TI",
           "index map (training image retained for each node)."});
  const struct {
    signed char flag;
    const char *remark;
    const char *suffix;
  } maps[] = {{si.outputPathIndexFlag, "path index map", "_pathIndex"},
              {si.outputErrorFlag, "error map", "_error"},
              {si.outputTiGridNodeIndexFlag, "TI grid node index map", "_tiGridNodeIndex"},
              {si.outputTiIndexFlag, "TI index map", "_tiIndex"}};
  for (const auto &map : maps) {
    w.line(map.remark, "%d", map.flag);
    if (map.flag)
      w.word(formatted("prefix of the %s files", map.remark), w.prefixed(map.suffix).c_str());
  }
  w.heading("/* OUTPUT REPORT */");
  w.notes({"Flag (0 / 1), then, with 1, the name of the report file."});
  w.line("report", "%d", si.outputReportFlag);
  if (si.outputReportFlag) w.word("report file", w.fileName("_report", -1, ".txt").c_str());
}

// Sections 6 to 9.
int exportImagesAndData(const ParameterFileWriter &w, const nuvo_simInput &si) {
  w.heading("/* TRAINING IMAGE */");
  w.notes({"Number of training images (TI), their files (_DATA_ stands for the simulation grid",
           "itself as TI), then, with more than one TI, the file of an image on the simulation",
           "grid whose variables give, at every node, the probability of using each TI."});
  w.line("number of training images", "%d", si.ntrainImage);
  for (int i = 0; i < si.ntrainImage; ++i) {
    std::string remark = formatted("training image #%d", i);
    if (si.simGridAsTiFlag != nullptr && si.simGridAsTiFlag[i])
      w.word(remark, NUVO_SIM_GRID_AS_TI_NAME);
    else
      NUVO_TRY(exportImage(w, remark, w.fileName("_ti", i, ".gslib"), &si.trainImage[i]));
  }
  if (si.ntrainImage > 1)
    NUVO_TRY(exportImage(w, "pdf of the training images", w.fileName("_pdfti", -1, ".gslib"),
                         si.pdfTrainImage));
  w.heading("/* CONDITIONING DATA FILES (IMAGE FILE OR POINT SET FILE) (below) */");
  w.notes({"A variable of a data file named as a simulated variable gives hard data for it; the",
           "name followed by _min or _max gives a lower or an upper bound (inequality data)."});
  w.heading("/* DATA IMAGE FILE FOR SG */");
  w.notes({"Number of data images (on the simulation grid), then their files."});
  w.line("number of data images", "%d", si.ndataImage);
  for (int i = 0; i < si.ndataImage; ++i)
    NUVO_TRY(exportImage(w, formatted("data image #%d", i), w.fileName("_dataImage", i, ".gslib"),
                         &si.dataImage[i]));
  w.heading("/* DATA POINT SET FILE FOR SG */");
  w.notes({"Number of data point sets, then their files."});
  w.line("number of data point sets", "%d", si.ndataPointSet);
  for (int i = 0; i < si.ndataPointSet; ++i) {
    std::string name = w.fileName("_dataPointSet", i, ".gslib");
    const nuvo_pointSet *ps = &si.dataPointSet[i];
    NUVO_TRY(w.writeDataFile(
        name, [ps](FILE *file) { return NUVOWritePointSet(ps, kDataFormat, kDataFormat, file); }));
    w.word(formatted("data point set #%d", i), name.c_str());
  }
  w.heading("/* MASK IMAGE */");
  w.notes({"Flag (0 / 1), then, with 1, the file of an image on the simulation grid with one",
           "variable: 1 at the nodes to simulate, 0 at the nodes left alone."});
  w.line("mask", "%d", si.maskImageFlag);
  if (si.maskImageFlag)
    NUVO_TRY(exportImage(w, "mask image", w.fileName("_mask", -1, ".gslib"), si.maskImage));
  return 0;
}

// One axis of homothety or rotation: the flag, then the image file or the values.
struct TransformAxis {
  const char *name;
  signed char flag;
  const double *values;
  const nuvo_image *image;
  const char *suffix;
};

int exportTransform(const ParameterFileWriter &w, const char *usageRemark, int usage,
                    const TransformAxis (&axes)[3]) {
  w.line(usageRemark, "%d", usage);
  for (int k = 0; usage > 0 && k < 3; ++k) {
    const TransformAxis &axis = axes[k];
    w.line(formatted("%s given by an image", axis.name), "%d", axis.flag);
    if (axis.flag) {
      NUVO_TRY(exportImage(w, formatted("%s image", axis.name),
                           w.fileName(axis.suffix, -1, ".gslib"), axis.image));
      continue;
    }
    for (int j = 0; j < usage; ++j)
      w.line(usage == 1 ? formatted("%s", axis.name)
                        : formatted("%s, %s bound", axis.name, j == 0 ? "lower" : "upper"),
             kReal, axis.values[j]);
  }
  return 0;
}

// Sections 10 and 11.
int exportTransforms(const ParameterFileWriter &w, const nuvo_simInput &si) {
  w.heading("/* HOMOTHETY */");
  w.notes({"Usage: 0 none, 1 homothety, 2 homothety with tolerance. With usage 1 or 2, for the",
           "ratio along x, then y, then z: a flag, then with 0 one value (usage 1) or a lower and",
           "an upper bound (usage 2), with 1 the file of an image on the simulation grid with",
           "one variable (usage 1) or two (usage 2)."});
  NUVO_TRY(exportTransform(w, "homothety usage", si.homothetyUsage,
                           {{"x ratio", si.homothetyXRatioImageFlag, si.homothetyXRatioValue,
                             si.homothetyXRatioImage, "_homothetyXRatio"},
                            {"y ratio", si.homothetyYRatioImageFlag, si.homothetyYRatioValue,
                             si.homothetyYRatioImage, "_homothetyYRatio"},
                            {"z ratio", si.homothetyZRatioImageFlag, si.homothetyZRatioValue,
                             si.homothetyZRatioImage, "_homothetyZRatio"}}));
  w.heading("/* ROTATION */");
  w.notes({"Usage: 0 none, 1 rotation, 2 rotation with tolerance. With usage 1 or 2, for the",
           "azimuth, then the dip, then the plunge (degrees): the same layout as for homothety."});
  return exportTransform(
      w, "rotation usage", si.rotationUsage,
      {{"azimuth", si.rotationAzimuthImageFlag, si.rotationAzimuthValue, si.rotationAzimuthImage,
        "_rotationAzimuth"},
       {"dip", si.rotationDipImageFlag, si.rotationDipValue, si.rotationDipImage, "_rotationDip"},
       {"plunge", si.rotationPlungeImageFlag, si.rotationPlungeValue, si.rotationPlungeImage,
        "_rotationPlunge"}});
}

// A search neighborhood mode keyword, with its three values in the manual mode.
void exportMode(const ParameterFileWriter &w, const char *remark, const char *keyword, bool manual,
                double a, double b, double c) {
  if (manual)
    w.line(remark, "%s %14.6lf %14.6lf %14.6lf", keyword, a, b, c);
  else
    w.word(remark, keyword);
}

void exportSearchNeighborhood(const ParameterFileWriter &w,
                              const nuvo_searchNeighborhoodParameters &p) {
  exportMode(w, "search radii", keywordOf(kRadiusModeKeywords, p.radiusMode),
             p.radiusMode == SEARCHNEIGHBORHOOD_RADIUS_MANUAL, p.rx, p.ry, p.rz);
  exportMode(w, "anisotropy ratios", keywordOf(kAnisotropyRatioModeKeywords, p.anisotropyRatioMode),
             p.anisotropyRatioMode == SEARCHNEIGHBORHOOD_ANISOTROPY_RATIO_MANUAL, p.ax, p.ay, p.az);
  exportMode(w, "rotation", keywordOf(kRotationKeywords, p.rotationFlag),
             p.rotationFlag == SEARCHNEIGHBORHOOD_ROTATION_ON, p.angle1, p.angle2, p.angle3);
  w.line("power for computing weight according to distance", kReal, p.power);
}

// Sections 12 to 17.
void exportSearch(const ParameterFileWriter &w, const nuvo_simInput &si) {
  w.heading(
      "/* CONSISTENCY OF CONDITIONING DATA (TOLERANCE RELATIVELY TO THE RANGE OF TRAINING "
      "VALUES) */");
  w.notes({"expMax. For a variable of distance type 0, a conditioning value that is not a",
           "training value is an error when expMax >= 0, a warning otherwise. For other types",
           "with absolute distance, let new_min_ti = min(min_cd, min_ti) and new_max_ti =",
           "max(max_cd, max_ti): if new_max_ti - new_min_ti <= (1 + expMax) * (ti_max - ti_min)",
           "the training values are rescaled linearly to the new range with a warning, otherwise",
           "it is an error; with expMax < 0 there is only a warning."});
  w.line("expMax", kReal, si.trainValueRangeExtensionMax);
  w.heading(
      "/* NORMALIZATION TYPE (FOR VARIABLES FOR WHICH DISTANCE TYPE IS NOT 0 AND DISTANCE IS "
      "ABSOLUTE) */");
  w.notes({"NORMALIZING_LINEAR, NORMALIZING_UNIFORM or NORMALIZING_NORMAL."});
  w.word("", keywordOf(kNormalizingTypeKeywords, si.normalizingType));
  w.heading("/* SEARCH NEIGHBORHOOD PARAMETERS */");
  w.notes({"Per variable, an ellipsoid: the radii rx ry rz (in nodes; a keyword",
           "SEARCHNEIGHBORHOOD_RADIUS_... computes them, SEARCHNEIGHBORHOOD_RADIUS_MANUAL is",
           "followed by them), the anisotropy ratios ax ay az (inverse distance units, the same",
           "way with SEARCHNEIGHBORHOOD_ANISOTROPY_RATIO_...), the rotation",
           "(SEARCHNEIGHBORHOOD_ROTATION_OFF, or SEARCHNEIGHBORHOOD_ROTATION_ON followed by the",
           "azimuth, dip and plunge in degrees) and the power of the distance used to weigh the",
           "nodes. The nodes of the neighborhood are sorted by distance to the central node, from",
           "the closest."});
  for (int iv = 0; iv < si.nvar; ++iv) {
    w.heading(formatted("/* SEARCH NEIGHBORHOOD PARAMETERS FOR VARIABLE #%d */", iv));
    exportSearchNeighborhood(w, si.searchNeighborhoodParameters[iv]);
  }
  w.heading(
      "/* MAXIMAL NUMBER OF NEIGHBORING NODES FOR EACH VARIABLE (as many number(s) as number of "
      "variable(s)) */");
  exportPerVariable(w, si, si.nneighboringNode, "%d");
  w.heading(
      {"/* MAXIMAL DENSITY OF NEIGHBORING NODES IN SEARCH NEIGHBORHOOD FOR EACH VARIABLE (as many "
       "number(s)",
       "as number of variable(s)) */"});
  exportPerVariable(w, si, si.neighboringNodeDensity, kReal);
  w.heading(
      "/* RESCALING MODE FOR EACH VARIABLE (as many specification as number of variable(s)) */");
  w.notes({"RESCALING_NONE, RESCALING_MIN_MAX followed by the target min and max, or",
           "RESCALING_MEAN_LENGTH followed by the target mean and length. The last two modes do",
           "not go with distance type 0 or relative distance; classes of values are then given",
           "in the target interval."});
  for (int iv = 0; iv < si.nvar; ++iv) {
    const int mode = si.rescalingMode[iv];
    const char *keyword = keywordOf(kRescalingModeKeywords, mode);
    if (mode == RESCALING_MIN_MAX)
      w.line(variableRemark(si, iv), "%s %14.6lf %14.6lf", keyword, si.rescalingTargetMin[iv],
             si.rescalingTargetMax[iv]);
    else if (mode == RESCALING_MEAN_LENGTH)
      w.line(variableRemark(si, iv), "%s %14.6lf %14.6lf", keyword, si.rescalingTargetMean[iv],
             si.rescalingTargetLength[iv]);
    else
      w.word(variableRemark(si, iv), keyword);
  }
}

// Sections 18 to 23.
void exportDistanceAndPath(const ParameterFileWriter &w, const nuvo_simInput &si) {
  w.heading(
      "/* RELATIVE DISTANCE FLAG FOR EACH VARIABLE (as many flag(s) (0 / 1) as number of "
      "variable(s)) */");
  for (int iv = 0; iv < si.nvar; ++iv)
    w.line(variableRemark(si, iv), "%d", si.relativeDistanceFlag[iv]);
  w.heading("/* DISTANCE TYPE FOR EACH VARIABLE (as many number(s) as number of variable(s)) */");
  w.notes({"0: non-matching nodes (typically for categorical variables), 1: L-1, 2: L-2,",
           "3: L-p, followed by the positive real p, 4: L-infinity."});
  for (int iv = 0; iv < si.nvar; ++iv) {
    if (si.distanceType[iv] == 3)
      w.line(variableRemark(si, iv), "%d %lf", 3, si.powerLpDistance[iv]);
    else
      w.line(variableRemark(si, iv), "%d", si.distanceType[iv]);
  }
  w.heading(
      "/* WEIGHT FACTOR FOR CONDITIONING DATA, FOR EACH VARIABLE (as many number(s) as number of "
      "variable(s)) */");
  w.notes({"Factor applied to the contribution of a conditioning datum to the distance between",
           "data events."});
  exportPerVariable(w, si, si.conditioningWeightFactor, kReal);
  const nuvo_simAndPathParameters &p = *si.simAndPathParameters;
  w.heading("/* SIMULATION TYPE */");
  w.notes({"SIM_ONE_BY_ONE: one variable at one node at a time (4D path);",
           "SIM_VARIABLE_VECTOR: all variables at one node at a time (3D path)."});
  w.word("", keywordOf(kSimTypeKeywords, p.simType));
  w.heading("/* SIMULATION PATH */");
  w.notes({"PATH_RANDOM; PATH_RANDOM_HD_DISTANCE_PDF s; PATH_RANDOM_HD_DISTANCE_SORT s;",
           "PATH_RANDOM_HD_DISTANCE_SUM_PDF p s; PATH_RANDOM_HD_DISTANCE_SUM_SORT p s: random",
           "paths visiting first the nodes close to the conditioning data, with strength s in",
           "[0, 1] and power p in (0, 10]; PATH_UNILATERAL followed by the order of x, y, z (and",
           "the variable for SIM_ONE_BY_ONE): 0 random, +-1, +-2 ... the rank of the axis, the",
           "sign its direction."});
  const char *path = keywordOf(kPathTypeKeywords, p.pathType);
  if (p.pathType == PATH_UNILATERAL) {
    std::string order;
    for (int k = 0; k < p.nunilateralOrder; ++k) order += formatted(" %d", p.unilateralOrder[k]);
    w.line("", "%s%s", path, order.c_str());
  } else {
    w.word("", path);
  }
  if (p.pathType == PATH_RANDOM_HD_DISTANCE_SUM_PDF ||
      p.pathType == PATH_RANDOM_HD_DISTANCE_SUM_SORT)
    w.line("power p", kReal, p.pow);
  if (p.pathType >= PATH_RANDOM_HD_DISTANCE_PDF && p.pathType <= PATH_RANDOM_HD_DISTANCE_SUM_SORT)
    w.line("strength s", kReal, p.strength);
  w.heading(
      "/* DISTANCE THRESHOLD FOR EACH VARIABLE (as many number(s) as number of variable(s)) */");
  exportPerVariable(w, si, si.distanceThreshold, kReal);
}

// Sections 24 to 28.
int exportConstraintsAndPyramids(const ParameterFileWriter &w, const nuvo_simInput &si) {
  w.heading("/* PROBABILITY CONSTRAINTS */");
  w.notes({"Per variable: usage (0 none, 1 global, 2 local); with 1 or 2 the classes of values",
           "(number of classes, then per class its number of intervals and their bounds), the",
           "global pdf (usage 1) or the local pdf image file, support radius and computation",
           "mode (usage 2), the comparing method, the deactivation distance, the threshold type",
           "and the threshold (type 0) or the seven parameters M1 M2 M3 T1 T2 T3 W (type 1)."});
  NUVO_TRY(exportPerVariableSections(w, si, "/* PROBABILITY CONSTRAINTS FOR VARIABLE #%d */",
                                     si.softProbability, exportSoftProbability));
  w.heading("/* CONNECTIVITY CONSTRAINTS */");
  w.notes({"Per variable: usage (0 none, 1 or 2 connecting paths pasted before the simulation,",
           "3 patterns of labels checked during it); otherwise the connectivity type, the classes",
           "of values, the label variable, then the reference image file (or _TI_) and its",
           "variable (usage 1, 2) or the deactivation distance and the threshold (usage 3)."});
  NUVO_TRY(exportPerVariableSections(w, si, "/* CONNECTIVITY CONSTRAINTS FOR VARIABLE #%d */",
                                     si.connectivity, exportConnectivity));
  w.heading("/* BLOCK DATA */");
  w.notes({"Per variable: 0 (none) or 1 followed by a block data file."});
  NUVO_TRY(exportPerVariableSections(w, si, "/* BLOCK DATA FOR VARIABLE #%d */", si.blockData,
                                     exportBlockData));
  w.heading(
      "/* MAXIMAL SCAN FRACTION FOR EACH TI (as many number(s) as number of training "
      "image(s)) */");
  exportPerTrainImage(w, si, si.maxScanFraction);
  exportPyramids(w, si);
  return 0;
}

// Sections 29 to 33: post-processing settings are always written explicitly.
void exportPostProcessingAndSeeds(const ParameterFileWriter &w, const nuvo_simInput &si) {
  w.heading("/* TOLERANCE */");
  w.notes({"Tolerance t. With e(i) = max(0, (d(i) - s(i)) / s(i)) for the distance d(i) and the",
           "threshold s(i) of variable i, the node minimising e = sum of e(i) is retained and the",
           "scan stops if e = 0; if e > t the node and the non-conditioning nodes of its data",
           "event are flagged for post-processing."});
  w.line("tolerance", kReal, si.tolerance);
  w.heading("/* POST-PROCESSING */");
  w.notes({"Maximal number of post-processing paths; if positive, followed by",
           "POST_PROCESSING_PARAMETERS_DEFAULT (default settings), POST_PROCESSING_PARAMETERS_SAME",
           "(the settings above) or POST_PROCESSING_PARAMETERS_MANUAL followed by the maximal",
           "numbers of neighbors, densities and distance thresholds per variable, the maximal",
           "scan fractions per TI and the tolerance."});
  w.line("maximal number of post-processing paths", "%d", si.npostProcessingPathMax);
  if (si.npostProcessingPathMax > 0) {
    w.word("", kPostProcessingParametersKeywords[POST_PROCESSING_PARAMETERS_MANUAL]);
    w.heading("/* POST-PROCESSING: MAXIMAL NUMBER OF NEIGHBORING NODES FOR EACH VARIABLE */");
    exportPerVariable(w, si, si.postProcessingNneighboringNode, "%d");
    w.heading(
        "/* POST-PROCESSING: MAXIMAL DENSITY OF NEIGHBORING NODES IN SEARCH NEIGHBORHOOD FOR EACH "
        "VARIABLE */");
    exportPerVariable(w, si, si.postProcessingNeighboringNodeDensity, kReal);
    w.heading("/* POST-PROCESSING: DISTANCE THRESHOLD FOR EACH VARIABLE */");
    exportPerVariable(w, si, si.postProcessingDistanceThreshold, kReal);
    w.heading("/* POST-PROCESSING: MAXIMAL SCAN FRACTION FOR EACH TI */");
    exportPerTrainImage(w, si, si.postProcessingMaxScanFraction);
    w.heading("/* POST-PROCESSING: TOLERANCE */");
    w.line("tolerance", kReal, si.postProcessingTolerance);
  }
  w.heading("/* SEED NUMBER AND SEED INCREMENT */");
  w.line("seed", "%d", si.seed);
  w.line("seed increment", "%d", si.seedIncrement);
  w.heading("/* NUMBER OF REALIZATION(S) */");
  w.line("number of realizations", "%d", si.nrealization);
  w.word("", "END");
}

int exportSimInput(const nuvo_simInput &si, const char *directory, const char *prefix,
                   const char *endOfLine, int commentLevel) {
  NUVO_FAIL_IF(std::strpbrk(prefix, "/\\") != nullptr, kExportBadPrefix);
  CNumericLocale cLocale;
  const std::string path = std::string(directory) + "/" + prefix + ".in";
  File out(std::fopen(path.c_str(), "w"));
  NUVO_FAIL_IF(out == nullptr, kExportCannotOpen);
  ParameterFileWriter w(out.get(), directory, prefix, endOfLine, commentLevel);
  exportGridAndVariables(w, si);
  exportOutput(w, si);
  NUVO_TRY(exportImagesAndData(w, si));
  NUVO_TRY(exportTransforms(w, si));
  exportSearch(w, si);
  exportDistanceAndPath(w, si);
  NUVO_TRY(exportConstraintsAndPyramids(w, si));
  exportPostProcessingAndSeeds(w, si);
  return ParameterFileWriter::close(out);
}

}  // namespace
}  // namespace nuvo

extern "C" {

int NUVOExportSimInput(const nuvo_simInput *si, const char *directory, const char *filePrefix,
                       const char *endOfLine, int commentLevel) {
  return nuvo::guardedCall(
      [&] { return nuvo::exportSimInput(*si, directory, filePrefix, endOfLine, commentLevel); });
}

}  // extern "C"
