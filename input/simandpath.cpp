// nuvo_simAndPathParameters: life cycle, dump, text form and validation of the
// simulation type and path.
#include <array>
#include <cstdlib>
#include <cstring>

#include "foundation/check.hpp"
#include "input/keywords.hpp"
#include "input/text_io.hpp"
#include "nuvo_simandpath.h"

namespace nuvo {
namespace {

// Entries of the unilateral order: x, y, z and, one variable at a time, the variable.
int unilateralLength(int simType) {
  return simType == SIM_ONE_BY_ONE ? 4 : 3;
}

int allocateOrder(nuvo_simAndPathParameters *p, int n) {
  p->nunilateralOrder = n;
  p->unilateralOrder = static_cast<int *>(std::calloc(static_cast<std::size_t>(n), sizeof(int)));
  return p->unilateralOrder == nullptr ? kAllocationFailed : 0;
}

// A unilateral order holds, per coordinate, 0 (random) or a signed rank whose
// magnitude is at most the number m of non-zero entries, each magnitude once.
bool validUnilateralOrder(const nuvo_simAndPathParameters *p) {
  if (p->unilateralOrder == nullptr || p->nunilateralOrder != unilateralLength(p->simType))
    return false;
  int m = 0;
  for (int k = 0; k < p->nunilateralOrder; ++k) m += p->unilateralOrder[k] != 0;
  std::array<bool, 5> used{};  // ranks 1..4 at most
  for (int k = 0; k < p->nunilateralOrder; ++k) {
    int rank = std::abs(p->unilateralOrder[k]);
    if (rank == 0) continue;
    if (rank > m || used[static_cast<std::size_t>(rank)]) return false;
    used[static_cast<std::size_t>(rank)] = true;
  }
  return true;
}

int simAndPathError(const nuvo_simAndPathParameters *p) {
  NUVO_FAIL_IF(p->simType < SIM_ONE_BY_ONE || p->simType > SIM_VARIABLE_VECTOR, -705);
  NUVO_FAIL_IF(p->pathType < PATH_RANDOM || p->pathType > PATH_UNILATERAL, -706);
  bool summed = p->pathType == PATH_RANDOM_HD_DISTANCE_SUM_PDF ||
                p->pathType == PATH_RANDOM_HD_DISTANCE_SUM_SORT;
  NUVO_FAIL_IF(summed && (p->pow <= 0.0 || p->pow > 10.0), -709);
  NUVO_FAIL_IF(p->pathType == PATH_UNILATERAL && !validUnilateralOrder(p), -707);
  bool guided =
      p->pathType >= PATH_RANDOM_HD_DISTANCE_PDF && p->pathType <= PATH_RANDOM_HD_DISTANCE_SUM_SORT;
  NUVO_FAIL_IF(guided && (p->strength < 0.0 || p->strength > 1.0), -708);
  return 0;
}

}  // namespace
}  // namespace nuvo

extern "C" {

void NUVOInitSimAndPathParameters(nuvo_simAndPathParameters *p) {
  *p = nuvo_simAndPathParameters{};
}

void NUVOFreeSimAndPathParameters(nuvo_simAndPathParameters *p) {
  std::free(p->unilateralOrder);
  NUVOInitSimAndPathParameters(p);
}

int NUVOCopySimAndPathParameters(const nuvo_simAndPathParameters *in,
                                 nuvo_simAndPathParameters *out) {
  *out = *in;
  out->unilateralOrder = nullptr;
  if (in->unilateralOrder == nullptr || in->nunilateralOrder <= 0) return 0;
  NUVO_TRY(nuvo::allocateOrder(out, in->nunilateralOrder));
  std::memcpy(out->unilateralOrder, in->unilateralOrder,
              static_cast<std::size_t>(in->nunilateralOrder) * sizeof(int));
  return 0;
}

int NUVOPrintSimAndPathParameters(const nuvo_simAndPathParameters *p, const char *prefix,
                                  FILE *stream) {
  nuvo::FieldPrinter out(stream, prefix);
  out.keyword("simType", nuvo::kSimTypeKeywords, p->simType);
  out.keyword("pathType", nuvo::kPathTypeKeywords, p->pathType);
  out.field("nunilateralOrder", "%d", p->nunilateralOrder);
  out.values("unilateralOrder", p->unilateralOrder, p->nunilateralOrder, "%d");
  out.field("strength", "%14.6f", p->strength);
  out.field("pow", "%14.6f", p->pow);
  return 0;
}

int NUVOValidateSimAndPathParameters(const nuvo_simAndPathParameters *p, int *error) {
  *error = nuvo::simAndPathError(p);
  return 0;
}

int NUVOReadSimAndPathParameters(nuvo_simAndPathParameters *p, FILE *stream) {
  NUVO_TRY(nuvo::readKeyword(stream, nuvo::kSimTypeKeywords, &p->simType, -890));
  NUVO_TRY(nuvo::readKeyword(stream, nuvo::kPathTypeKeywords, &p->pathType, -891));
  switch (p->pathType) {
    case PATH_RANDOM_HD_DISTANCE_SUM_PDF:
    case PATH_RANDOM_HD_DISTANCE_SUM_SORT:
      NUVO_TRY(nuvo::readDouble(stream, &p->pow, -894));
      [[fallthrough]];
    case PATH_RANDOM_HD_DISTANCE_PDF:
    case PATH_RANDOM_HD_DISTANCE_SORT:
      return nuvo::readDouble(stream, &p->strength, -893);
    case PATH_UNILATERAL:
      NUVO_TRY(nuvo::allocateOrder(p, nuvo::unilateralLength(p->simType)));
      return nuvo::readList(stream, p->unilateralOrder, p->nunilateralOrder, -892);
    default:
      return 0;
  }
}

}  // extern "C"
