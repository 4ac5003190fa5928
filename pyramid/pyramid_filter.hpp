// The reduction and expansion of a grid of values on a given number of threads,
// behind NUVOPyramidReduce / NUVOPyramidExpand and their multithreaded twins
// (the same arguments, codes and results, for any number of threads).
#pragma once

namespace nuvo {

int pyramidReduce(const double *in, int nx, int ny, int nz, int kx, int ky, int kz,
                  const double *wx, const double *wy, const double *wz, int shiftx, int shifty,
                  int shiftz, int nxOut, int nyOut, int nzOut, double *out, double *outWeight,
                  double minWeight, int nthread);

int pyramidExpand(const double *in, int nx, int ny, int nz, int kx, int ky, int kz,
                  const double *wx, const double *wy, const double *wz, int nxOut, int nyOut,
                  int nzOut, double *out, double *outWeight, double minWeight, int nthread);

}  // namespace nuvo
