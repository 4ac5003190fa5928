/* Pyramid parameters: how multi-resolution simulation is set up.
 *
 * nuvo_pyramidGeneralParameters (one per simulation) gives the number of pyramid
 * levels, the reduction steps of each level, the pyramid simulation mode and the
 * factors that adapt, level by level, the maximal number of neighboring nodes, the
 * distance threshold and the maximal scan fraction. Its text form
 * nuvo_pyramidGeneralParametersASCII may leave the factors to their defaults,
 * which the conversion resolves. nuvo_pyramidParameters (one per variable) says
 * whether and how the variable takes part.
 *
 * Factor counts, with n = npyramidLevel: in the two hierarchical modes the
 * neighbor and threshold factors hold 4n + 1 numbers faCond[0], faSim[0],
 * fbCond[0], fbSim[0], ..., faCond[n-1], faSim[n-1], fbCond[n-1], fbSim[n-1],
 * fbSim[n]; in PYRAMID_SIM_ALL_LEVEL_ONE_BY_ONE they hold n + 1 numbers f[0..n].
 * The scan-fraction factors always hold n + 1 numbers. With PYRAMID_SIM_NONE there
 * are no factors.
 *
 * Every record owns its arrays and classes; the Free functions release them and
 * re-initialise the record, never the record itself.
 */
#ifndef NUVO_PYRAMIDPARAMS_H
#define NUVO_PYRAMIDPARAMS_H

#include <stdio.h>

#include "nuvo_classofvalues.h"
#include "nuvo_export.h"
#include "nuvo_progress.h"

NUVO_EXTERN_C_BEGIN

/** Values of pyramidSimulationMode. */
typedef enum {
  PYRAMID_SIM_NONE = 0,
  PYRAMID_SIM_HIERARCHICAL = 1,
  PYRAMID_SIM_HIERARCHICAL_USING_EXPANSION = 2,
  PYRAMID_SIM_ALL_LEVEL_ONE_BY_ONE = 3
} nuvo_pyramidSimulationMode;

/** Values of factorNneighboringNodeSettingMode. */
typedef enum {
  PYRAMID_NNEIGHBOR_ADAPTING_FACTOR_DEFAULT = 0,
  PYRAMID_NNEIGHBOR_ADAPTING_FACTOR_MANUAL = 1
} nuvo_pyramidNneighborFactorMode;

/** Values of factorDistanceThresholdSettingMode. */
typedef enum {
  PYRAMID_THRESHOLD_ADAPTING_FACTOR_DEFAULT = 0,
  PYRAMID_THRESHOLD_ADAPTING_FACTOR_MANUAL = 1
} nuvo_pyramidThresholdFactorMode;

/** Values of factorMaxScanFractionSettingMode. */
typedef enum {
  PYRAMID_MAX_SCAN_FRACTION_ADAPTING_FACTOR_DEFAULT = 0,
  PYRAMID_MAX_SCAN_FRACTION_ADAPTING_FACTOR_MANUAL = 1
} nuvo_pyramidMaxScanFractionFactorMode;

/** Values of pyramidType. */
typedef enum {
  PYRAMID_NONE = 0,
  PYRAMID_CONTINUOUS = 1,
  PYRAMID_CATEGORICAL_AUTO = 2,
  PYRAMID_CATEGORICAL_CUSTOM = 3,
  PYRAMID_CATEGORICAL_TO_CONTINUOUS = 4
} nuvo_pyramidType;

typedef struct {
  int npyramidLevel;               /**< number of reductions; 0: no pyramid */
  int *kx, *ky, *kz;               /**< owned; npyramidLevel reduction steps each */
  int pyramidSimulationMode;       /**< nuvo_pyramidSimulationMode */
  double *factorNneighboringNode;  /**< owned; 4n + 1 or n + 1 factors (see above) */
  double *factorDistanceThreshold; /**< owned; as factorNneighboringNode */
  double *factorMaxScanFraction;   /**< owned; n + 1 factors */
} nuvo_pyramidGeneralParameters;

typedef struct {
  int npyramidLevel;
  int *kx, *ky, *kz;
  int pyramidSimulationMode;
  int factorNneighboringNodeSettingMode;  /**< nuvo_pyramidNneighborFactorMode */
  double *factorNneighboringNode;         /**< owned; manual mode only */
  int factorDistanceThresholdSettingMode; /**< nuvo_pyramidThresholdFactorMode */
  double *factorDistanceThreshold;        /**< owned; manual mode only */
  int factorMaxScanFractionSettingMode;   /**< nuvo_pyramidMaxScanFractionFactorMode */
  double *factorMaxScanFraction;          /**< owned; manual mode only */
} nuvo_pyramidGeneralParametersASCII;

typedef struct {
  int nlevel;                        /**< number of reductions for this variable; 0: none */
  int pyramidType;                   /**< nuvo_pyramidType */
  nuvo_classOfValues *classOfValues; /**< owned; PYRAMID_CATEGORICAL_CUSTOM only */
} nuvo_pyramidParameters;

/** Length of factorNneighboringNode and of factorDistanceThreshold for a
 *  simulation mode and n levels: 4n + 1 in the hierarchical modes, n + 1 in
 *  PYRAMID_SIM_ALL_LEVEL_ONE_BY_ONE, 0 for any other mode or for n < 1. */
NUVO_API int NUVOGetPyramidNFactor(int pyramidSimulationMode, int npyramidLevel);

/* ---- nuvo_pyramidGeneralParameters ---- */

/** No level, mode PYRAMID_SIM_NONE, every pointer null. */
NUVO_API void NUVOInitPyramidGeneralParameters(nuvo_pyramidGeneralParameters *p);
/** Deep copy of in into out (out initialised or freed). Returns 0 or -1. */
NUVO_API int NUVOCopyPyramidGeneralParameters(const nuvo_pyramidGeneralParameters *in,
                                              nuvo_pyramidGeneralParameters *out);
/** Releases the arrays and re-initialises; accepts a partly filled record. */
NUVO_API void NUVOFreePyramidGeneralParameters(nuvo_pyramidGeneralParameters *p);
/** The number of levels, the steps, the mode and the three factor lists, each line
 *  starting with prefix. Returns 0. */
NUVO_API int NUVOPrintPyramidGeneralParameters(const nuvo_pyramidGeneralParameters *p,
                                               const char *prefix, FILE *stream);
/** Checks the record, first failure wins; puts 0 or a code of -3617 to -3629,
 *  -3651 or -3652 in *error (a missing step or factor array counts as a value
 *  too small). pm and callback are accepted for the uniform validator
 *  shape; nothing is reported. Returns 0. */
NUVO_API int NUVOValidatePyramidGeneralParameters(const nuvo_pyramidGeneralParameters *p,
                                                  nuvo_progressMonitor *pm,
                                                  nuvo_progressCallback callback, int *error);

/* ---- nuvo_pyramidGeneralParametersASCII ---- */

/** No level, every mode 0, every pointer null. */
NUVO_API void NUVOInitPyramidGeneralParametersASCII(nuvo_pyramidGeneralParametersASCII *p);
/** Releases the arrays and re-initialises; accepts a partly filled record. */
NUVO_API void NUVOFreePyramidGeneralParametersASCII(nuvo_pyramidGeneralParametersASCII *p);
/** As NUVOPrintPyramidGeneralParameters, with a setting-mode line before each
 *  factor list (a default list prints no factors). Returns 0. */
NUVO_API int NUVOPrintPyramidGeneralParametersASCII(const nuvo_pyramidGeneralParametersASCII *p,
                                                    const char *prefix, FILE *stream);
/** Reads the general pyramid section into an initialised record, skipping comments
 *  before every item. Returns 0 or the first failure: -3600 npyramidLevel, -3602 /
 *  -3603 / -3604 a step kx / ky / kz (-3602 also for more levels than bytes left
 *  in the stream, refused before allocating), -3601 simulation mode, -3590 / -3591 / -3592
 *  a setting-mode keyword, -3595 / -3596 / -3597 a factor, -1 allocation. */
NUVO_API int NUVOReadPyramidGeneralParametersASCII(nuvo_pyramidGeneralParametersASCII *p,
                                                   FILE *stream);
/** Fills the initialised record out from in, resolving the default factors:
 *  neighbor factors faCond = faSim = 0.5, fbSim[j] = 0.5^min(n - j, 2),
 *  fbCond = fbSim / 3, fbSim[n] = 1 (hierarchical) or 1 / (n + 1) each (one by
 *  one); threshold factors 1; scan-fraction factors f[0] = 1 and f[j] = f[j-1]
 *  times the size ratio of reduction j. Returns 0 or -1. */
NUVO_API int NUVOPyramidGeneralParametersASCIIToPyramidGeneralParameters(
    const nuvo_pyramidGeneralParametersASCII *in, nuvo_pyramidGeneralParameters *out);

/* ---- nuvo_pyramidParameters ---- */

/** No level, PYRAMID_NONE, null classes. */
NUVO_API void NUVOInitPyramidParameters(nuvo_pyramidParameters *p);
/** Deep copy of in into out (out initialised or freed). Returns 0 or -1. */
NUVO_API int NUVOCopyPyramidParameters(const nuvo_pyramidParameters *in,
                                       nuvo_pyramidParameters *out);
/** Releases the classes and re-initialises. */
NUVO_API void NUVOFreePyramidParameters(nuvo_pyramidParameters *p);
/** The number of levels, the type and, for the custom type, the classes (with
 *  prefix plus three blanks). Returns 0, or -1 when the extended prefix cannot be
 *  made. */
NUVO_API int NUVOPrintPyramidParameters(const nuvo_pyramidParameters *p, const char *prefix,
                                        FILE *stream);
/** Checks the record, first failure wins; puts 0 or a code of -3630 to -3650 in
 *  *error (class errors -4041 to -4049 become -3641 to -3649, others -3640).
 *  pm and callback are accepted for the uniform validator shape. Returns 0. */
NUVO_API int NUVOValidatePyramidParameters(const nuvo_pyramidParameters *p,
                                           nuvo_progressMonitor *pm, nuvo_progressCallback callback,
                                           int *error);
/** Reads one variable's pyramid section into an initialised record, skipping
 *  comments before every item. Returns 0 or the first failure: -3610 nlevel, -3611
 *  type, -3613 / -3614 / -3615 / -3616 classes (nclass, ninterval, intervalInf,
 *  intervalSup), -3612 any other class failure, -1 allocation. */
NUVO_API int NUVOReadPyramidParameters(nuvo_pyramidParameters *p, FILE *stream);

NUVO_EXTERN_C_END

#endif /* NUVO_PYRAMIDPARAMS_H */
