/* Progress monitor: how long operations report progress and warnings and are
 * asked to stop.
 *
 * The caller owns a nuvo_progressMonitor and passes it with a callback. The
 * library fills the record and calls the callback; the callback shows it and may
 * set `stopFlag` (typically from another thread), after which every operation
 * watching the monitor returns -1000 ("aborted job").
 *
 * A warning is reported by setting `warningNumber`, calling the callback and
 * clearing the number again: a call carries either a warning or progress. A
 * non-zero result of the callback is returned unchanged by the operation.
 */
#ifndef NUVO_PROGRESS_H
#define NUVO_PROGRESS_H

#include "nuvo_export.h"

NUVO_EXTERN_C_BEGIN

typedef struct {
  int warningNumber; /**< positive warning code to report, 0 when none */
  int nrealization;  /**< realizations of the job, 0 when not known */
  int ireal;         /**< current realization (0-based), or realizations done (overall form) */
  int progress;      /**< percentage of the current realization */
  int progressTotal; /**< percentage of the whole job */
  char stopFlag;     /**< set non-zero by the host to ask for a stop */
} nuvo_progressMonitor;

/** The callback the library calls with the monitor; non-zero stops the operation. */
typedef int (*nuvo_progressCallback)(nuvo_progressMonitor *pm);

/** Zeroes every field. */
NUVO_API void NUVOInitProgressMonitor(nuvo_progressMonitor *pm);

/* Ready-made callbacks, printing to standard output. Each returns -1000 without
 * printing when stopFlag is set, prints the pending warning text if any, prints
 * nothing when nrealization is 0, and otherwise prints its progress line. */

/** "Simulating progress realization i of n: p %, over all: t %". */
NUVO_API int NUVOUpdateProgressMonitorStdout(nuvo_progressMonitor *pm);
/** "Simulating progress: t %     /     Realization(s) done: d of n". */
NUVO_API int NUVOUpdateProgressMonitorAllStdout(nuvo_progressMonitor *pm);
/** As NUVOUpdateProgressMonitorStdout, lines prefixed by "QX: " for host applications. */
NUVO_API int NUVOUpdateProgressMonitorQX(nuvo_progressMonitor *pm);
/** As NUVOUpdateProgressMonitorAllStdout, lines prefixed by "QX: ". */
NUVO_API int NUVOUpdateProgressMonitorAllQX(nuvo_progressMonitor *pm);

NUVO_EXTERN_C_END

#endif /* NUVO_PROGRESS_H */
