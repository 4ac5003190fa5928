// Per-variable pyramid parameters: life cycle, text form, printing and validation.
#include <cstdio>

#include "constraints/owned.hpp"
#include "foundation/check.hpp"
#include "input/text_io.hpp"
#include "nuvo_pyramidparams.h"
#include "pyramid/keywords.hpp"

namespace nuvo {
namespace {

constexpr int kMaxLevel = 10;
constexpr int kMaxClass = 10;

// The class reader's codes in the pyramid's own numbering: nclass, ninterval,
// intervalInf, intervalSup read errors; allocation failures stay -1; any other
// failure is a generic class error.
int pyramidReadClassCode(int rc) {
  switch (rc) {
    case 0:
    case -1:
      return rc;
    case -4035:
      return -3613;
    case -4036:
      return -3614;
    case -4037:
      return -3615;
    case -4038:
      return -3616;
    default:
      return -3612;
  }
}

// The class validator's codes -4041 to -4049 in the pyramid's numbering -3641 to
// -3649; any other failure is the generic -3640.
int pyramidValidateClassCode(int error) {
  if (error == 0) return 0;
  if (error <= -4041 && error >= -4049) return error + (4041 - 3641);
  return -3640;
}

int read(nuvo_pyramidParameters *p, FILE *stream) {
  NUVO_TRY(readInt(stream, &p->nlevel, -3610));
  if (p->nlevel < 1) return 0;
  NUVO_TRY(readKeyword(stream, kPyramidTypeKeywords, &p->pyramidType, -3611));
  if (p->pyramidType != PYRAMID_CATEGORICAL_CUSTOM) return 0;
  return pyramidReadClassCode(readOwnedClasses(&p->classOfValues, stream));
}

int validate(const nuvo_pyramidParameters *p) {
  NUVO_FAIL_IF(p->nlevel < 0, -3630);
  NUVO_FAIL_IF(p->nlevel > kMaxLevel, -3631);
  if (p->nlevel == 0) return 0;
  NUVO_FAIL_IF(p->pyramidType < PYRAMID_NONE || p->pyramidType > PYRAMID_CATEGORICAL_TO_CONTINUOUS,
               -3632);
  NUVO_FAIL_IF(p->pyramidType == PYRAMID_NONE, -3633);
  if (p->pyramidType != PYRAMID_CATEGORICAL_CUSTOM) return 0;
  NUVO_FAIL_IF(p->classOfValues == nullptr, -3635);
  int error = 0;
  NUVOValidateClassOfValues(p->classOfValues, &error);
  NUVO_TRY(pyramidValidateClassCode(error));
  NUVO_FAIL_IF(p->classOfValues->nclass > kMaxClass, -3650);
  return 0;
}

int print(const nuvo_pyramidParameters *p, const char *prefix, FILE *stream) {
  if (p->nlevel < 1) {
    std::fprintf(stream, "%snlevel: %d (no use of pyramid)\n", prefix, p->nlevel);
    return 0;
  }
  std::fprintf(stream, "%snlevel: %d\n", prefix, p->nlevel);
  const char *keyword = keywordOf(kPyramidTypeKeywords, p->pyramidType);
  const bool known =
      p->pyramidType >= PYRAMID_NONE && p->pyramidType <= PYRAMID_CATEGORICAL_TO_CONTINUOUS;
  std::fprintf(stream, "%sPyramid type:%s\n", prefix, known ? keyword : "UNKNOWN");
  if (p->pyramidType != PYRAMID_CATEGORICAL_CUSTOM) return 0;
  return printNested(FieldPrinter(stream, prefix), "classOfValues", p->classOfValues,
                     NUVOPrintClassOfValues);
}

}  // namespace
}  // namespace nuvo

extern "C" {

void NUVOInitPyramidParameters(nuvo_pyramidParameters *p) {
  *p = nuvo_pyramidParameters{};
}

int NUVOCopyPyramidParameters(const nuvo_pyramidParameters *in, nuvo_pyramidParameters *out) {
  out->nlevel = in->nlevel;
  out->pyramidType = in->pyramidType;
  return nuvo::copyOwnedClasses(in->classOfValues, &out->classOfValues);
}

void NUVOFreePyramidParameters(nuvo_pyramidParameters *p) {
  nuvo::releaseOwnedClasses(&p->classOfValues);
  NUVOInitPyramidParameters(p);
}

int NUVOPrintPyramidParameters(const nuvo_pyramidParameters *p, const char *prefix, FILE *stream) {
  return nuvo::guardedCall([&] { return nuvo::print(p, prefix, stream); });
}

int NUVOValidatePyramidParameters(const nuvo_pyramidParameters *p, nuvo_progressMonitor *,
                                  nuvo_progressCallback, int *error) {
  *error = nuvo::validate(p);
  return 0;
}

int NUVOReadPyramidParameters(nuvo_pyramidParameters *p, FILE *stream) {
  return nuvo::read(p, stream);
}

}  // extern "C"
