// The multithreaded twins of the pyramid reduction and expansion.
#include "nuvo_omp.h"
#include "pyramid/pyramid_filter.hpp"

namespace {

constexpr int kInvalidThreadCount = -99;

}  // namespace

extern "C" {

int NUVOOMPPyramidReduce(const double *in, int nx, int ny, int nz, int kx, int ky, int kz,
                         const double *wx, const double *wy, const double *wz, int shiftx,
                         int shifty, int shiftz, int nxOut, int nyOut, int nzOut, double *out,
                         double *outWeight, double minWeight, int nthread) {
  if (nthread < 1) return kInvalidThreadCount;
  return nuvo::pyramidReduce(in, nx, ny, nz, kx, ky, kz, wx, wy, wz, shiftx, shifty, shiftz, nxOut,
                             nyOut, nzOut, out, outWeight, minWeight, nthread);
}

int NUVOOMPPyramidExpand(const double *in, int nx, int ny, int nz, int kx, int ky, int kz,
                         const double *wx, const double *wy, const double *wz, int nxOut, int nyOut,
                         int nzOut, double *out, double *outWeight, double minWeight, int nthread) {
  if (nthread < 1) return kInvalidThreadCount;
  return nuvo::pyramidExpand(in, nx, ny, nz, kx, ky, kz, wx, wy, wz, nxOut, nyOut, nzOut, out,
                             outWeight, minWeight, nthread);
}

}  // extern "C"
