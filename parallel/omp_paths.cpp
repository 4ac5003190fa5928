// The multithreaded twins of the distance-guided paths and of the Euclidean
// distance map.
#include "engine/path_guided.hpp"
#include "engine/sim_standard.hpp"
#include "nuvo_omp.h"
#include "toolkit/distance_map.hpp"

using nuvo::kInvalidThreadCount;

using nuvo::EntryForm;
using nuvo::Guide;
using nuvo::Metric;
using nuvo::Order;

extern "C" {

int NUVOOMPEuclideanDistanceMap(const nuvo_grid *grid, const signed char *informed,
                                double *distance, int nthread) {
  if (nthread < 1) return kInvalidThreadCount;
  return nuvo::euclideanDistanceMap(*grid, informed, distance, nthread);
}

int NUVOOMPPathDistancePdfRandom(int n, int *entries, const signed char *simFlag, int nx, int ny,
                                 int nz, int nvar, double sx, double sy, double sz, double s,
                                 nuvo_randContext *ctx, int nthread) {
  if (nthread < 1) return kInvalidThreadCount;
  return nuvo::guided({nx, ny, nz, nvar, sx, sy, sz}, EntryForm::kOneByOne, n, entries, simFlag,
                      Guide{Metric::kNearest, Order::kPdf, s, 0.0}, ctx, nthread);
}

int NUVOOMPPathDistanceSortRandom(int n, int *entries, const signed char *simFlag, int nx, int ny,
                                  int nz, int nvar, double sx, double sy, double sz, double s,
                                  nuvo_randContext *ctx, int nthread) {
  if (nthread < 1) return kInvalidThreadCount;
  return nuvo::guided({nx, ny, nz, nvar, sx, sy, sz}, EntryForm::kOneByOne, n, entries, simFlag,
                      Guide{Metric::kNearest, Order::kSort, s, 0.0}, ctx, nthread);
}

int NUVOOMPPathDistanceSumPdfRandom(int n, int *entries, const signed char *simFlag, int nx, int ny,
                                    int nz, int nvar, double sx, double sy, double sz, double s,
                                    double p, nuvo_randContext *ctx, int nthread) {
  if (nthread < 1) return kInvalidThreadCount;
  return nuvo::guided({nx, ny, nz, nvar, sx, sy, sz}, EntryForm::kOneByOne, n, entries, simFlag,
                      Guide{Metric::kSummed, Order::kPdf, s, p}, ctx, nthread);
}

int NUVOOMPPathDistanceSumSortRandom(int n, int *entries, const signed char *simFlag, int nx,
                                     int ny, int nz, int nvar, double sx, double sy, double sz,
                                     double s, double p, nuvo_randContext *ctx, int nthread) {
  if (nthread < 1) return kInvalidThreadCount;
  return nuvo::guided({nx, ny, nz, nvar, sx, sy, sz}, EntryForm::kOneByOne, n, entries, simFlag,
                      Guide{Metric::kSummed, Order::kSort, s, p}, ctx, nthread);
}

int NUVOOMPVectorPathDistancePdfRandom(int n, int *entries, const signed char *simFlag, int nx,
                                       int ny, int nz, int nvar, double sx, double sy, double sz,
                                       double s, nuvo_randContext *ctx, int nthread) {
  if (nthread < 1) return kInvalidThreadCount;
  return nuvo::guided({nx, ny, nz, nvar, sx, sy, sz}, EntryForm::kVector, n, entries, simFlag,
                      Guide{Metric::kNearest, Order::kPdf, s, 0.0}, ctx, nthread);
}

int NUVOOMPVectorPathDistanceSortRandom(int n, int *entries, const signed char *simFlag, int nx,
                                        int ny, int nz, int nvar, double sx, double sy, double sz,
                                        double s, nuvo_randContext *ctx, int nthread) {
  if (nthread < 1) return kInvalidThreadCount;
  return nuvo::guided({nx, ny, nz, nvar, sx, sy, sz}, EntryForm::kVector, n, entries, simFlag,
                      Guide{Metric::kNearest, Order::kSort, s, 0.0}, ctx, nthread);
}

int NUVOOMPVectorPathDistanceSumPdfRandom(int n, int *entries, const signed char *simFlag, int nx,
                                          int ny, int nz, int nvar, double sx, double sy, double sz,
                                          double s, double p, nuvo_randContext *ctx, int nthread) {
  if (nthread < 1) return kInvalidThreadCount;
  return nuvo::guided({nx, ny, nz, nvar, sx, sy, sz}, EntryForm::kVector, n, entries, simFlag,
                      Guide{Metric::kSummed, Order::kPdf, s, p}, ctx, nthread);
}

int NUVOOMPVectorPathDistanceSumSortRandom(int n, int *entries, const signed char *simFlag, int nx,
                                           int ny, int nz, int nvar, double sx, double sy,
                                           double sz, double s, double p, nuvo_randContext *ctx,
                                           int nthread) {
  if (nthread < 1) return kInvalidThreadCount;
  return nuvo::guided({nx, ny, nz, nvar, sx, sy, sz}, EntryForm::kVector, n, entries, simFlag,
                      Guide{Metric::kSummed, Order::kSort, s, p}, ctx, nthread);
}

}  // extern "C"
