/* Simulation: the entry point NUVOSim and its output record.
 *
 * NUVOSim validates a complete nuvo_simInput, optionally writes a text report,
 * and produces nrealization realizations, kept in a nuvo_simOutput and/or written
 * to GSLIB files as the input's output settings ask.
 *
 * Reproducibility: realization r depends only on seed + r * seedIncrement (32-bit
 * wrap-around), never on earlier realizations, so realization r run alone (with
 * that seed and nrealization 1) is bit-identical to realization r of a longer run.
 * A realization seed of exactly 0 is the one exception: it continues the previous
 * realization's stream instead of restarting it.
 *
 * Linear normalisation (NORMALIZING_LINEAR) puts each variable with an absolute,
 * non-categorical distance on the scale of its training range (mapped onto
 * [0, 1]). It is applied to the distance itself, by dividing the variable's
 * threshold by its training range, which compares exactly as normalised values
 * would while every simulated and conditioning value stays bit for bit what the
 * training images and the data hold.
 *
 * NORMALIZING_UNIFORM and NORMALIZING_NORMAL map each distinct training value of
 * such a variable to its place in the training distribution (uniform scores in
 * [0, 1], or standard normal scores) through an explicit table, applied before
 * the realizations to copies of the training images and to the conditioned
 * simulation image, and undone after each realization by the inverse table; the
 * conditioning data are then put back as given. Simulated values are therefore
 * exactly training values, and the threshold is compared with distances of the
 * scores, unscaled.
 *
 * RESCALING_MIN_MAX and RESCALING_MEAN_LENGTH map copies of the training images
 * linearly onto the variable's target interval before anything else: simulated
 * values are training values carried onto that interval, and the conditioning
 * data and classes of values are read in it. The caller's training images are
 * never modified.
 */
#ifndef NUVO_SIM_H
#define NUVO_SIM_H

#include <stdio.h>

#include "nuvo_export.h"
#include "nuvo_image.h"
#include "nuvo_progress.h"
#include "nuvo_siminput.h"

NUVO_EXTERN_C_BEGIN

typedef struct {
  int nreal;                        /**< number of realizations */
  int nvarSimPerReal;               /**< variables kept per realization (outputVarFlag) */
  nuvo_image *outputSimImage;       /**< nreal * nvarSimPerReal variables, realization-major */
  int nvarPathIndexPerReal;         /**< 0 when the map is not asked for */
  nuvo_image *outputPathIndexImage; /**< or null */
  int nvarErrorPerReal;
  nuvo_image *outputErrorImage; /**< or null */
  int nvarTiGridNodeIndexPerReal;
  nuvo_image *outputTiGridNodeIndexImage; /**< or null */
  int nvarTiIndexPerReal;
  nuvo_image *outputTiIndexImage; /**< or null */
} nuvo_simOutput;

/** Sets every count to 0 and every pointer to null. */
NUVO_API void NUVOInitSimOutput(nuvo_simOutput *out);

/** Frees the five images (values, names, grids and the image records) and
 *  re-initialises; accepts partly filled records. */
NUVO_API void NUVOFreeSimOutput(nuvo_simOutput *out);

/** Runs a whole simulation: opens and writes the report when asked (its first
 *  line is NUVOPrintVersion's), validates the input, then simulates. `out` must be
 *  initialised; with consoleAppFlag set it stays empty and only files are written.
 *  Variable names in outputSimImage are "<name>_real<rrrrr>", those of the maps
 *  "<map>_var<vv>_real<rrrrr>" (one map per variable, one-by-one simulation) or
 *  "<map>_real<rrrrr>". Returns 0, the validation's verdict (negative code),
 *  -110 when the report or an output file cannot be opened, -1 on allocation
 *  failure, -1000 or the callback's code when stopped. On failure `out` may be
 *  partly filled: release it with NUVOFreeSimOutput. */
NUVO_API int NUVOSim(nuvo_simInput *si, nuvo_simOutput *out, nuvo_progressMonitor *pm,
                     nuvo_progressCallback callback);

/** The standard (single-level) simulation of a validated input, writing its
 *  parameter details and realization statistics to `report` when not null.
 *  Same results and codes as NUVOSim without validation. */
NUVO_API int NUVOSimStandard(const nuvo_simInput *si, nuvo_simOutput *out, FILE *report,
                             nuvo_progressMonitor *pm, nuvo_progressCallback callback);

/** The pyramid simulation of a validated input whose pyramid general parameters
 *  have levels: each realization is simulated level by level, from the coarse
 *  grids obtained by gaussian reduction down to the simulation grid, in the
 *  input's pyramid simulation mode. Writes the pyramid layout and the level
 *  simulations to `report` when not null. Same output and codes as
 *  NUVOSimStandard, and -3670 when a level has no variable to simulate (a
 *  categorical variable with a single category), -554 when a datum of a
 *  variable turned continuous is no training category, or the code of a
 *  reduction whose grid is too small (-3506 .. -3508); -3656 without levels. */
NUVO_API int NUVOSimPyramid(const nuvo_simInput *si, nuvo_simOutput *out, FILE *report,
                            nuvo_progressMonitor *pm, nuvo_progressCallback callback);

NUVO_EXTERN_C_END

#endif /* NUVO_SIM_H */
