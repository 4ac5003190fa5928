/* Probability constraints: a target distribution over classes of values that the
 * simulation of one variable is steered towards, given globally for the whole
 * simulation grid or node by node in an image.
 *
 * nuvo_softProbability is the record used by the simulation (one per variable);
 * nuvo_softProbabilityASCII is its text form, naming the local pdf image file
 * instead of holding the image. Both own every pointer they hold; their Free
 * functions release it and re-initialise the record, never the record itself.
 * Pointers that the usage does not need stay null.
 */
#ifndef NUVO_SOFTPROBABILITY_H
#define NUVO_SOFTPROBABILITY_H

#include <stdio.h>

#include "nuvo_classofvalues.h"
#include "nuvo_export.h"
#include "nuvo_image.h"
#include "nuvo_progress.h"

NUVO_EXTERN_C_BEGIN

/** Values of probabilityConstraintUsage. */
typedef enum {
  NUVO_PROBABILITY_CONSTRAINT_NONE = 0,
  NUVO_PROBABILITY_CONSTRAINT_GLOBAL = 1,
  NUVO_PROBABILITY_CONSTRAINT_LOCAL = 2
} nuvo_probabilityConstraintUsage;

/** Values of localCurrentPdfComputation: which nodes count in the current pdf. */
typedef enum {
  NUVO_LOCAL_CURRENT_PDF_COMPLETE = 0,   /**< every informed node within the support radius */
  NUVO_LOCAL_CURRENT_PDF_APPROXIMATE = 1 /**< only the data event's nodes within it */
} nuvo_localCurrentPdfComputation;

/** Values of comparingPdfMethod: how the current pdf is compared with the target. */
typedef enum {
  NUVO_COMPARING_PDF_MAE = 0,      /**< mean absolute error */
  NUVO_COMPARING_PDF_RMSE = 1,     /**< root mean squared error */
  NUVO_COMPARING_PDF_KLD = 2,      /**< Kullback-Leibler divergence */
  NUVO_COMPARING_PDF_JSD = 3,      /**< Jensen-Shannon divergence */
  NUVO_COMPARING_PDF_MLIKRSYM = 4, /**< mean likelihood ratio, symmetric target interval */
  NUVO_COMPARING_PDF_MLIKROPT = 5  /**< mean likelihood ratio, optimal target interval */
} nuvo_comparingPdfMethod;

/** Values of probabilityConstraintThresholdType. */
typedef enum {
  NUVO_PROBABILITY_THRESHOLD_CONSTANT = 0,
  NUVO_PROBABILITY_THRESHOLD_DYNAMIC = 1
} nuvo_probabilityConstraintThresholdType;

/** Number of dynamic threshold parameters: M1, M2, M3, T1, T2, T3, W. */
#define NUVO_DYNAMIC_THRESHOLD_NPARAM 7

typedef struct {
  int probabilityConstraintUsage;         /**< nuvo_probabilityConstraintUsage */
  nuvo_classOfValues *classOfValues;      /**< owned; the classes the probabilities refer to */
  double *globalPdf;                      /**< owned; usage 1: nclass target probabilities */
  nuvo_image *localPdfImage;              /**< owned; usage 2: nclass variables on the grid */
  double *localPdfSupportRadius;          /**< owned, one value; usage 2 */
  int localCurrentPdfComputation;         /**< nuvo_localCurrentPdfComputation; usage 2 */
  int comparingPdfMethod;                 /**< nuvo_comparingPdfMethod */
  double deactivationDistance;            /**< no constraint while the data event is this close */
  int probabilityConstraintThresholdType; /**< nuvo_probabilityConstraintThresholdType */
  double constantThreshold;               /**< threshold of type 0 */
  double *dynamicThresholdParameters;     /**< owned, 7 values M1 M2 M3 T1 T2 T3 W; type 1 */
} nuvo_softProbability;

typedef struct {
  int probabilityConstraintUsage;
  nuvo_classOfValues *classOfValues;
  double *globalPdf;
  char *localPdfImageFileName; /**< owned buffer of NUVO_FILE_NAME_MAX + 1 bytes; usage 2 */
  double *localPdfSupportRadius;
  int localCurrentPdfComputation;
  int comparingPdfMethod;
  double deactivationDistance;
  int probabilityConstraintThresholdType;
  double constantThreshold;
  double *dynamicThresholdParameters;
} nuvo_softProbabilityASCII;

/* ---- nuvo_softProbability ---- */

/** Usage 0, every pointer null, every number 0. */
NUVO_API void NUVOInitSoftProbability(nuvo_softProbability *sp);
/** Releases what sp owns (classes, pdf, image, radius, parameters) and
 *  re-initialises it; accepts a partly filled record. */
NUVO_API void NUVOFreeSoftProbability(nuvo_softProbability *sp);
/** One line per field, each starting with prefix; the classes and the local pdf
 *  image are printed with prefix plus three blanks. Nothing but the usage line is
 *  printed for usage 0. Returns 0, or -1 when the extended prefix cannot be made. */
NUVO_API int NUVOPrintSoftProbability(const nuvo_softProbability *sp, const char *prefix,
                                      FILE *stream);
/** Checks the record, first failure wins; puts 0 or a code from -1920 to -1999 (or
 *  the code of the class or image validator) in *error. A global pdf whose sum is
 *  off by more than 1e-5 but at most 0.01 is divided by its sum in place. A local
 *  constraint whose deactivation distance reaches the support radius reports
 *  warning 120 through pm and callback (either may be null). Returns 0, or the
 *  non-zero result of the callback (-1000 on a stop request). */
NUVO_API int NUVOValidateSoftProbability(nuvo_softProbability *sp, nuvo_progressMonitor *pm,
                                         nuvo_progressCallback callback, int *error);

/* ---- nuvo_softProbabilityASCII ---- */

/** Usage 0, every pointer null, every number 0. */
NUVO_API void NUVOInitSoftProbabilityASCII(nuvo_softProbabilityASCII *sp);
/** Releases what sp owns and re-initialises it; accepts a partly filled record. */
NUVO_API void NUVOFreeSoftProbabilityASCII(nuvo_softProbabilityASCII *sp);
/** As NUVOPrintSoftProbability, with the local pdf image file name. */
NUVO_API int NUVOPrintSoftProbabilityASCII(const nuvo_softProbabilityASCII *sp, const char *prefix,
                                           FILE *stream);
/** Reads one variable's probability constraint section into an initialised record,
 *  skipping comments before every item. Returns 0 or the first failure: -920
 *  usage, -950 usage not 0, 1 or 2, the class reader's codes (-4035 to -4038),
 *  -4041 no class before the global pdf, -930 global pdf, -935 / -936 local pdf
 *  file name (unreadable / 256 characters or more), -940 support radius, -945
 *  current pdf computation, -955 comparing method, -960 deactivation distance,
 *  -965 / -970 threshold type (unreadable / not 0 or 1), -966 constant threshold,
 *  -967 dynamic parameters, -1 allocation. A failed read leaves the record partly
 *  filled for NUVOFreeSoftProbabilityASCII. */
NUVO_API int NUVOReadSoftProbabilityASCII(nuvo_softProbabilityASCII *sp, FILE *stream);
/** Fills the initialised record out from in: a deep copy, the local pdf image read
 *  as a GSLIB text image from the named file. Returns 0, -4041 for a global pdf
 *  without classes, -120 when the image file cannot be opened, the image reader's
 *  code, or -1. On failure out is left partly filled for NUVOFreeSoftProbability. */
NUVO_API int NUVOSoftProbabilityASCIIToSoftProbability(const nuvo_softProbabilityASCII *in,
                                                       nuvo_softProbability *out);

NUVO_EXTERN_C_END

#endif /* NUVO_SOFTPROBABILITY_H */
