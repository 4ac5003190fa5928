#include "input/export_blocks.hpp"

#include "constraints/keywords.hpp"
#include "input/text_io.hpp"
#include "nuvo_imagefile.h"
#include "pyramid/keywords.hpp"

namespace nuvo {
namespace {

constexpr char kDataFormat[] = "%.10g";
constexpr char kFactor[] = "%.16g";

int writeGslibImage(const ParameterFileWriter &w, const std::string &name,
                    const nuvo_image *image) {
  return w.writeDataFile(name, [image](FILE *file) {
    return NUVOWriteImage(image, kDataFormat, NUVO_IMAGE_FORMAT_GSLIB, file);
  });
}

const char *softProbabilityRemark(int usage) {
  switch (usage) {
    case NUVO_PROBABILITY_CONSTRAINT_GLOBAL:
      return "global probability constraint";
    case NUVO_PROBABILITY_CONSTRAINT_LOCAL:
      return "local probability constraint";
    default:
      return "no probability constraint";
  }
}

const char *connectivityRemark(int usage) {
  switch (usage) {
    case NUVO_CONNECTIVITY_PATHS_RANDOM_ORDER:
      return "pasting connecting paths (before simulation) (random order)";
    case NUVO_CONNECTIVITY_PATHS_DISTANCE_ORDER:
      return "pasting connecting paths (before simulation) (order according to distance)";
    case NUVO_CONNECTIVITY_PATTERN:
      return "connectivity set during simulation (patterns of labels)";
    default:
      return "no connectivity constraint";
  }
}

int nclassOf(const nuvo_classOfValues *c) {
  return c != nullptr ? c->nclass : 0;
}

// A factor list in the manual form: its keyword, then in the hierarchical modes
// four factors per level and the last one, otherwise one factor per level.
void exportFactors(const ParameterFileWriter &w, const char *keyword, const char *what,
                   const double *f, int nfactor, bool perStep) {
  w.word(formatted("mode for adapting factors (%s)", what), keyword);
  int j = 0;
  for (; perStep && j + 1 < nfactor; j += 4)
    w.line(formatted("faCond[%d], faSim[%d], fbCond[%d] fbSim[%d]", j / 4, j / 4, j / 4, j / 4),
           "%.16g %.16g %.16g %.16g", f[j], f[j + 1], f[j + 2], f[j + 3]);
  for (; j < nfactor; ++j)
    w.line(perStep ? formatted("fbSim[%d]", j / 4) : formatted("f[%d]", j), kFactor, f[j]);
}

void exportPyramidGeneral(const ParameterFileWriter &w, const nuvo_pyramidGeneralParameters &p) {
  const int n = p.npyramidLevel;
  w.line("number of level(s) additional to initial SG", "%d", n);
  if (n < 1) return;
  for (int i = 0; i < n; ++i)
    w.line(formatted("reduction step along x, y, z for level %d", i + 1), "%d %d %d", p.kx[i],
           p.ky[i], p.kz[i]);
  w.word("pyramid simulation mode",
         keywordOf(kPyramidSimulationModeKeywords, p.pyramidSimulationMode));
  const int nfactor = NUVOGetPyramidNFactor(p.pyramidSimulationMode, n);
  if (nfactor == 0) return;
  const bool perStep = nfactor == 4 * n + 1;
  exportFactors(w, kPyramidNneighborFactorModeKeywords[PYRAMID_NNEIGHBOR_ADAPTING_FACTOR_MANUAL],
                "max number of neighbors", p.factorNneighboringNode, nfactor, perStep);
  exportFactors(w, kPyramidThresholdFactorModeKeywords[PYRAMID_THRESHOLD_ADAPTING_FACTOR_MANUAL],
                "distance threshold", p.factorDistanceThreshold, nfactor, perStep);
  exportFactors(
      w,
      kPyramidMaxScanFractionFactorModeKeywords[PYRAMID_MAX_SCAN_FRACTION_ADAPTING_FACTOR_MANUAL],
      "maximal scan fraction", p.factorMaxScanFraction, n + 1, false);
}

void exportPyramidParameters(const ParameterFileWriter &w, const nuvo_pyramidParameters &p) {
  w.line("nlevel", "%d", p.nlevel);
  if (p.nlevel < 1) return;
  w.word("pyramid type", keywordOf(kPyramidTypeKeywords, p.pyramidType));
  if (p.pyramidType == PYRAMID_CATEGORICAL_CUSTOM) exportClassOfValues(w, p.classOfValues);
}

}  // namespace

void exportClassOfValues(const ParameterFileWriter &w, const nuvo_classOfValues *c) {
  const int nclass = nclassOf(c);
  w.line("number of classes", "%d", nclass);
  for (int i = 0; i < nclass; ++i) {
    std::string bounds;
    for (int k = 0; k < c->ninterval[i]; ++k)
      bounds += formatted(" %lf %lf", c->intervalInf[i][k], c->intervalSup[i][k]);
    w.line(formatted("class %d: number of intervals, then their bounds", i), "%d%s",
           c->ninterval[i], bounds.c_str());
  }
}

int exportSoftProbability(const ParameterFileWriter &w, const nuvo_softProbability *sp, int iv) {
  const int usage = sp != nullptr ? sp->probabilityConstraintUsage : 0;
  w.line(softProbabilityRemark(usage), "%d", usage);
  if (usage == NUVO_PROBABILITY_CONSTRAINT_NONE) return 0;
  exportClassOfValues(w, sp->classOfValues);
  if (usage == NUVO_PROBABILITY_CONSTRAINT_GLOBAL) {
    for (int k = 0; k < nclassOf(sp->classOfValues); ++k)
      w.line(formatted("probability of class %d", k), "%lf", sp->globalPdf[k]);
  } else if (usage == NUVO_PROBABILITY_CONSTRAINT_LOCAL) {
    std::string name = w.fileName("_localPdf", iv, ".gslib");
    NUVO_TRY(writeGslibImage(w, name, sp->localPdfImage));
    w.word("local pdf image file", name.c_str());
    w.line("support radius for local pdf", "%lf", *sp->localPdfSupportRadius);
    w.line("computation of the local current pdf (0: complete, 1: approximate)", "%d",
           sp->localCurrentPdfComputation);
  }
  w.line("method for comparing pdfs", "%d", sp->comparingPdfMethod);
  w.line("deactivation distance", "%lf", sp->deactivationDistance);
  w.line("threshold type (0: constant, 1: dynamic)", "%d", sp->probabilityConstraintThresholdType);
  if (sp->probabilityConstraintThresholdType == NUVO_PROBABILITY_THRESHOLD_CONSTANT) {
    w.line("constant threshold", "%lf", sp->constantThreshold);
  } else if (sp->probabilityConstraintThresholdType == NUVO_PROBABILITY_THRESHOLD_DYNAMIC) {
    const double *d = sp->dynamicThresholdParameters;
    w.line("M1 M2 M3 T1 T2 T3 W (dynamic threshold)", "%lf %lf %lf %lf %lf %lf %lf", d[0], d[1],
           d[2], d[3], d[4], d[5], d[6]);
  }
  return 0;
}

int exportConnectivity(const ParameterFileWriter &w, const nuvo_connectivity *c, int iv) {
  const int usage = c != nullptr ? c->connectivityConstraintUsage : 0;
  w.line(connectivityRemark(usage), "%d", usage);
  if (usage == NUVO_CONNECTIVITY_NONE) return 0;
  w.word("connectivity type", keywordOf(kConnectivityTypeKeywords, c->connectivityType));
  exportClassOfValues(w, c->classOfValues);
  w.word("name of the label variable in the conditioning data", c->varName);
  if (usage == NUVO_CONNECTIVITY_PATTERN) {
    w.line("deactivation distance", "%lf", c->deactivationDistance);
    w.line("threshold", "%lf", c->threshold);
  } else if (usage == NUVO_CONNECTIVITY_PATHS_RANDOM_ORDER ||
             usage == NUVO_CONNECTIVITY_PATHS_DISTANCE_ORDER) {
    if (c->tiAsRefFlag) {
      w.word("reference image: the first training image", NUVO_CONNECTIVITY_TI_AS_REF);
      return 0;
    }
    std::string name = w.fileName("_refConnectivityImage", iv, ".gslib");
    NUVO_TRY(writeGslibImage(w, name, c->refConnectivityImage));
    w.word("reference connectivity image file", name.c_str());
    w.word("variable of the reference image", c->refConnectivityImage->varName[0]);
  }
  return 0;
}

int exportBlockData(const ParameterFileWriter &w, const nuvo_blockData *bd, int iv) {
  if (bd == nullptr || bd->blockDataUsage != NUVO_BLOCK_DATA_MEAN) {
    w.line("no block data", "%d", bd != nullptr ? bd->blockDataUsage : 0);
    return 0;
  }
  std::string name = w.fileName("_blockData", iv, ".dat");
  NUVO_TRY(w.writeDataFile(name, [bd](FILE *file) { return NUVOWriteBlockData(bd, file); }));
  w.line("block data file", "%d %s", bd->blockDataUsage, name.c_str());
  return 0;
}

void exportPyramids(const ParameterFileWriter &w, const nuvo_simInput &si) {
  w.heading("/* PYRAMIDS */");
  w.notes({"Pyramids: simulation at coarser resolutions first. The general parameters give the",
           "number of additional levels, the reduction steps per level, the simulation mode and",
           "the factors adapting, per level, the maximal number of neighbors, the distance",
           "threshold and the maximal scan fraction; then, only if there are levels, one",
           "section per variable: its number of levels and its pyramid type."});
  w.heading("/* PYRAMID GENERAL PARAMETERS */");
  nuvo_pyramidGeneralParameters none{};
  const nuvo_pyramidGeneralParameters &general =
      si.pyramidGeneralParameters != nullptr ? *si.pyramidGeneralParameters : none;
  exportPyramidGeneral(w, general);
  if (general.npyramidLevel < 1) return;
  for (int iv = 0; iv < si.nvar; ++iv) {
    w.heading(formatted("/* PYRAMID PARAMETERS FOR VARIABLE #%d */", iv));
    nuvo_pyramidParameters unused{};
    exportPyramidParameters(w, si.pyramidParameters != nullptr ? si.pyramidParameters[iv] : unused);
  }
}

}  // namespace nuvo
