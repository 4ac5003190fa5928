// Summary of a point set: extent of the coordinates and per-variable statistics.
#include <algorithm>
#include <cstdio>
#include <span>

#include "data/c_locale.hpp"
#include "data/values.hpp"
#include "nuvo_pointset.h"

namespace nuvo {
namespace {

void extentOf(std::span<const double> c, double *min, double *max) {
  if (c.empty()) {
    *min = *max = NUVO_MISSING_VALUE;
    return;
  }
  const auto [lo, hi] = std::minmax_element(c.begin(), c.end());
  *min = *lo;
  *max = *hi;
}

// Informed count, minimum, maximum and mean of variable iv into slot iv of info.
void summarizeVariable(const nuvo_pointSet &ps, int iv, nuvo_pointSetInfo *info) {
  const std::span<const double> values(ps.val + std::size_t(iv) * ps.npoint, ps.npoint);
  const InformedSummary s = summarizeInformed(values);
  info->ninformed[iv] = s.n;
  info->min[iv] = s.min;
  info->max[iv] = s.max;
  info->mean[iv] = s.mean();
}

int countPointsWithMissing(const nuvo_pointSet &ps) {
  int count = 0;
  for (int k = 0; k < ps.npoint; ++k)
    for (int iv = 0; iv < ps.nvar; ++iv)
      if (isMissing(ps.val[std::size_t(iv) * ps.npoint + k])) {
        ++count;
        break;
      }
  return count;
}

template <typename T>
int allocatePerVariable(int nvar, T **array) {
  int err = 0;
  *array = static_cast<T *>(NUVOMalloc(std::size_t(nvar), sizeof(T), &err));
  return err;
}

void printInfo(const nuvo_pointSet &ps, const nuvo_pointSetInfo &info, const char *prefix,
               FILE *stream) {
  std::fprintf(stream, "%sNumber of points: %d\n", prefix, info.npoint);
  std::fprintf(stream, "%sNumber of variables: %d\n", prefix, info.nvar);
  for (int iv = 0; iv < info.nvar; ++iv)
    std::fprintf(stream, "%sVariable #%3d: %s\n", prefix, iv, ps.varName[iv]);
  std::fprintf(stream, "%sCoordinate             min             max\n", prefix);
  std::fprintf(stream, "%s         x %15.8E %15.8E\n", prefix, info.xMin, info.xMax);
  std::fprintf(stream, "%s         y %15.8E %15.8E\n", prefix, info.yMin, info.yMax);
  std::fprintf(stream, "%s         z %15.8E %15.8E\n", prefix, info.zMin, info.zMax);
  std::fprintf(stream, "%sNumber of points having at least one missing value: %d\n", prefix,
               info.npointWithMissing);
  std::fprintf(stream,
               "%sVariable        informed         missing             min             max"
               "            mean\n",
               prefix);
  for (int iv = 0; iv < info.nvar; ++iv)
    std::fprintf(stream, "%s    #%3d %15d %15d %15.8E %15.8E %15.8E\n", prefix, iv,
                 info.ninformed[iv], info.npoint - info.ninformed[iv], info.min[iv], info.max[iv],
                 info.mean[iv]);
}

}  // namespace
}  // namespace nuvo

extern "C" {

void NUVOInitPointSetInfo(nuvo_pointSetInfo *info) {
  *info = nuvo_pointSetInfo{};
}

void NUVOFreePointSetInfo(nuvo_pointSetInfo *info) {
  NUVOFree(info->ninformed);
  NUVOFree(info->min);
  NUVOFree(info->max);
  NUVOFree(info->mean);
  NUVOInitPointSetInfo(info);
}

int NUVOGetPointSetInfo(const nuvo_pointSet *ps, nuvo_pointSetInfo *info) {
  const std::size_t npoint = static_cast<std::size_t>(std::max(ps->npoint, 0));
  info->npoint = ps->npoint;
  nuvo::extentOf({ps->x, npoint}, &info->xMin, &info->xMax);
  nuvo::extentOf({ps->y, npoint}, &info->yMin, &info->yMax);
  nuvo::extentOf({ps->z, npoint}, &info->zMin, &info->zMax);
  info->npointWithMissing = nuvo::countPointsWithMissing(*ps);
  info->nvar = ps->nvar;
  if (ps->nvar < 1) return 0;
  NUVO_TRY(nuvo::allocatePerVariable(ps->nvar, &info->ninformed));
  NUVO_TRY(nuvo::allocatePerVariable(ps->nvar, &info->min));
  NUVO_TRY(nuvo::allocatePerVariable(ps->nvar, &info->max));
  NUVO_TRY(nuvo::allocatePerVariable(ps->nvar, &info->mean));
  for (int iv = 0; iv < ps->nvar; ++iv) nuvo::summarizeVariable(*ps, iv, info);
  return 0;
}

int NUVOPrintPointSetInfo(const nuvo_pointSet *ps, const char *prefix, FILE *stream) {
  nuvo_pointSetInfo info;
  NUVOInitPointSetInfo(&info);
  const int rc = NUVOGetPointSetInfo(ps, &info);
  if (rc == 0) {
    const nuvo::CNumericLocale numericLocale;
    nuvo::printInfo(*ps, info, prefix, stream);
  }
  NUVOFreePointSetInfo(&info);
  return rc;
}

}  // extern "C"
