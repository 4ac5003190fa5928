// The multithreaded twins of the pyramid simulation, reduction and expansion.
#include "engine/sim_standard.hpp"
#include "nuvo_omp.h"
#include "pyramid/pyramid_filter.hpp"
#include "pyramid/pyramid_sim.hpp"

using nuvo::kInvalidThreadCount;

extern "C" {

int NUVOOMPSimPyramid(const nuvo_simInput *si, nuvo_simOutput *out, FILE *report,
                      nuvo_progressMonitor *pm, nuvo_progressCallback callback, int nthread) {
  if (nthread < 1) return kInvalidThreadCount;
  return nuvo::simulatePyramid(*si, out, report, pm, callback, {.nthread = nthread});
}

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
