/* Text helpers shared by the readers of the text formats and by the writers. */
#ifndef NUVO_TEXT_H
#define NUVO_TEXT_H

#include <stdio.h>

#include "nuvo_export.h"

NUVO_EXTERN_C_BEGIN

/** Longest variable name in any record or file (the slots hold one more byte). */
#define NUVO_VAR_NAME_MAX 127
/** Longest file name in any record or file (the slots hold one more byte). */
#define NUVO_FILE_NAME_MAX 255

/** Advances `stream` to the next character that is neither white space (blank,
 *  tab, line feed, carriage return) nor inside a `//` line comment or a `/` `*`
 *  block comment, without consuming it. Returns 0, or -999 when the stream ends
 *  first (also inside a comment). */
NUVO_API int NUVOSkipComments(FILE *stream);

/** Writes exactly `width` characters and a terminating zero into `text`: the last
 *  `width` decimal digits of n, zero-padded (7 with width 3 gives "007"). A
 *  negative n gives `width` times 'x'; a negative width writes nothing. */
NUVO_API void NUVOIntToString(int n, char *text, int width);

/** '0'...'9' for 0...9, 'x' for any other value. */
NUVO_API char NUVODigitToChar(int d);

NUVO_EXTERN_C_END

#endif /* NUVO_TEXT_H */
