// Life cycle, text form and validation of nuvo_classOfValues.
#include <cstdlib>
#include <cstring>
#include <utility>

#include "foundation/check.hpp"
#include "input/text_io.hpp"
#include "nuvo_classofvalues.h"

namespace nuvo {
namespace {

constexpr int kNclassRead = -4035;
constexpr int kNintervalRead = -4036;
constexpr int kInfRead = -4037;
constexpr int kSupRead = -4038;

// Allocates the per-class tables (counts and interval pointers, all null) for
// nclass classes; the counts stay 0 until each class gets its intervals.
int allocateClasses(nuvo_classOfValues *c, int nclass) {
  c->nclass = nclass;
  if (nclass <= 0) return 0;
  auto n = static_cast<std::size_t>(nclass);
  c->ninterval = static_cast<int *>(std::calloc(n, sizeof(int)));
  c->intervalInf = static_cast<double **>(std::calloc(n, sizeof(double *)));
  c->intervalSup = static_cast<double **>(std::calloc(n, sizeof(double *)));
  bool ok = c->ninterval != nullptr && c->intervalInf != nullptr && c->intervalSup != nullptr;
  return ok ? 0 : kAllocationFailed;
}

// Allocates the n intervals of class i and records their count.
int allocateIntervals(nuvo_classOfValues *c, int i, int n) {
  c->ninterval[i] = n;
  if (n <= 0) return 0;
  auto count = static_cast<std::size_t>(n);
  c->intervalInf[i] = static_cast<double *>(std::calloc(count, sizeof(double)));
  c->intervalSup[i] = static_cast<double *>(std::calloc(count, sizeof(double)));
  return (c->intervalInf[i] != nullptr && c->intervalSup[i] != nullptr) ? 0 : kAllocationFailed;
}

// Whether [inf1, sup1[ meets [inf2, sup2[ in one of the three ways the
// validation names.
bool overlaps(double inf1, double sup1, double inf2, double sup2) {
  return (inf1 >= inf2 && inf1 < sup2) || (sup1 > inf2 && sup1 <= sup2) ||
         (inf1 < inf2 && sup1 > sup2);
}

// Whether an interval of class i overlaps an interval of an earlier class.
bool overlapsEarlierClass(const nuvo_classOfValues *c, int i) {
  for (int k = 0; k < c->ninterval[i]; ++k)
    for (int j = 0; j < i; ++j)
      for (int l = 0; l < c->ninterval[j]; ++l)
        if (overlaps(c->intervalInf[i][k], c->intervalSup[i][k], c->intervalInf[j][l],
                     c->intervalSup[j][l]))
          return true;
  return false;
}

int classError(const nuvo_classOfValues *c) {
  NUVO_FAIL_IF(c->nclass < 1, -4041);
  NUVO_FAIL_IF(c->nclass > NUVO_CLASS_OF_VALUES_MAX, -4042);
  NUVO_FAIL_IF(c->ninterval == nullptr, -4047);
  NUVO_FAIL_IF(c->intervalInf == nullptr, -4048);
  NUVO_FAIL_IF(c->intervalSup == nullptr, -4049);
  for (int i = 0; i < c->nclass; ++i) {
    NUVO_FAIL_IF(c->ninterval[i] < 1, -4043);
    NUVO_FAIL_IF(c->ninterval[i] > NUVO_CLASS_OF_VALUES_MAX, -4044);
    NUVO_FAIL_IF(c->intervalInf[i] == nullptr, -4048);
    NUVO_FAIL_IF(c->intervalSup[i] == nullptr, -4049);
    for (int k = 0; k < c->ninterval[i]; ++k)
      NUVO_FAIL_IF(c->intervalInf[i][k] >= c->intervalSup[i][k], -4045);
    NUVO_FAIL_IF(overlapsEarlierClass(c, i), -4046);
  }
  return 0;
}

// Reads a count that must lie in 0..NUVO_CLASS_OF_VALUES_MAX: a larger one could
// never validate and would only ask for a huge allocation.
int readCount(FILE *stream, int *count, int code) {
  NUVO_TRY(readInt(stream, count, code));
  return (*count < 0 || *count > NUVO_CLASS_OF_VALUES_MAX) ? code : 0;
}

}  // namespace
}  // namespace nuvo

extern "C" {

void NUVOInitClassOfValues(nuvo_classOfValues *c) {
  *c = nuvo_classOfValues{};
}

int NUVOCopyClassOfValues(const nuvo_classOfValues *in, nuvo_classOfValues *out) {
  NUVO_TRY(nuvo::allocateClasses(out, in->nclass));
  if (in->ninterval == nullptr) return 0;
  for (int i = 0; i < in->nclass; ++i) {
    NUVO_TRY(nuvo::allocateIntervals(out, i, in->ninterval[i]));
    auto size = static_cast<std::size_t>(in->ninterval[i]) * sizeof(double);
    if (in->intervalInf != nullptr && in->intervalInf[i] != nullptr)
      std::memcpy(out->intervalInf[i], in->intervalInf[i], size);
    if (in->intervalSup != nullptr && in->intervalSup[i] != nullptr)
      std::memcpy(out->intervalSup[i], in->intervalSup[i], size);
  }
  return 0;
}

void NUVOFreeClassOfValues(nuvo_classOfValues *c) {
  for (int i = 0; i < c->nclass; ++i) {
    if (c->intervalInf != nullptr) std::free(c->intervalInf[i]);
    if (c->intervalSup != nullptr) std::free(c->intervalSup[i]);
  }
  std::free(c->ninterval);
  std::free(c->intervalInf);
  std::free(c->intervalSup);
  NUVOInitClassOfValues(c);
}

int NUVOPrintClassOfValues(const nuvo_classOfValues *c, const char *prefix, FILE *stream) {
  nuvo::FieldPrinter out(stream, prefix);
  out.field("nclass", "%3d", c->nclass);
  if (c->nclass < 1) return 0;
  if (c->ninterval == nullptr) {
    out.notAllocated("ninterval");
    return 0;
  }
  for (int i = 0; i < c->nclass; ++i) {
    std::fprintf(stream, "%sclass %3d: ninterval = %3d, class = ", prefix, i, c->ninterval[i]);
    bool allocated = c->intervalInf != nullptr && c->intervalSup != nullptr &&
                     c->intervalInf[i] != nullptr && c->intervalSup[i] != nullptr;
    if (!allocated) std::fputs(nuvo::kNotAllocated, stream);
    for (int k = 0; allocated && k < c->ninterval[i]; ++k)
      std::fprintf(stream, "%s[%10.6f, %10.6f[", k > 0 ? " U " : "", c->intervalInf[i][k],
                   c->intervalSup[i][k]);
    std::fputc('\n', stream);
  }
  return 0;
}

int NUVOValidateClassOfValues(const nuvo_classOfValues *c, int *error) {
  *error = nuvo::classError(c);
  return 0;
}

int NUVOReadClassOfValues(nuvo_classOfValues *c, FILE *stream) {
  int nclass = 0;
  NUVO_TRY(nuvo::readCount(stream, &nclass, nuvo::kNclassRead));
  NUVO_TRY(nuvo::allocateClasses(c, nclass));
  for (int i = 0; i < nclass; ++i) {
    int n = 0;
    NUVO_TRY(nuvo::readCount(stream, &n, nuvo::kNintervalRead));
    NUVO_TRY(nuvo::allocateIntervals(c, i, n));
    for (int k = 0; k < n; ++k) {
      NUVO_TRY(nuvo::readDouble(stream, &c->intervalInf[i][k], nuvo::kInfRead));
      NUVO_TRY(nuvo::readDouble(stream, &c->intervalSup[i][k], nuvo::kSupRead));
    }
  }
  return 0;
}

int NUVOTransformLinearClassOfValues(nuvo_classOfValues *c, double a, double b) {
  if (c->ninterval == nullptr || c->intervalInf == nullptr || c->intervalSup == nullptr) return 0;
  for (int i = 0; i < c->nclass; ++i) {
    for (int k = 0; k < c->ninterval[i]; ++k) {
      double inf = a * c->intervalInf[i][k] + b;
      double sup = a * c->intervalSup[i][k] + b;
      if (a < 0.0) std::swap(inf, sup);
      c->intervalInf[i][k] = inf;
      c->intervalSup[i][k] = sup;
    }
  }
  return 0;
}

}  // extern "C"
