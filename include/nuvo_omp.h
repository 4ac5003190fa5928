/* The multithreaded family: the simulation entry points with a number of
 * threads.
 *
 * Each NUVOOMP routine behaves as its serial twin and takes one more argument,
 * the number of threads (at least 1; a count below 1 fails with -99 before
 * anything else is done). The loop over realizations stays sequential; the
 * threads share the path of each realization, every path entry drawing its
 * random numbers from the realization's seed and its position in the path
 * only. An entry reads a neighbour simulated before it in the path only once
 * that neighbour is finished, and never one simulated after it, so the
 * realizations, maps and files are bit-identical to the serial family's for
 * every number of threads. Three cases are the exceptions, each announced by a
 * warning: a training image that is the simulation grid (100), the global
 * probability constraint (111) and block data (115).
 *
 * The node loop runs on one thread when a training image is the simulation grid
 * or a probability constraint is in use: both read state that the whole grid
 * writes.
 */
#ifndef NUVO_OMP_H
#define NUVO_OMP_H

#include <stdio.h>

#include "nuvo_export.h"
#include "nuvo_grid.h"
#include "nuvo_progress.h"
#include "nuvo_random.h"
#include "nuvo_sim.h"
#include "nuvo_siminput.h"

NUVO_EXTERN_C_BEGIN

/** As NUVOSim on nthread threads. The report's second line is
 *  "VERSION: OPENMP: <nthread> threads"; after validation, warnings 100, 111 and
 *  115 are raised in that order through the monitor when they apply (a non-zero
 *  result of the callback stops with that value). Returns the codes of NUVOSim,
 *  and -99 when nthread < 1, before any file is opened. */
NUVO_API int NUVOOMPSim(nuvo_simInput *si, nuvo_simOutput *out, nuvo_progressMonitor *pm,
                        nuvo_progressCallback callback, int nthread);

/** As NUVOSimStandard on nthread threads; -99 when nthread < 1. */
NUVO_API int NUVOOMPSimStandard(const nuvo_simInput *si, nuvo_simOutput *out, FILE *report,
                                nuvo_progressMonitor *pm, nuvo_progressCallback callback,
                                int nthread);

/** As NUVOSimPyramid on nthread threads (every level's node loop); -99 when
 *  nthread < 1. */
NUVO_API int NUVOOMPSimPyramid(const nuvo_simInput *si, nuvo_simOutput *out, FILE *report,
                               nuvo_progressMonitor *pm, nuvo_progressCallback callback,
                               int nthread);

/** As NUVOValidateSimInput; -99 when nthread < 1 (error then untouched). */
NUVO_API int NUVOOMPValidateSimInput(nuvo_simInput *si, nuvo_progressMonitor *pm,
                                     nuvo_progressCallback callback, int *error, int nthread);

/** As NUVOEuclideanDistanceMap, the lines of each direction shared among nthread
 *  threads: the same map. -99 when nthread < 1. */
NUVO_API int NUVOOMPEuclideanDistanceMap(const nuvo_grid *grid, const signed char *informed,
                                         double *distance, int nthread);

/* The distance-guided paths of nuvo_path.h, their distance maps (or the summed
 * distances) computed on nthread threads: the same random draws, the same path.
 * -99 when nthread < 1, else the codes of the serial twin. The random and
 * unilateral paths have no twin: they are a single sequence of draws, linear in
 * the number of entries. */
NUVO_API int NUVOOMPPathDistancePdfRandom(int n, int *entries, const signed char *simFlag, int nx,
                                          int ny, int nz, int nvar, double sx, double sy, double sz,
                                          double s, nuvo_randContext *ctx, int nthread);
NUVO_API int NUVOOMPPathDistanceSortRandom(int n, int *entries, const signed char *simFlag, int nx,
                                           int ny, int nz, int nvar, double sx, double sy,
                                           double sz, double s, nuvo_randContext *ctx, int nthread);
NUVO_API int NUVOOMPPathDistanceSumPdfRandom(int n, int *entries, const signed char *simFlag,
                                             int nx, int ny, int nz, int nvar, double sx, double sy,
                                             double sz, double s, double p, nuvo_randContext *ctx,
                                             int nthread);
NUVO_API int NUVOOMPPathDistanceSumSortRandom(int n, int *entries, const signed char *simFlag,
                                              int nx, int ny, int nz, int nvar, double sx,
                                              double sy, double sz, double s, double p,
                                              nuvo_randContext *ctx, int nthread);
NUVO_API int NUVOOMPVectorPathDistancePdfRandom(int n, int *entries, const signed char *simFlag,
                                                int nx, int ny, int nz, int nvar, double sx,
                                                double sy, double sz, double s,
                                                nuvo_randContext *ctx, int nthread);
NUVO_API int NUVOOMPVectorPathDistanceSortRandom(int n, int *entries, const signed char *simFlag,
                                                 int nx, int ny, int nz, int nvar, double sx,
                                                 double sy, double sz, double s,
                                                 nuvo_randContext *ctx, int nthread);
NUVO_API int NUVOOMPVectorPathDistanceSumPdfRandom(int n, int *entries, const signed char *simFlag,
                                                   int nx, int ny, int nz, int nvar, double sx,
                                                   double sy, double sz, double s, double p,
                                                   nuvo_randContext *ctx, int nthread);
NUVO_API int NUVOOMPVectorPathDistanceSumSortRandom(int n, int *entries, const signed char *simFlag,
                                                    int nx, int ny, int nz, int nvar, double sx,
                                                    double sy, double sz, double s, double p,
                                                    nuvo_randContext *ctx, int nthread);

/** As NUVOPyramidReduce, the lines of each pass shared among nthread threads: the
 *  same values and weights. -99 when nthread < 1. */
NUVO_API int NUVOOMPPyramidReduce(const double *in, int nx, int ny, int nz, int kx, int ky, int kz,
                                  const double *wx, const double *wy, const double *wz, int shiftx,
                                  int shifty, int shiftz, int nxOut, int nyOut, int nzOut,
                                  double *out, double *outWeight, double minWeight, int nthread);

/** As NUVOPyramidExpand on nthread threads (the same result). -99 when nthread < 1. */
NUVO_API int NUVOOMPPyramidExpand(const double *in, int nx, int ny, int nz, int kx, int ky, int kz,
                                  const double *wx, const double *wy, const double *wz, int nxOut,
                                  int nyOut, int nzOut, double *out, double *outWeight,
                                  double minWeight, int nthread);

NUVO_EXTERN_C_END

#endif /* NUVO_OMP_H */
