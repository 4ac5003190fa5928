/* Paths inside geobodies: geodesic distance maps, the walk back from a node to
 * the start of a map, and the join of two half paths.
 *
 * A geobody is a set of nodes of a grid of nx x ny x nz nodes (index
 * ix + nx*iy + nx*ny*iz), given as one int per node, non-zero inside. Two nodes
 * are neighbours when they share a face (the "6" functions), a face or an edge
 * ("18") or a face, an edge or a corner ("26"). Neighbours are always examined in
 * the same order, z slowest then y then x, each from -1 to +1, so every result is
 * deterministic.
 *
 * The caller owns every array; the functions only write to their outputs.
 */
#ifndef NUVO_GEOBODY_H
#define NUVO_GEOBODY_H

#include "nuvo_export.h"

NUVO_EXTERN_C_BEGIN

/** Geodesic distance map: every node gets -1, the nstart nodes of start get 0
 *  (inside the geobody or not), then the map grows breadth-first: at step s
 *  every node of the previous front examines its neighbours inside the grid, and
 *  a neighbour inside the geobody still at -1 gets s and joins the next front.
 *  The loop ends when a front is empty. distance receives nx*ny*nz ints.
 *  Returns 0; -601, -602, -603 when nx, ny or nz is below 1; -610 when
 *  nx*ny*nz does not fit in 32 bits; -20 for a null array; -2205 when a start
 *  node is not a node of the grid; -1 when scratch memory cannot be allocated. */
NUVO_API int NUVOComputeDistanceConnectivity6InGeobody(int nx, int ny, int nz, const int *geobody,
                                                       int nstart, const int *start, int *distance);
/** As NUVOComputeDistanceConnectivity6InGeobody with 18 neighbours. */
NUVO_API int NUVOComputeDistanceConnectivity18InGeobody(int nx, int ny, int nz, const int *geobody,
                                                        int nstart, const int *start,
                                                        int *distance);
/** As NUVOComputeDistanceConnectivity6InGeobody with 26 neighbours. */
NUVO_API int NUVOComputeDistanceConnectivity26InGeobody(int nx, int ny, int nz, const int *geobody,
                                                        int nstart, const int *start,
                                                        int *distance);

/** Walks from node target down a distance map made by the 6-neighbour function:
 *  path receives target, then at each step the first neighbour whose distance is
 *  one less, down to a node of distance 0; *npath = distance[target] + 1 (path
 *  must hold that many ints). Returns 0; the size codes as above; -20 for a null
 *  pointer; -2205 when target is not a node of the grid or was not reached
 *  (distance -1); -2200 when a node has no neighbour one step closer (the map
 *  was not made with 6 neighbours). */
NUVO_API int NUVOComputePathInDistanceMapGeobody6(int nx, int ny, int nz, const int *distance,
                                                  int target, int *npath, int *path);
/** As NUVOComputePathInDistanceMapGeobody6 with 18 neighbours; -2201. */
NUVO_API int NUVOComputePathInDistanceMapGeobody18(int nx, int ny, int nz, const int *distance,
                                                   int target, int *npath, int *path);
/** As NUVOComputePathInDistanceMapGeobody6 with 26 neighbours; -2202. */
NUVO_API int NUVOComputePathInDistanceMapGeobody26(int nx, int ny, int nz, const int *distance,
                                                   int target, int *npath, int *path);

/** Joins two half paths that start at the node where they meet (path1[0] equals
 *  path2[0]) into one path from the end of path1 to the end of path2: path1
 *  reversed, then path2 without its first node; *npath = n1 + n2 - 1 (path must
 *  hold that many ints). Every two consecutive nodes of both halves must be
 *  6-neighbours. Returns 0; the size codes as above; -20 for a null pointer;
 *  -2207 when a half path is empty, the halves do not meet at their first node,
 *  or two consecutive nodes are not neighbours. */
NUVO_API int NUVOJoinTwoPathInGeobody6(int nx, int ny, int nz, int n1, const int *path1, int n2,
                                       const int *path2, int *npath, int *path);
/** As NUVOJoinTwoPathInGeobody6 with 18 neighbours. */
NUVO_API int NUVOJoinTwoPathInGeobody18(int nx, int ny, int nz, int n1, const int *path1, int n2,
                                        const int *path2, int *npath, int *path);
/** As NUVOJoinTwoPathInGeobody6 with 26 neighbours. */
NUVO_API int NUVOJoinTwoPathInGeobody26(int nx, int ny, int nz, int n1, const int *path1, int n2,
                                        const int *path2, int *npath, int *path);

NUVO_EXTERN_C_END

#endif /* NUVO_GEOBODY_H */
