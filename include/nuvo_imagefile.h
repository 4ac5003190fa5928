/* Image and point-set files: GSLIB text (key 0), VTK structured points (1),
 * plain PGM (2), plain PPM (3), GSLIB binary, and the GSLIB point-set text format.
 *
 * Every function works on a stream the caller opened and closes; the format is
 * never guessed. A reader that fails leaves what it allocated in the record for
 * the caller to free (NUVOFreeImage / NUVOFreePointSet).
 */
#ifndef NUVO_IMAGEFILE_H
#define NUVO_IMAGEFILE_H

#include <stdio.h>

#include "nuvo_export.h"
#include "nuvo_image.h"
#include "nuvo_pointset.h"

NUVO_EXTERN_C_BEGIN

/** Keys of the text image formats. */
typedef enum {
  NUVO_IMAGE_FORMAT_GSLIB = 0,
  NUVO_IMAGE_FORMAT_VTK = 1,
  NUVO_IMAGE_FORMAT_PGM = 2,
  NUVO_IMAGE_FORMAT_PPM = 3
} nuvo_imageFormat;

/** Reads an image in the text format `key` into an initialised image. */
NUVO_API int NUVOReadImage(nuvo_image *image, int key, FILE *stream);
/** Writes an image in the text format `key`; formatString holds ";"-separated
 *  printf conversions, reused cyclically over the variables. */
NUVO_API int NUVOWriteImage(const nuvo_image *image, const char *formatString, int key,
                            FILE *stream);
/** Reads an image in the GSLIB binary format into an initialised image. */
NUVO_API int NUVOReadImageGslibBinary(nuvo_image *image, FILE *stream);
/** Writes an image in the GSLIB binary format. */
NUVO_API int NUVOWriteImageGslibBinary(const nuvo_image *image, FILE *stream);

/** Reads a point set in the GSLIB point-set text format into an initialised record. */
NUVO_API int NUVOReadPointSet(nuvo_pointSet *ps, FILE *stream);
/** Writes a point set; coordFormat and varFormat are ";"-separated printf conversions. */
NUVO_API int NUVOWritePointSet(const nuvo_pointSet *ps, const char *coordFormat,
                               const char *varFormat, FILE *stream);

NUVO_EXTERN_C_END

#endif /* NUVO_IMAGEFILE_H */
