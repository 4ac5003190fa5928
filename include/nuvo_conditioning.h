/* Conditioning data of a simulation: the data images, the data point sets and
 * the mask of a simulation input merged into a working copy of the simulation
 * image before any realization.
 *
 * The checks of the merged data against the training images and the flags
 * saying which entries are to be simulated are an internal step of the
 * simulation (they fill the engine's own preparation state), so they have no
 * C entry point here.
 */
#ifndef NUVO_CONDITIONING_H
#define NUVO_CONDITIONING_H

#include "nuvo_export.h"
#include "nuvo_image.h"
#include "nuvo_progress.h"
#include "nuvo_siminput.h"

NUVO_EXTERN_C_BEGIN

/** Merges the conditioning data of `si` into the working image `simImage`, in
 *  this order:
 *  1. the data images, in input order: each must have exactly the grid of
 *     `simImage` (NUVOCmpGrid returns 0); each of its variables goes to the
 *     variable of `simImage` with exactly the same name (case-sensitive), a
 *     variable without namesake is ignored. Every informed datum is written at
 *     its node. The values `simImage` already holds (the simulation image's own
 *     data) are the starting point: the first data image replaces them without
 *     counting; from the second data image on, a datum landing on an entry that
 *     is already informed replaces it and counts as a conflict. After each data
 *     image, warning 44 (ignored variables) then warning 45 (conflicts), each at
 *     most once. A variable named as the label variable of a connectivity
 *     constraint in use is read by that constraint: it does not count as
 *     ignored, here or in the point sets;
 *  2. the data point sets, in input order, projected onto the nodes of
 *     `simImage` (NUVOPointSetToImage): unknown variables and points outside the
 *     grid are ignored, a point landing on an informed entry (whatever informed
 *     it) replaces it and counts as a conflict. After each point set, warnings
 *     43 (ignored variables), 42 (points outside the grid) and 41 (conflicts),
 *     each when its count is non-zero, in this order;
 *  3. the mask, when si->maskImageFlag is set: at every node where its first
 *     variable equals 0.0, every variable of `simImage` becomes missing; warning
 *     40 once when at least one datum was removed so.
 *  Warnings go through `pm` and `callback` (a null `pm` reports nothing).
 *
 *  simImage     working image on the simulation grid with the variables of
 *               si->simImage, usually a copy of it (NUVOCopyImage); the caller
 *               owns it.
 *  nIgnoredVar  out: variables ignored for want of a simulated namesake, summed
 *               over the data images and the point sets.
 *  nConflict    out: data that replaced an informed entry (the conflicts of
 *               warnings 45 and 41), summed over data images and point sets.
 *               Points outside the grid and data removed by the mask are in
 *               neither count (warnings 42 and 40 tell of them).
 *
 *  Returns 0; -20 when a count is null or a data image, point set or mask the
 *  input announces is missing; -3 when a data image, point set or the mask has
 *  no variable; -150 when a data image or the mask is not on the grid of
 *  `simImage`; -1 on allocation failure; -1000 when the monitor asks for a stop;
 *  or the non-zero value returned by the callback. On failure `simImage` keeps
 *  what was already written. */
NUVO_API int NUVOSimIntegrateConditioningData(const nuvo_simInput *si, nuvo_image *simImage,
                                              int *nIgnoredVar, int *nConflict,
                                              nuvo_progressMonitor *pm,
                                              nuvo_progressCallback callback);

/** NUVOSimIntegrateConditioningData for an input in which some variable v has a
 *  connectivity constraint (si->connectivity[v] with a usage above 0), followed
 *  by the labels of those variables: label (si->nvar * nxyz ints, variable v at
 *  v * nxyz) receives, for each constrained variable, the labels of its label
 *  variable (connectivity[v].varName) in the data images then the data point
 *  sets (NUVOImageToImageWithConnectivityLabel and
 *  NUVOPointSetToImageWithConnectivityLabel); the other variables get 0. Labels
 *  at nodes that the mask leaves out are removed, with warning 46 once. A
 *  constrained variable without any label left raises warning 55 and is then
 *  not constrained. The labels are then checked against the merged data:
 *  -181 a labelled node without a value of the variable, -185 a labelled value
 *  in no class of the constraint, -186 one label on values of different
 *  classes, -184 a label found at a single node.
 *  Returns 0, the codes of NUVOSimIntegrateConditioningData and of the label
 *  functions, the codes above, -20 for a null label array. */
NUVO_API int NUVOSimIntegrateConditioningDataWithConnectivity(const nuvo_simInput *si,
                                                              nuvo_image *simImage, int *label,
                                                              int *nIgnoredVar, int *nConflict,
                                                              nuvo_progressMonitor *pm,
                                                              nuvo_progressCallback callback);

NUVO_EXTERN_C_END

#endif /* NUVO_CONDITIONING_H */
