/* The search neighborhoods of one simulation: the distinct lists of the
 * variables, concatenated, with their linear offsets in the simulation grid and in
 * every training image, so that the pattern search adds an offset to a node index
 * instead of recomputing coordinates.
 *
 * Ownership: the record owns every array and neighborhood it holds;
 * NUVOFreeSimSearchNeighborhoods releases them and re-initialises the record.
 */
#ifndef NUVO_SIMNEIGHBORHOODS_H
#define NUVO_SIMNEIGHBORHOODS_H

#include "nuvo_export.h"
#include "nuvo_progress.h"
#include "nuvo_random.h"
#include "nuvo_searchneighborhood.h"
#include "nuvo_siminput.h"

NUVO_EXTERN_C_BEGIN

typedef struct {
  int nsearchNeighborhood;                     /**< number of distinct neighborhoods */
  nuvo_searchNeighborhood *searchNeighborhood; /**< the distinct neighborhoods */
  int totalSize;                               /**< sum of their sizes */
  int *start;         /**< per neighborhood, index of its first node in the concatenation */
  int *simGridOffset; /**< totalSize offsets ix + nx*iy + nx*ny*iz in the simulation grid */
  int ntiOffset;      /**< ntrainImage, or 0 when homothety or rotation is used */
  int **tiOffset;     /**< per training image, totalSize offsets in its own grid */
  int nvar;           /**< number of variables */
  int *searchNeighborhoodIndex; /**< per variable, the index of its neighborhood */
  signed char *weightUnifFlag;  /**< per variable, 1 when its data-event weights are uniform */
} nuvo_simSearchNeighborhoods;

/** Sets every count to zero and every pointer to null. */
NUVO_API void NUVOInitSimSearchNeighborhoods(nuvo_simSearchNeighborhoods *s);

/** Releases what the record owns and re-initialises it; freeing twice is harmless. */
NUVO_API void NUVOFreeSimSearchNeighborhoods(nuvo_simSearchNeighborhoods *s);

/** Builds the neighborhoods of the variables of simInput into s (initialised or
 *  freed). Variables whose parameters compare equal (NUVOCmpSearchNeighborhoodParameters)
 *  share the list of the first of them; each distinct list is built with ctx
 *  (NUVOBuildSearchNeighborhood, which re-seeds it). The training-image offsets use
 *  each image's own nx and ny (the simulation grid's for a TI that is the simulation
 *  grid) and are not built when homothety or rotation is used, since offsets then
 *  depend on the node.
 *
 *  simFlag is the per-variable table of the preparation: the entry flags of the
 *  simulation, nvar rows of nxyz bytes (row v at simFlag + v*nxyz, 0 for an entry
 *  informed by conditioning data). It decides whether conditioning data can make the
 *  weights of a variable non-uniform: weightUnifFlag of variable v is 1 when its
 *  power is 0 (all weights 1) and either its conditioningWeightFactor is exactly 1
 *  or its row has no informed entry (so that the factor never applies); else 0.
 *
 *  Returns 0; -3 when nvar <= 0; the codes of NUVOBuildSearchNeighborhood; -1 on
 *  allocation failure; -1000 when pm (may be null) asks for a stop between steps.
 *  On failure what was built stays for NUVOFreeSimSearchNeighborhoods. */
NUVO_API int NUVOSimPrepareSearchNeighborhood(const nuvo_simInput *simInput,
                                              const signed char *simFlag,
                                              nuvo_simSearchNeighborhoods *s, nuvo_randContext *ctx,
                                              nuvo_progressMonitor *pm);

NUVO_EXTERN_C_END

#endif /* NUVO_SIMNEIGHBORHOODS_H */
