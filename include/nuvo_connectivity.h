/* Connectivity constraints: conditioning nodes that carry the same positive label
 * must end up in one connected body of the simulated variable.
 *
 * Usage 1 and 2 bind the labelled nodes of each group, before every realization,
 * by paths found in the geobodies of a reference image and pasted as conditioning
 * data (the reference is laid on the grid by a translation drawn among those that
 * put the whole group on its class; an image file of the grid's dimensions is laid
 * as it is). Usage 3 checks, for each candidate of the scan, that the labelled
 * nodes of the data event sharing a label lie in one geobody of the first training
 * image; the fraction that do not is the pattern error, compared with `threshold`.
 *
 * nuvo_connectivity is the record used by the simulation (one per variable);
 * nuvo_connectivityASCII is its text form, naming the reference image file and
 * variable instead of holding the image. Both own every pointer they hold; their
 * Free functions release it and re-initialise the record, never the record itself.
 */
#ifndef NUVO_CONNECTIVITY_H
#define NUVO_CONNECTIVITY_H

#include <stdio.h>

#include "nuvo_classofvalues.h"
#include "nuvo_export.h"
#include "nuvo_image.h"
#include "nuvo_pointset.h"

NUVO_EXTERN_C_BEGIN

/** Values of connectivityConstraintUsage. */
typedef enum {
  NUVO_CONNECTIVITY_NONE = 0,
  NUVO_CONNECTIVITY_PATHS_RANDOM_ORDER = 1,   /**< paths pasted before, random binding order */
  NUVO_CONNECTIVITY_PATHS_DISTANCE_ORDER = 2, /**< paths pasted before, closest nodes first */
  NUVO_CONNECTIVITY_PATTERN = 3               /**< pattern of labels checked while simulating */
} nuvo_connectivityConstraintUsage;

/** Values of connectivityType (text keywords CONNECT_...). */
typedef enum {
  CONNECT_FACE = 0,            /**< 6 neighbors */
  CONNECT_FACE_EDGE = 1,       /**< 18 neighbors */
  CONNECT_FACE_EDGE_CORNER = 2 /**< 26 neighbors */
} nuvo_connectivityType;

/** File name standing for the first training image as reference image. */
#define NUVO_CONNECTIVITY_TI_AS_REF "_TI_"

typedef struct {
  int connectivityConstraintUsage;   /**< nuvo_connectivityConstraintUsage */
  int connectivityType;              /**< nuvo_connectivityType */
  nuvo_classOfValues *classOfValues; /**< owned; values that may form one component */
  char *varName;   /**< owned buffer of NUVO_VAR_NAME_MAX + 1 bytes: label variable */
  int tiAsRefFlag; /**< 1: the first training image is the reference */
  nuvo_image *refConnectivityImage; /**< owned, one variable; null when tiAsRefFlag is 1 */
  double deactivationDistance;      /**< usage 3 */
  double threshold;                 /**< usage 3: threshold on the pattern of labels */
} nuvo_connectivity;

typedef struct {
  int connectivityConstraintUsage;
  int connectivityType;
  nuvo_classOfValues *classOfValues;
  char *varName; /**< owned buffer of NUVO_VAR_NAME_MAX + 1 bytes */
  char
      *refConnectivityImageFileName; /**< owned buffer of NUVO_FILE_NAME_MAX + 1 bytes, or "_TI_" */
  char *refConnectivityVarName;      /**< owned buffer of NUVO_VAR_NAME_MAX + 1 bytes */
  double deactivationDistance;
  double threshold;
} nuvo_connectivityASCII;

/* ---- nuvo_connectivity ---- */

/** Usage 0, every pointer null, every number 0. */
NUVO_API void NUVOInitConnectivity(nuvo_connectivity *c);
/** Releases what c owns and re-initialises it; accepts a partly filled record. */
NUVO_API void NUVOFreeConnectivity(nuvo_connectivity *c);
/** One line per field, each starting with prefix; the classes and the reference
 *  image are printed with prefix plus three blanks. Nothing but the usage line is
 *  printed for usage 0. Returns 0, or -1 when the extended prefix cannot be made. */
NUVO_API int NUVOPrintConnectivity(const nuvo_connectivity *c, const char *prefix, FILE *stream);
/** Checks the record, first failure wins; puts 0 or a code from -2091 to -2102 (or
 *  the code of the class or image validator) in *error: -2091 usage not 0 to 3,
 *  -2092 type, -2093 no classes, the class code, -2094 label name missing or of
 *  128 characters or more, -2098 / -2099 reference flag and image disagree; for
 *  usage 3 -2097 flag not 1, -2100 deactivation distance < 0, -2101 / -2102
 *  threshold outside [1e-6, 1]; for usage 1 and 2 the image code and -2096 (not
 *  exactly one variable). Returns 0. */
NUVO_API int NUVOValidateConnectivity(const nuvo_connectivity *c, int *error);

/* ---- nuvo_connectivityASCII ---- */

/** Usage 0, every pointer null, every number 0. */
NUVO_API void NUVOInitConnectivityASCII(nuvo_connectivityASCII *c);
/** Releases what c owns and re-initialises it; accepts a partly filled record. */
NUVO_API void NUVOFreeConnectivityASCII(nuvo_connectivityASCII *c);
/** As NUVOPrintConnectivity, with the reference file and variable names. */
NUVO_API int NUVOPrintConnectivityASCII(const nuvo_connectivityASCII *c, const char *prefix,
                                        FILE *stream);
/** Reads one variable's connectivity section into an initialised record, skipping
 *  comments before every item. Usage 0 ends the section; any other usage reads
 *  the type, the classes and the label name, then usage 1 or 2 the reference
 *  (file name and, unless it is "_TI_", variable name) and usage 3 the
 *  deactivation distance and the threshold; an unknown usage is left to the
 *  validator. Returns 0 or the first failure: -2110 usage, -2111 type, the class reader's codes
 * (-4035 to -4038), -2112 / -2113 label variable name (unreadable / 128 characters or more), -2114
 * / -2115 reference file name (256 or more), -2116 / -2117 reference variable name, -2118
 * deactivation distance, -2119 threshold, -1 allocation. A failed read leaves the record partly
 * filled for NUVOFreeConnectivityASCII. */
NUVO_API int NUVOReadConnectivityASCII(nuvo_connectivityASCII *c, FILE *stream);
/** Fills the initialised record out from in. "_TI_" and usage 3 (whose labels are
 *  always compared with the first training image) set tiAsRefFlag; otherwise the
 *  reference image is read as a GSLIB text image and its variable named
 *  refConnectivityVarName is kept as a one-variable image. Returns 0, -121 when
 *  the file cannot be opened, the image reader's code, -135 no reference variable
 *  name, -136 name found more than once, -137 name not found, or -1. On failure
 *  out is left partly filled for NUVOFreeConnectivity. */
NUVO_API int NUVOConnectivityASCIIToConnectivity(const nuvo_connectivityASCII *in,
                                                 nuvo_connectivity *out);

/* ---- labels of the conditioning data and binding order ---- */

/* Labels are whole numbers (a fractional value is rounded to the nearest, a value
 * beyond the int range is clamped to it); a label of 0 or less, or a missing
 * value, constrains nothing and is skipped. A label array holds one int per node
 * of the simulation grid, 0 where the node carries no label. */

/** Copies the labels of the variable named labelName of the data image `image`
 *  (which must lie on `grid`: NUVOCmpGrid) to `label` (nxyz ints), adding the
 *  number of labels written to *nlabel. An image without such a variable
 *  changes nothing. Returns 0; -20 for a null pointer; -150 when the image is
 *  not on the grid; -182 when a node already holds a different label. */
NUVO_API int NUVOImageToImageWithConnectivityLabel(const nuvo_image *image, const char *labelName,
                                                   const nuvo_grid *grid, int *label, int *nlabel);
/** As NUVOImageToImageWithConnectivityLabel for a data point set: each point
 *  goes to its node (NUVOGetIndexInGridForPointSet), points outside the grid are
 *  skipped. Returns 0, -20, -180 when a node already holds a different label, or
 *  -1. */
NUVO_API int NUVOPointSetToImageWithConnectivityLabel(const nuvo_pointSet *ps,
                                                      const char *labelName, const nuvo_grid *grid,
                                                      int *label, int *nlabel);

/** The binding order of one group of n nodes (node indices of a grid nx wide and
 *  ny deep) for usage 2: every pair gets the grid-step distance of its index
 *  differences (a, b, c) in absolute value: a + b + c for CONNECT_FACE,
 *  max(a, b, c, ceil((a + b + c) / 2)) for CONNECT_FACE_EDGE, max(a, b, c) for
 *  CONNECT_FACE_EDGE_CORNER. The pairs (i, j), i < j, are sorted by increasing
 *  distance, ties kept in pair order; the order starts with i then j of the
 *  first pair, then repeatedly appends the node not yet ordered that has the
 *  smallest distance to a node already ordered (the first such pair in the
 *  sorted list). order receives n positions into node. Returns 0, -20 for a
 *  null pointer, -601 / -602 when nx / ny is below 1, -2092 for an unknown
 *  type, or -1. */
NUVO_API int NUVOSimConnectivitySortGroup(int connectivityType, int nx, int ny, int n,
                                          const int *node, int *order);

NUVO_EXTERN_C_END

#endif /* NUVO_CONNECTIVITY_H */
