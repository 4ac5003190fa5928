// Probability constraint records: life cycle, text form, printing, conversion and
// validation. The record and its text form share every field but the local pdf
// (an image in one, a file name in the other), so the code common to both is
// written once over the record type.
#include <cmath>
#include <cstdio>

#include "constraints/coded_print.hpp"
#include "constraints/owned.hpp"
#include "foundation/check.hpp"
#include "input/text_io.hpp"
#include "nuvo_softprobability.h"
#include "nuvo_text.h"

namespace nuvo {
namespace {

constexpr int kWarningDeactivationReachesRadius = 120;

// Texts printed after the numeric value of each enumeration.
constexpr const char *kUsageText[] = {"\n", "(global)\n", "(local)\n"};
constexpr const char *kCurrentPdfText[] = {"(\"COMPLETE\" mode)\n", "(\"APPROXIMATE\" mode)\n"};
constexpr const char *kMethodText[] = {
    "(MAE (Mean Absolute Error))\n",
    "(RMSE (Root Mean Squared Error))\n",
    "(KLD (Kullback Leibler Divergence))\n",
    "(JSD (Jensen-Shannon Divergence))\n",
    "MLikRsym (Mean Likelihood Ratio (over each class indicator, symmetric target interval))\n",
    "MLikRopt (Mean Likelihood Ratio (over each class indicator, optimal target interval))\n"};
constexpr const char *kThresholdTypeText[] = {"(constant threshold)\n", "(dynamic threshold)\n"};

int nclassOf(const nuvo_classOfValues *classes) {
  return classes != nullptr ? classes->nclass : 0;
}

// ---- Fields common to the record and its text form ----

template <typename Record>
void initCommon(Record *sp) {
  *sp = Record{};
}

template <typename Record>
void freeCommon(Record *sp) {
  releaseOwnedClasses(&sp->classOfValues);
  releaseArray(&sp->globalPdf);
  releaseArray(&sp->localPdfSupportRadius);
  releaseArray(&sp->dynamicThresholdParameters);
}

// The whole dump; printLocalPdf writes the line(s) of the local pdf itself.
template <typename Record, typename LocalPdfPrinter>
int printCommon(const Record *sp, const char *prefix, FILE *stream, LocalPdfPrinter printLocalPdf) {
  const int usage = sp->probabilityConstraintUsage;
  printCoded(stream, prefix, "probabilityConstraintUsage", usage, kUsageText, "(unknown)\n");
  if (usage != NUVO_PROBABILITY_CONSTRAINT_GLOBAL && usage != NUVO_PROBABILITY_CONSTRAINT_LOCAL)
    return 0;
  FieldPrinter out(stream, prefix);
  NUVO_TRY(printNested(out, "classOfValues", sp->classOfValues, NUVOPrintClassOfValues));
  if (usage == NUVO_PROBABILITY_CONSTRAINT_GLOBAL) {
    if (sp->globalPdf == nullptr) {
      out.notAllocated("globalPdf");
    } else if (nclassOf(sp->classOfValues) < 1) {
      out.text("globalPdf", "NUMBER OF CLASSES NOT DEFINED");
    } else {
      std::fprintf(stream, "%sglobalPdf:", prefix);
      for (int k = 0; k < sp->classOfValues->nclass; ++k)
        std::fprintf(stream, "%10.6f", sp->globalPdf[k]);
      std::fputc('\n', stream);
    }
  } else {
    NUVO_TRY(printLocalPdf(out));
    if (sp->localPdfSupportRadius == nullptr)
      out.notAllocated("localPdfSupportRadius");
    else
      out.field("localPdfSupportRadius", "%10.6f", *sp->localPdfSupportRadius);
    printCoded(stream, prefix, "localCurrentPdfComputation", sp->localCurrentPdfComputation,
               kCurrentPdfText, "(UNUSED)\n");
  }
  printCoded(stream, prefix, "comparingPdfMethod", sp->comparingPdfMethod, kMethodText,
             "(unknown)\n");
  out.field("deactivationDistance", "%10.6f", sp->deactivationDistance);
  printCoded(stream, prefix, "probabilityConstraintThresholdType",
             sp->probabilityConstraintThresholdType, kThresholdTypeText, "(unknown)\n");
  if (sp->probabilityConstraintThresholdType == NUVO_PROBABILITY_THRESHOLD_CONSTANT) {
    out.field("constantThreshold", "%10.6f", sp->constantThreshold);
  } else if (sp->probabilityConstraintThresholdType == NUVO_PROBABILITY_THRESHOLD_DYNAMIC) {
    if (sp->dynamicThresholdParameters == nullptr) {
      out.notAllocated("dynamicThresholdParameters");
    } else {
      std::fprintf(stream, "%sdynamicThresholdParameters:", prefix);
      for (int i = 0; i < NUVO_DYNAMIC_THRESHOLD_NPARAM; ++i)
        std::fprintf(stream, "%10.6f", sp->dynamicThresholdParameters[i]);
      std::fputc('\n', stream);
    }
  }
  return 0;
}

// ---- Reading the text form ----

int readLocalPdf(nuvo_softProbabilityASCII *sp, FILE *stream) {
  NUVO_TRY(allocateOwnedText(&sp->localPdfImageFileName, NUVO_FILE_NAME_MAX + 1));
  NUVO_TRY(readWord(stream, sp->localPdfImageFileName, NUVO_FILE_NAME_MAX, -935, -936));
  NUVO_TRY(allocateArray(&sp->localPdfSupportRadius, 1));
  NUVO_TRY(readDouble(stream, sp->localPdfSupportRadius, -940));
  return readInt(stream, &sp->localCurrentPdfComputation, -945);
}

int readThreshold(nuvo_softProbabilityASCII *sp, FILE *stream) {
  NUVO_TRY(readInt(stream, &sp->probabilityConstraintThresholdType, -965));
  switch (sp->probabilityConstraintThresholdType) {
    case NUVO_PROBABILITY_THRESHOLD_CONSTANT:
      return readDouble(stream, &sp->constantThreshold, -966);
    case NUVO_PROBABILITY_THRESHOLD_DYNAMIC:
      NUVO_TRY(allocateArray(&sp->dynamicThresholdParameters, NUVO_DYNAMIC_THRESHOLD_NPARAM));
      return readList(stream, sp->dynamicThresholdParameters, NUVO_DYNAMIC_THRESHOLD_NPARAM, -967);
    default:
      return -970;
  }
}

int readSoftProbability(nuvo_softProbabilityASCII *sp, FILE *stream) {
  NUVO_TRY(readInt(stream, &sp->probabilityConstraintUsage, -920));
  const int usage = sp->probabilityConstraintUsage;
  if (usage == NUVO_PROBABILITY_CONSTRAINT_NONE) return 0;
  NUVO_FAIL_IF(
      usage != NUVO_PROBABILITY_CONSTRAINT_GLOBAL && usage != NUVO_PROBABILITY_CONSTRAINT_LOCAL,
      -950);
  NUVO_TRY(readOwnedClasses(&sp->classOfValues, stream));
  if (usage == NUVO_PROBABILITY_CONSTRAINT_GLOBAL) {
    const int nclass = sp->classOfValues->nclass;
    NUVO_FAIL_IF(nclass < 1, -4041);
    NUVO_TRY(allocateArray(&sp->globalPdf, nclass));
    NUVO_TRY(readList(stream, sp->globalPdf, nclass, -930));
  } else {
    NUVO_TRY(readLocalPdf(sp, stream));
  }
  NUVO_TRY(readInt(stream, &sp->comparingPdfMethod, -955));
  NUVO_TRY(readDouble(stream, &sp->deactivationDistance, -960));
  return readThreshold(sp, stream);
}

// ---- Conversion ----

int convert(const nuvo_softProbabilityASCII *in, nuvo_softProbability *out) {
  out->probabilityConstraintUsage = in->probabilityConstraintUsage;
  NUVO_TRY(copyOwnedClasses(in->classOfValues, &out->classOfValues));
  if (in->globalPdf != nullptr) {
    const int nclass = nclassOf(in->classOfValues);
    NUVO_FAIL_IF(nclass < 1, -4041);
    NUVO_TRY(copyArray(in->globalPdf, nclass, &out->globalPdf));
  }
  if (in->localPdfImageFileName != nullptr)
    NUVO_TRY(readOwnedImage(&out->localPdfImage, in->localPdfImageFileName, -120));
  NUVO_TRY(copyArray(in->localPdfSupportRadius, 1, &out->localPdfSupportRadius));
  out->localCurrentPdfComputation = in->localCurrentPdfComputation;
  out->comparingPdfMethod = in->comparingPdfMethod;
  out->deactivationDistance = in->deactivationDistance;
  out->probabilityConstraintThresholdType = in->probabilityConstraintThresholdType;
  out->constantThreshold = in->constantThreshold;
  return copyArray(in->dynamicThresholdParameters, NUVO_DYNAMIC_THRESHOLD_NPARAM,
                   &out->dynamicThresholdParameters);
}

// ---- Validation: each step returns 0 or the code of the broken rule ----

int validateClasses(const nuvo_softProbability *sp) {
  NUVO_FAIL_IF(sp->classOfValues == nullptr, -1991);
  int error = 0;
  NUVOValidateClassOfValues(sp->classOfValues, &error);
  NUVO_TRY(error);
  NUVO_FAIL_IF(sp->classOfValues->nclass < 1, -1921);
  NUVO_FAIL_IF(sp->classOfValues->nclass > 1000, -1922);
  return 0;
}

// Checks the global pdf and divides it by its sum when the sum is only slightly
// off, so that small rounding in a parameter file does not refuse the input.
int validateGlobalPdf(nuvo_softProbability *sp) {
  NUVO_FAIL_IF(sp->globalPdf == nullptr, -1995);
  const int nclass = sp->classOfValues->nclass;
  double sum = 0.0;
  for (int k = 0; k < nclass; ++k) {
    NUVO_FAIL_IF(sp->globalPdf[k] < 0.0, -1931);
    NUVO_FAIL_IF(sp->globalPdf[k] > 1.0, -1932);
    sum += sp->globalPdf[k];
  }
  const double offset = std::fabs(sum - 1.0);
  if (offset > 1e-5) {
    NUVO_FAIL_IF(offset > 0.01, -1933);
    for (int k = 0; k < nclass; ++k) sp->globalPdf[k] /= sum;
  }
  return 0;
}

int validateLocalPdf(const nuvo_softProbability *sp) {
  NUVO_FAIL_IF(sp->localPdfImage == nullptr, -1996);
  int error = 0;
  NUVOValidateImage(sp->localPdfImage, 0, &error);
  NUVO_TRY(error);
  NUVO_FAIL_IF(sp->localPdfImage->nvar != sp->classOfValues->nclass, -1941);
  NUVO_FAIL_IF(sp->localPdfSupportRadius == nullptr, -1997);
  NUVO_FAIL_IF(*sp->localPdfSupportRadius <= 0.0, -1951);
  NUVO_FAIL_IF(sp->localCurrentPdfComputation != NUVO_LOCAL_CURRENT_PDF_COMPLETE &&
                   sp->localCurrentPdfComputation != NUVO_LOCAL_CURRENT_PDF_APPROXIMATE,
               -1961);
  return 0;
}

bool isLikelihoodRatio(int method) {
  return method == NUVO_COMPARING_PDF_MLIKRSYM || method == NUVO_COMPARING_PDF_MLIKROPT;
}

int validateThreshold(const nuvo_softProbability *sp) {
  const int method = sp->comparingPdfMethod;
  const int type = sp->probabilityConstraintThresholdType;
  NUVO_FAIL_IF(isLikelihoodRatio(method) && type != NUVO_PROBABILITY_THRESHOLD_CONSTANT, -1977);
  if (type == NUVO_PROBABILITY_THRESHOLD_CONSTANT) {
    // The likelihood-ratio methods use the threshold as a half-width: no upper bound.
    const double t = sp->constantThreshold;
    if (isLikelihoodRatio(method)) return t < 0.0 ? -1981 : 0;
    NUVO_FAIL_IF(t < 1e-6, -1981);
    NUVO_FAIL_IF(t > 1.0, -1982);
    return 0;
  }
  if (type == NUVO_PROBABILITY_THRESHOLD_DYNAMIC) {
    const double *p = sp->dynamicThresholdParameters;
    NUVO_FAIL_IF(p == nullptr, -1999);
    const double m1 = p[0], m2 = p[1], m3 = p[2], w = p[6];
    NUVO_FAIL_IF(m1 < 0.0 || m1 > m2 || m2 >= m3 || std::fabs(w) < 1e-10, -1985);
    return 0;
  }
  return -1980;
}

// The checks before the warning about the deactivation distance.
int validateBeforeWarning(nuvo_softProbability *sp) {
  const int usage = sp->probabilityConstraintUsage;
  NUVO_FAIL_IF(
      usage != NUVO_PROBABILITY_CONSTRAINT_GLOBAL && usage != NUVO_PROBABILITY_CONSTRAINT_LOCAL,
      -1920);
  NUVO_TRY(validateClasses(sp));
  NUVO_TRY(usage == NUVO_PROBABILITY_CONSTRAINT_GLOBAL ? validateGlobalPdf(sp)
                                                       : validateLocalPdf(sp));
  NUVO_FAIL_IF(sp->comparingPdfMethod < NUVO_COMPARING_PDF_MAE ||
                   sp->comparingPdfMethod > NUVO_COMPARING_PDF_MLIKROPT,
               -1971);
  NUVO_FAIL_IF(sp->deactivationDistance < 0.0, -1975);
  return 0;
}

}  // namespace
}  // namespace nuvo

extern "C" {

void NUVOInitSoftProbability(nuvo_softProbability *sp) {
  nuvo::initCommon(sp);
}

void NUVOFreeSoftProbability(nuvo_softProbability *sp) {
  nuvo::freeCommon(sp);
  nuvo::releaseOwnedImage(&sp->localPdfImage);
  NUVOInitSoftProbability(sp);
}

int NUVOPrintSoftProbability(const nuvo_softProbability *sp, const char *prefix, FILE *stream) {
  return nuvo::guardedCall([&] {
    return nuvo::printCommon(sp, prefix, stream, [&](const nuvo::FieldPrinter &out) {
      return nuvo::printNested(out, "localPdfImage", sp->localPdfImage, NUVOPrintImage);
    });
  });
}

int NUVOValidateSoftProbability(nuvo_softProbability *sp, nuvo_progressMonitor *pm,
                                nuvo_progressCallback callback, int *error) {
  *error = 0;
  if (sp->probabilityConstraintUsage == NUVO_PROBABILITY_CONSTRAINT_NONE) return 0;
  *error = nuvo::validateBeforeWarning(sp);
  if (*error != 0) return 0;
  if (sp->probabilityConstraintUsage == NUVO_PROBABILITY_CONSTRAINT_LOCAL &&
      sp->deactivationDistance >= *sp->localPdfSupportRadius && pm != nullptr) {
    NUVO_TRY(nuvo::reportWarning(pm, callback, nuvo::kWarningDeactivationReachesRadius));
  }
  *error = nuvo::validateThreshold(sp);
  return 0;
}

void NUVOInitSoftProbabilityASCII(nuvo_softProbabilityASCII *sp) {
  nuvo::initCommon(sp);
}

void NUVOFreeSoftProbabilityASCII(nuvo_softProbabilityASCII *sp) {
  nuvo::freeCommon(sp);
  nuvo::releaseArray(&sp->localPdfImageFileName);
  NUVOInitSoftProbabilityASCII(sp);
}

int NUVOPrintSoftProbabilityASCII(const nuvo_softProbabilityASCII *sp, const char *prefix,
                                  FILE *stream) {
  return nuvo::guardedCall([&] {
    return nuvo::printCommon(sp, prefix, stream, [&](const nuvo::FieldPrinter &out) {
      out.text("localPdfImageFileName", sp->localPdfImageFileName);
      return 0;
    });
  });
}

int NUVOReadSoftProbabilityASCII(nuvo_softProbabilityASCII *sp, FILE *stream) {
  return nuvo::readSoftProbability(sp, stream);
}

int NUVOSoftProbabilityASCIIToSoftProbability(const nuvo_softProbabilityASCII *in,
                                              nuvo_softProbability *out) {
  return nuvo::convert(in, out);
}

}  // extern "C"
