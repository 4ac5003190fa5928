/* Return codes and their messages.
 *
 * Every operation returns an int: 0 on success, or the negative of a code of the
 * error table (-1 for a failed allocation, -110 for an output file that cannot be
 * opened, ...). Warnings never stop an operation; their positive codes travel
 * through the progress monitor (nuvo_progress.h).
 *
 * Print a failure with: fputs(NUVOGetErrorMessage(-rc), stderr);
 */
#ifndef NUVO_ERROR_H
#define NUVO_ERROR_H

#include "nuvo_export.h"

NUVO_EXTERN_C_BEGIN

/** Code returned by every operation whose progress monitor asks for a stop. */
#define NUVO_ABORTED 1000

/** Constant text "ERROR ddddd: <message>\n" of the positive error code `code`,
 *  or "ERROR: unknown\n" for a code not in the table. Never fails, never allocates;
 *  the caller must not free or modify the text. */
NUVO_API const char *NUVOGetErrorMessage(int code);

/** Constant text "WARNING ddddd: <message>\n" of the warning code `code`, or
 *  "WARNING: unknown\n". Codes 26 and 27 return each other's texts (y and z
 *  directions crossed), a long-standing behaviour that callers rely on. */
NUVO_API const char *NUVOGetWarningMessage(int code);

NUVO_EXTERN_C_END

#endif /* NUVO_ERROR_H */
