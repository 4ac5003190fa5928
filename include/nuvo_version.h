/* Version of the library. */
#ifndef NUVO_VERSION_H
#define NUVO_VERSION_H

#include <stdio.h>

#include "nuvo_export.h"

NUVO_EXTERN_C_BEGIN

/** Writes "NUVO <version> / <build tag>\n" to stream, the first line of every
 *  report. Returns 0. */
NUVO_API int NUVOPrintVersion(FILE *stream);

NUVO_EXTERN_C_END

#endif /* NUVO_VERSION_H */
