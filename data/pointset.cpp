// Life cycle, printout and validation of nuvo_pointSet.
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "data/names.hpp"
#include "data/values.hpp"
#include "nuvo_pointset.h"

namespace nuvo {
namespace {

double *allocateValues(long long count) {
  return static_cast<double *>(std::malloc(static_cast<std::size_t>(count) * sizeof(double)));
}

int pointSetVerdict(const nuvo_pointSet &ps) {
  if (ps.nvar < 1) return -641;
  if (ps.nvar > 100) return -642;
  if (ps.varName == nullptr) return kMemoryNotAllocated;
  for (int iv = 0; iv < ps.nvar; ++iv)
    if (nameLength(ps.varName[iv]) >= static_cast<std::size_t>(kNameSlot)) return -643;
  return hasDuplicateName(ps.varName, ps.nvar) ? -644 : 0;
}

}  // namespace
}  // namespace nuvo

extern "C" {

void NUVOInitPointSet(nuvo_pointSet *ps) {
  *ps = nuvo_pointSet{};
}

int NUVOMallocPointSet(nuvo_pointSet *ps, int npoint, int nvar) {
  if (npoint <= 0 || nvar < 0) return -3;
  ps->npoint = npoint;
  ps->nvar = nvar;
  ps->x = nuvo::allocateValues(npoint);
  ps->y = nuvo::allocateValues(npoint);
  ps->z = nuvo::allocateValues(npoint);
  if (ps->x == nullptr || ps->y == nullptr || ps->z == nullptr) return -1;
  if (nvar == 0) return 0;
  ps->varName = nuvo::allocateNames(nvar);
  ps->val = nuvo::allocateValues(static_cast<long long>(npoint) * nvar);
  return (ps->varName == nullptr || ps->val == nullptr) ? -1 : 0;
}

int NUVOCopyPointSet(const nuvo_pointSet *src, nuvo_pointSet *dst) {
  if (int rc = NUVOMallocPointSet(dst, src->npoint, src->nvar); rc != 0) return rc;
  const std::size_t coordBytes = static_cast<std::size_t>(src->npoint) * sizeof(double);
  std::memcpy(dst->x, src->x, coordBytes);
  std::memcpy(dst->y, src->y, coordBytes);
  std::memcpy(dst->z, src->z, coordBytes);
  for (int iv = 0; iv < src->nvar; ++iv)
    std::memcpy(dst->varName[iv], src->varName[iv], nuvo::kNameSlot);
  if (src->nvar > 0) std::memcpy(dst->val, src->val, coordBytes * src->nvar);
  return 0;
}

void NUVOFreePointSet(nuvo_pointSet *ps) {
  std::free(ps->x);
  std::free(ps->y);
  std::free(ps->z);
  nuvo::freeNames(ps->varName);
  std::free(ps->val);
  NUVOInitPointSet(ps);
}

int NUVOPrintPointSet(const nuvo_pointSet *ps, const char *prefix, FILE *stream) {
  return nuvo::guardedCall([&] {
    const std::string nested = nuvo::nestedPrefix(prefix);
    std::fprintf(stream, "%snpoint: %8d\n", prefix, ps->npoint);
    std::fprintf(stream, "%snvar:   %8d\n", prefix, ps->nvar);
    std::fprintf(stream, "%svarName\n", prefix);
    for (int iv = 0; iv < ps->nvar && ps->varName != nullptr; ++iv)
      std::fprintf(stream, "%s%s\n", nested.c_str(), ps->varName[iv]);
    return 0;
  });
}

int NUVOValidatePointSet(const nuvo_pointSet *ps, int *verdict) {
  *verdict = nuvo::pointSetVerdict(*ps);
  return 0;
}

}  // extern "C"
