/* nuvo_classOfValues: classes of values, each a union of half-open intervals
 * [inf, sup[, used by probability and connectivity constraints and by
 * categorical pyramids.
 *
 * Ownership: the record owns ninterval, intervalInf, intervalSup and every
 * per-class interval array; NUVOFreeClassOfValues releases them and
 * re-initialises the record, never the record itself.
 *
 * Text form: nclass, then per class ninterval followed by inf_1 sup_1 ... inf_n
 * sup_n, comments allowed between any two tokens.
 */
#ifndef NUVO_CLASSOFVALUES_H
#define NUVO_CLASSOFVALUES_H

#include <stdio.h>

#include "nuvo_export.h"

NUVO_EXTERN_C_BEGIN

/** Largest number of classes, and of intervals in one class, of a valid record. */
#define NUVO_CLASS_OF_VALUES_MAX 1000

typedef struct {
  int nclass;           /**< number of classes */
  int *ninterval;       /**< nclass interval counts */
  double **intervalInf; /**< nclass arrays of ninterval[i] lower bounds (included) */
  double **intervalSup; /**< nclass arrays of ninterval[i] upper bounds (excluded) */
} nuvo_classOfValues;

/** Zero classes, null arrays. */
NUVO_API void NUVOInitClassOfValues(nuvo_classOfValues *c);

/** Deep copy of in into out, which must be initialised or freed. Returns 0 or -1
 *  (out is then left partly filled for NUVOFreeClassOfValues). */
NUVO_API int NUVOCopyClassOfValues(const nuvo_classOfValues *in, nuvo_classOfValues *out);

/** Releases what the record owns (null members and partly filled records are
 *  accepted) and re-initialises it. */
NUVO_API void NUVOFreeClassOfValues(nuvo_classOfValues *c);

/** Writes "<prefix>nclass: %3d" and one line per class,
 *  "<prefix>class %3d: ninterval = %3d, class = " followed by the intervals as
 *  "[%10.6f, %10.6f[" joined by " U ". Returns 0. */
NUVO_API int NUVOPrintClassOfValues(const nuvo_classOfValues *c, const char *prefix, FILE *stream);

/** Checks the record; puts 0 or the first failure in *error: nclass < 1 (-4041),
 *  nclass > 1000 (-4042), null ninterval (-4047), intervalInf (-4048) or
 *  intervalSup (-4049); then class by class: ninterval < 1 (-4043), > 1000
 *  (-4044), a null interval array (-4048, -4049), an interval with inf >= sup (-4045), an interval
 * overlapping one of an earlier class (-4046). Intervals of one class may overlap. Returns 0. */
NUVO_API int NUVOValidateClassOfValues(const nuvo_classOfValues *c, int *error);

/** Reads the text form into an initialised record. Returns 0 or -4035 (nclass),
 *  -4036 (ninterval), -4037 (an inf), -4038 (a sup), -1 on allocation failure; a
 *  count outside 0..1000 is a reading error of that count. On failure the record
 *  is left partly filled for NUVOFreeClassOfValues. */
NUVO_API int NUVOReadClassOfValues(nuvo_classOfValues *c, FILE *stream);

/** Maps every bound v to a*v + b, as done when a variable is rescaled; with a < 0
 *  the images of inf and sup are swapped so that every interval stays ordered.
 *  Returns 0. */
NUVO_API int NUVOTransformLinearClassOfValues(nuvo_classOfValues *c, double a, double b);

NUVO_EXTERN_C_END

#endif /* NUVO_CLASSOFVALUES_H */
