/* Simulation paths: the order in which the entries of a simulation grid are
 * simulated in one realization.
 *
 * An entry is, in the one-by-one form, the index v*nxyz + k of variable v at node
 * k (nxyz = nx*ny*nz, x fastest); in the vector form, the node index k. Each
 * function reorders, in place, the n entries it is given (the entries to be
 * simulated) and never adds or drops one. Every random draw comes from the given
 * context, so a seeded context gives the same path on every platform.
 *
 * The distance-guided paths read the entry flags simFlag: nvar*nxyz bytes, 0 for an
 * informed entry (a conditioning datum), non-zero for an entry to be simulated.
 * They order the entries by the distance of their node to the conditioning data,
 * measured with the cell sizes sx, sy, sz:
 *  - one-by-one form: each variable has its own conditioning nodes (its informed
 *    entries). The distance of an entry of variable v at node k is
 *    d_v(k) + (sum over the other variables w of d_w(k)) / nvar. A variable without
 *    any informed entry contributes 0 to the distances.
 *  - vector form: a node is conditioning when every variable is informed there,
 *    the variables informed at every node being left out of that test.
 * The nearest-datum forms (DistancePdf, DistanceSort) use for d the Euclidean
 * distance to the nearest conditioning node (NUVOEuclideanDistanceMap, linear in
 * nxyz per map). When no entry at all is informed, one of the n entries, drawn
 * uniformly, stands in as the only conditioning node (the caller's flags are not
 * modified), so the path still grows outwards from a random point.
 * The summed forms (DistanceSum...) use for d the power mean of the Euclidean
 * distances to all m conditioning nodes, (sum of distance^p / m)^(1/p): the sum of
 * the distances to the power p, normalised so that it stays in units of distance
 * (between the nearest and the farthest datum) whatever m and p. They cost one
 * term per pair of node and conditioning node: O(nodes of the entries x m) (times
 * nvar in the one-by-one form), each term a square root for p = 1, nothing more for
 * p = 2 and one pow otherwise. Without any conditioning node the path is random.
 *
 * With dmin, dmax the extreme distances over the n entries and R = dmax - dmin:
 *  - PDF forms: R < 1e-10 gives a random path (NUVOPathRandom). Otherwise, with
 *    a0 = 1e-10^(1/R) kept within [1e-10, 10] and a = 1 + s*(a0 - 1), each entry
 *    weighs a^(d - dmin) (proportional to a^d, kept away from underflow) and the
 *    entries are drawn one after the other by weight, without replacement
 *    (NUVORandomizeWeightedListOfInt). s = 0 gives a random path.
 *  - SORT forms: each entry, in the given order, draws r in (0, 1) and gets the key
 *    s*(d - dmin)/R + (1 - s)*r (d - dmin counts as 0 when R < 1e-10); the entries
 *    are sorted by increasing key, equal keys keeping their order in the list.
 *
 * Guided paths return 0; -3 when nx*ny*nz*nvar is zero (or a count is negative);
 * -610 when that product does not fit in 32 bits; -1 when scratch memory cannot be
 * allocated (nothing stays allocated); the codes of NUVOEuclideanDistanceMap
 * (-604 to -606 for a non-positive cell size) for the nearest-datum forms.
 */
#ifndef NUVO_PATH_H
#define NUVO_PATH_H

#include "nuvo_export.h"
#include "nuvo_random.h"
#include "nuvo_siminput.h"

NUVO_EXTERN_C_BEGIN

/** Random order of the n entries, in place: for i from n-1 down to 1, entries i and
 *  floor(u*(i+1)) are exchanged, u drawn from ctx. Fewer than two entries are left
 *  as they are. Returns 0. */
NUVO_API int NUVOPathRandom(int n, int *entries, nuvo_randContext *ctx);

/** One-by-one entries, weighted draws by nearest-datum distance, strength s in [0, 1]. */
NUVO_API int NUVOPathDistancePdfRandom(int n, int *entries, const signed char *simFlag, int nx,
                                       int ny, int nz, int nvar, double sx, double sy, double sz,
                                       double s, nuvo_randContext *ctx);
/** One-by-one entries, sorted by nearest-datum distance mixed with noise. */
NUVO_API int NUVOPathDistanceSortRandom(int n, int *entries, const signed char *simFlag, int nx,
                                        int ny, int nz, int nvar, double sx, double sy, double sz,
                                        double s, nuvo_randContext *ctx);
/** One-by-one entries, weighted draws by summed distance of power p > 0. */
NUVO_API int NUVOPathDistanceSumPdfRandom(int n, int *entries, const signed char *simFlag, int nx,
                                          int ny, int nz, int nvar, double sx, double sy, double sz,
                                          double s, double p, nuvo_randContext *ctx);
/** One-by-one entries, sorted by summed distance of power p > 0 mixed with noise. */
NUVO_API int NUVOPathDistanceSumSortRandom(int n, int *entries, const signed char *simFlag, int nx,
                                           int ny, int nz, int nvar, double sx, double sy,
                                           double sz, double s, double p, nuvo_randContext *ctx);

/** Node entries, weighted draws by nearest-datum distance. */
NUVO_API int NUVOVectorPathDistancePdfRandom(int n, int *entries, const signed char *simFlag,
                                             int nx, int ny, int nz, int nvar, double sx, double sy,
                                             double sz, double s, nuvo_randContext *ctx);
/** Node entries, sorted by nearest-datum distance mixed with noise. */
NUVO_API int NUVOVectorPathDistanceSortRandom(int n, int *entries, const signed char *simFlag,
                                              int nx, int ny, int nz, int nvar, double sx,
                                              double sy, double sz, double s,
                                              nuvo_randContext *ctx);
/** Node entries, weighted draws by summed distance of power p > 0. */
NUVO_API int NUVOVectorPathDistanceSumPdfRandom(int n, int *entries, const signed char *simFlag,
                                                int nx, int ny, int nz, int nvar, double sx,
                                                double sy, double sz, double s, double p,
                                                nuvo_randContext *ctx);
/** Node entries, sorted by summed distance of power p > 0 mixed with noise. */
NUVO_API int NUVOVectorPathDistanceSumSortRandom(int n, int *entries, const signed char *simFlag,
                                                 int nx, int ny, int nz, int nvar, double sx,
                                                 double sy, double sz, double s, double p,
                                                 nuvo_randContext *ctx);

/** Unilateral order of n node entries. order holds ux, uy, uz: 0 for a coordinate
 *  visited in random order, else a signed rank +-1..+-m. The coordinate of rank 1
 *  varies fastest, that of rank m slowest, each increasing for a positive sign and
 *  decreasing for a negative one. The entries sharing the coordinates of non-zero
 *  rank form a section, visited in a uniformly random order: the entries are first
 *  shuffled as by NUVOPathRandom (when some component is 0), then stably sorted by
 *  section. Example: order (0, 2, 1) visits x at random, z increasing first, then
 *  y increasing. Returns 0, -3 when nx*ny*nz is zero, -1 on allocation failure. */
NUVO_API int NUVOPathUnilateral3D(int n, int *entries, int nx, int ny, int nz, const int *order,
                                  nuvo_randContext *ctx);

/** As NUVOPathUnilateral3D for one-by-one entries, order holding ux, uy, uz, uv (the
 *  variable is the fourth coordinate). Example: order (0, -2, 1, 0) visits every
 *  xv-section at random, z increasing first, then y decreasing. Returns 0, -3 when
 *  nx*ny*nz*nvar is zero, -610 when it does not fit in 32 bits, -1. */
NUVO_API int NUVOPathUnilateral4D(int n, int *entries, int nx, int ny, int nz, int nvar,
                                  const int *order, nuvo_randContext *ctx);

/** The path template of a simulation. One-by-one form: each entry e of the npath =
 *  nvar*nxyz entries is "not to be simulated" when simFlag[e] is 0 (informed) or when
 *  the mask is used (maskImageFlag) and its value at node e mod nxyz is 0.0; those
 *  are written to path (npath ints) from the front in increasing order, the others
 *  from the back (in decreasing order); *nnotSimulated and *nsimulated receive the
 *  two counts. Vector form, only under SIM_VARIABLE_VECTOR: each node k is not to be
 *  simulated when masked or when every variable is informed there, and vectorPath
 *  (nxyz ints) is filled the same way; otherwise vectorPath is not touched (it may
 *  be null) and both vector counts are 0. The caller owns both arrays. Returns 0. */
NUVO_API int NUVOSimPrepareSimulationPath(const nuvo_simInput *simInput, const signed char *simFlag,
                                          int npath, int *path, int *nnotSimulated, int *nsimulated,
                                          int *vectorPath, int *nvectorNotSimulated,
                                          int *nvectorSimulated);

NUVO_EXTERN_C_END

#endif /* NUVO_PATH_H */
