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

/** Reads an image in the text format `key` from `stream` into `image`, which must be
 *  initialised (or freed); the image then owns its grid, names and values.
 *  Header lines hold at most 254 characters and their line feed. Values follow
 *  node after node (x fastest), with the values of all variables at each node,
 *  separated by any white space; numbers are read as scanf's "%lf" reads them
 *  (glibc syntax), whatever the locale. Missing values are plain numbers.
 *  Node counts below 1, fewer than one variable, or sizes whose product does not
 *  fit in an int are refused with the code of the header item that holds them.
 *  The image is allocated once the header is read; a stream that cannot hold the
 *  announced values is refused with -730 before anything is allocated.
 *  Returns 0 or: -720 unknown key; -1 allocation;
 *  GSLIB: -721 no line 1, -722 line 1 too long, -723 line 1 not 3, 6 or 9 items
 *  (or bad node counts), -724 number of variables, -725 missing name, -726 name of
 *  128 characters or more;
 *  VTK: -741/-742 lines 1-4, -743/-744/-745 DIMENSIONS, -746/-747/-748 ORIGIN,
 *  -749/-750/-751 SPACING, -752/-753/-754 POINT_DATA, -755 point count not nx*ny*nz,
 *  -756/-757/-758 SCALARS, -759 a '/' missing between names, -760 name too long,
 *  -761/-762 LOOKUP_TABLE (each triple: no line, line too long, bad content);
 *  PGM: -763 missing line, -764 line too long, -765 line 1 not "P2", -766 line 3;
 *  PPM: -767, -768, -769 line 1 not "P3", -710 line 3;
 *  all: -730 a missing or unreadable value.
 *  On failure the image may be partly filled: free it with NUVOFreeImage. */
NUVO_API int NUVOReadImage(nuvo_image *image, int key, FILE *stream);

/** Writes `image` to `stream` in the text format `key`. `formatString` holds
 *  printf conversions separated by ';' (runs of ';' are skipped), one per
 *  variable, reused cyclically when there are fewer pieces than variables. A
 *  piece ending in 'd' or 'i' prints the value truncated toward zero to an int
 *  (clamped to the int range, NaN as 0); other pieces print the double. Each piece
 *  must be one such conversion (flags, width and precision of at most three
 *  digits, literal text and "%%" around it) of fewer than 128 characters.
 *  Numbers are always printed with a '.' decimal point.
 *  Checks, in this order, before anything is written: -1021 no usable format piece,
 *  -1020 unknown key, -1016 / -1017 PGM / PPM image without 1 / 3 variables,
 *  -1018 / -1019 PGM / PPM image with nz > 1. Then returns 0, -1 on allocation
 *  failure, or -110 when the stream refuses the output. */
NUVO_API int NUVOWriteImage(const nuvo_image *image, const char *formatString, int key,
                            FILE *stream);

/** Reads an image in the GSLIB binary format (native byte order: sizes of int and
 *  double on one byte each, unchecked; nx ny nz; sx sy sz ox oy oz; nvar; the names
 *  zero-terminated; then the values variable after variable) into `image`, which
 *  must be initialised; the image then owns what it holds.
 *  Returns 0 or: -1045, -1046 size bytes; -1048, -1049, -1050 nx, ny, nz (missing or
 *  below 1; -1050 also when nx*ny*nz does not fit in an int); -1051 to -1056 sx to
 *  oz; -1057 nvar (missing, below 1, or nxyz*nvar not fitting in an int); -1058 a
 *  name byte; -726 a name without zero within 128 bytes; -1059 fewer values than
 *  nxyz*nvar (refused before allocating when the stream is seekable); -1.
 *  On failure free the image with NUVOFreeImage. */
NUVO_API int NUVOReadImageGslibBinary(nuvo_image *image, FILE *stream);

/** Writes `image` in the GSLIB binary format (see NUVOReadImageGslibBinary).
 *  Returns 0 or the code of the first field the stream refused: -1025, -1026 size
 *  bytes, -1028 to -1030 nx to nz, -1031 to -1036 sx to oz, -1037 nvar, -1038 a name,
 *  -1039 the values. */
NUVO_API int NUVOWriteImageGslibBinary(const nuvo_image *image, FILE *stream);

/** Reads a point set in the GSLIB point-set text format into `ps`, which must be
 *  initialised: the number of points, the number of columns ncol (at least 3), ncol
 *  names (the first three starting with x, y, z in either case), then per point x,
 *  y, z and the ncol-3 values; tokens separated by any white space.
 *  Returns 0 or: -771 number of points, -772 number of columns (also when
 *  npoint*ncol does not fit in an int), -630 ncol < 3, -3 fewer than one point,
 *  -773/-774/-775 missing x/y/z name, -631/-632/-633 x/y/z name with another first
 *  letter, -776 missing variable name, -777 name of 128 characters or more, -731 a
 *  missing or unreadable number (also, before allocating, a stream too short for
 *  them), -1. On failure free the point set with NUVOFreePointSet. */
NUVO_API int NUVOReadPointSet(nuvo_pointSet *ps, FILE *stream);

/** Writes `ps` in the GSLIB point-set text format: npoint, nvar+3, "x", "y", "z",
 *  the names, then one line per point. `coordFormat` holds the conversions of x, y
 *  and z, `varFormat` those of the variables, both with the rules of
 *  NUVOWriteImage. Returns 0, -1021 (either text without a usable piece, checked
 *  before anything is written), -1, or -110 when the stream refuses the output. */
NUVO_API int NUVOWritePointSet(const nuvo_pointSet *ps, const char *coordFormat,
                               const char *varFormat, FILE *stream);

NUVO_EXTERN_C_END

#endif /* NUVO_IMAGEFILE_H */
