// nuvo_searchNeighborhoodParameters: defaults, comparison, dump, text form and
// validation of the search ellipsoid of one variable.
#include <array>

#include "foundation/check.hpp"
#include "input/keywords.hpp"
#include "input/text_io.hpp"
#include "nuvo_searchneighborhood.h"

namespace nuvo {
namespace {

// What each radius mode and anisotropy mode means, printed after its keyword.
constexpr std::array<const char *, kRadiusModeKeywords.size()> kRadiusModeMeanings{
    "large radii computed automatically",
    "from the TI variogram ranges, accounting for homothety and rotation",
    "from the TI variogram ranges, each direction independently",
    "from the TI variogram ranges, rx = ry, rz independent",
    "from the TI variogram ranges, rx = rz, ry independent",
    "from the TI variogram ranges, ry = rz, rx independent",
    "from the TI variogram ranges, rx = ry = rz",
    "given"};

constexpr std::array<const char *, kAnisotropyRatioModeKeywords.size()> kAnisotropyModeMeanings{
    "ax = ay = az = 1 (isotropic)",
    "ax = rx, ay = ry, az = rz",
    "ax = ay = max(rx, ry), az = rz",
    "ax = az = max(rx, rz), ay = ry",
    "ay = az = max(ry, rz), ax = rx",
    "ax = ay = az = max(rx, ry, rz)",
    "given"};

// "<prefix><name>: KEYWORD (meaning)", or "unknown" for a value out of range.
void printMode(const FieldPrinter &out, const char *name, KeywordTable keywords,
               KeywordTable meanings, int value) {
  if (keywordOf(keywords, value) == kUnknown) return out.text(name, kUnknown);
  out.start(name);
  std::fprintf(out.stream(), "%s (%s)\n", keywordOf(keywords, value), keywordOf(meanings, value));
}

// Reads a mode keyword; for the manual mode its three values follow.
int readMode(FILE *stream, KeywordTable keywords, int manual, int *mode, int code,
             const std::array<double *, 3> &values, int firstValueCode) {
  NUVO_TRY(readKeyword(stream, keywords, mode, code));
  if (*mode != manual) return 0;
  for (int k = 0; k < 3; ++k) NUVO_TRY(readDouble(stream, values[k], firstValueCode - k));
  return 0;
}

int parametersError(const nuvo_searchNeighborhoodParameters *p) {
  NUVO_FAIL_IF(p->radiusMode < SEARCHNEIGHBORHOOD_RADIUS_LARGE_DEFAULT ||
                   p->radiusMode > SEARCHNEIGHBORHOOD_RADIUS_MANUAL,
               -686);
  if (p->radiusMode == SEARCHNEIGHBORHOOD_RADIUS_MANUAL) {
    NUVO_FAIL_IF(p->rx < 0.0, -680);
    NUVO_FAIL_IF(p->ry < 0.0, -681);
    NUVO_FAIL_IF(p->rz < 0.0, -682);
  }
  if (p->anisotropyRatioMode == SEARCHNEIGHBORHOOD_ANISOTROPY_RATIO_MANUAL) {
    constexpr double kRatioMin = 1e-6;
    NUVO_FAIL_IF(p->ax < kRatioMin, -683);
    NUVO_FAIL_IF(p->ay < kRatioMin, -684);
    NUVO_FAIL_IF(p->az < kRatioMin, -685);
    return 0;
  }
  NUVO_FAIL_IF(p->anisotropyRatioMode < SEARCHNEIGHBORHOOD_ANISOTROPY_RATIO_ONE ||
                   p->anisotropyRatioMode > SEARCHNEIGHBORHOOD_ANISOTROPY_RATIO_MANUAL,
               -687);
  return 0;
}

}  // namespace
}  // namespace nuvo

extern "C" {

void NUVOInitSearchNeighborhoodParameters(nuvo_searchNeighborhoodParameters *p) {
  *p = nuvo_searchNeighborhoodParameters{};
  p->radiusMode = SEARCHNEIGHBORHOOD_RADIUS_MANUAL;
  p->anisotropyRatioMode = SEARCHNEIGHBORHOOD_ANISOTROPY_RATIO_MANUAL;
  p->rotationFlag = SEARCHNEIGHBORHOOD_ROTATION_OFF;
}

int NUVOCmpSearchNeighborhoodParameters(const nuvo_searchNeighborhoodParameters *a,
                                        const nuvo_searchNeighborhoodParameters *b) {
  bool equal = a->rx == b->rx && a->ry == b->ry && a->rz == b->rz && a->ax == b->ax &&
               a->ay == b->ay && a->az == b->az && a->angle1 == b->angle1 &&
               a->angle2 == b->angle2 && a->angle3 == b->angle3 && a->power == b->power;
  return equal ? 0 : 1;
}

int NUVOPrintSearchNeighborhoodParameters(const nuvo_searchNeighborhoodParameters *p,
                                          const char *prefix, FILE *stream) {
  nuvo::FieldPrinter out(stream, prefix);
  nuvo::printMode(out, "radiusMode", nuvo::kRadiusModeKeywords, nuvo::kRadiusModeMeanings,
                  p->radiusMode);
  out.field("rx", "%14.6f", p->rx);
  out.field("ry", "%14.6f", p->ry);
  out.field("rz", "%14.6f", p->rz);
  nuvo::printMode(out, "anisotropyRatioMode", nuvo::kAnisotropyRatioModeKeywords,
                  nuvo::kAnisotropyModeMeanings, p->anisotropyRatioMode);
  out.field("ax", "%14.6f", p->ax);
  out.field("ay", "%14.6f", p->ay);
  out.field("az", "%14.6f", p->az);
  out.keyword("rotationFlag", nuvo::kRotationKeywords, p->rotationFlag);
  out.field("angle1 (azimuth)", "%14.6f", p->angle1);
  out.field("angle2 (dip)", "%14.6f", p->angle2);
  out.field("angle3 (plunge)", "%14.6f", p->angle3);
  out.field("power", "%14.6f", p->power);
  return 0;
}

int NUVOValidateSearchNeighborhoodParameters(const nuvo_searchNeighborhoodParameters *p,
                                             int *error) {
  *error = nuvo::parametersError(p);
  return 0;
}

int NUVOReadSearchNeighborhoodParameters(nuvo_searchNeighborhoodParameters *p,
                                         signed char readModes, FILE *stream) {
  using nuvo::readDouble;
  if (readModes == 0) {
    p->radiusMode = SEARCHNEIGHBORHOOD_RADIUS_MANUAL;
    p->anisotropyRatioMode = SEARCHNEIGHBORHOOD_ANISOTROPY_RATIO_MANUAL;
    p->rotationFlag = SEARCHNEIGHBORHOOD_ROTATION_ON;
    double *values[] = {&p->rx, &p->ry,     &p->rz,     &p->ax,     &p->ay,
                        &p->az, &p->angle1, &p->angle2, &p->angle3, &p->power};
    const int codes[] = {-876, -877, -878, -881, -882, -883, -886, -887, -888, -889};
    for (int k = 0; k < 10; ++k) NUVO_TRY(readDouble(stream, values[k], codes[k]));
    return 0;
  }
  NUVO_TRY(nuvo::readMode(stream, nuvo::kRadiusModeKeywords, SEARCHNEIGHBORHOOD_RADIUS_MANUAL,
                          &p->radiusMode, -875, {&p->rx, &p->ry, &p->rz}, -876));
  NUVO_TRY(nuvo::readMode(stream, nuvo::kAnisotropyRatioModeKeywords,
                          SEARCHNEIGHBORHOOD_ANISOTROPY_RATIO_MANUAL, &p->anisotropyRatioMode, -880,
                          {&p->ax, &p->ay, &p->az}, -881));
  int rotation = 0;
  NUVO_TRY(nuvo::readMode(stream, nuvo::kRotationKeywords, SEARCHNEIGHBORHOOD_ROTATION_ON,
                          &rotation, -885, {&p->angle1, &p->angle2, &p->angle3}, -886));
  p->rotationFlag = static_cast<signed char>(rotation);
  return readDouble(stream, &p->power, -889);
}

}  // extern "C"
