/* The simulation input: everything one simulation needs (grid and variables,
 * training images, conditioning data, search and distance settings, path,
 * constraints, transforms, pyramids, post-processing and seeds), and its text
 * twin nuvo_simInputASCII, which holds file names where nuvo_simInput holds
 * loaded images and point sets.
 *
 * Per-variable arrays have nvar (nsimVar) entries, per-training-image arrays
 * ntrainImage entries. Strings are owned buffers of NUVO_VAR_NAME_MAX + 1 bytes
 * (names, format strings) or NUVO_FILE_NAME_MAX + 1 bytes (file names); a string
 * array is one block of such slots plus the array of pointers into it.
 * outputSimImageFileName holds no name for OUTPUT_SIM_NO_FILE, one name for
 * OUTPUT_SIM_ALL_IN_ONE_FILE and OUTPUT_SIM_ONE_FILE_PER_REALIZATION (a prefix),
 * and one name per variable whose output flag is 1 for
 * OUTPUT_SIM_ONE_FILE_PER_VARIABLE.
 *
 * Ownership: a record owns every array, string, image, point set and
 * sub-record it points to; NUVOFreeSimInput / NUVOFreeSimInputASCII release
 * them and re-initialise the record, never the record itself.
 */
#ifndef NUVO_SIMINPUT_H
#define NUVO_SIMINPUT_H

#include <stdio.h>

#include "nuvo_blockdata.h"
#include "nuvo_connectivity.h"
#include "nuvo_export.h"
#include "nuvo_image.h"
#include "nuvo_pointset.h"
#include "nuvo_progress.h"
#include "nuvo_pyramidparams.h"
#include "nuvo_searchneighborhood.h"
#include "nuvo_simandpath.h"
#include "nuvo_softprobability.h"
#include "nuvo_text.h"

NUVO_EXTERN_C_BEGIN

/** How realizations are written to files (outputSimJob). */
typedef enum {
  OUTPUT_SIM_NO_FILE = 0,
  OUTPUT_SIM_ALL_IN_ONE_FILE = 1,
  OUTPUT_SIM_ONE_FILE_PER_VARIABLE = 2,
  OUTPUT_SIM_ONE_FILE_PER_REALIZATION = 3
} nuvo_outputSimJob;

/** Normalisation of continuous variables (normalizingType). */
typedef enum {
  NORMALIZING_LINEAR = 0,
  NORMALIZING_UNIFORM = 1,
  NORMALIZING_NORMAL = 2
} nuvo_normalizingType;

/** Target interval of the simulated values of a variable (rescalingMode). */
typedef enum {
  RESCALING_NONE = 0,
  RESCALING_MIN_MAX = 1,
  RESCALING_MEAN_LENGTH = 2
} nuvo_rescalingMode;

/** How the post-processing settings are obtained (postProcessingParametersJob). */
typedef enum {
  POST_PROCESSING_PARAMETERS_DEFAULT = 0,
  POST_PROCESSING_PARAMETERS_SAME = 1,
  POST_PROCESSING_PARAMETERS_MANUAL = 2
} nuvo_postProcessingParametersJob;

/** File name of a training image that is the simulation grid itself. */
#define NUVO_SIM_GRID_AS_TI_NAME "_DATA_"
/** Format string that stands for the default output format "%.10g". */
#define NUVO_DEFAULT_FORMAT_NAME "DEFAULT_FORMAT"

typedef struct {
  signed char consoleAppFlag;    /**< 1: the caller is a console front end */
  nuvo_image *simImage;          /**< simulation grid and its variables */
  int nvar;                      /**< number of simulated variables */
  signed char *outputVarFlag;    /**< per variable: 1 = written to the output files */
  char **formatStringVar;        /**< per variable: printf format of its values (may be null) */
  int outputSimJob;              /**< nuvo_outputSimJob */
  char **outputSimImageFileName; /**< see the header comment for the count */
  signed char outputPathIndexFlag;
  char *outputPathIndexFileName; /**< prefix of the path index maps */
  signed char outputErrorFlag;
  char *outputErrorFileName; /**< prefix of the error maps */
  signed char outputTiGridNodeIndexFlag;
  char *outputTiGridNodeIndexFileName; /**< prefix of the TI grid node index maps */
  signed char outputTiIndexFlag;
  char *outputTiIndexFileName; /**< prefix of the TI index maps */
  signed char outputReportFlag;
  char *outputReportFileName;   /**< report file */
  int ntrainImage;              /**< number of training images (at least 1) */
  signed char *simGridAsTiFlag; /**< per TI: 1 = the TI is the simulation grid */
  nuvo_image *trainImage;       /**< per TI (unused entry where simGridAsTiFlag is 1) */
  nuvo_image *pdfTrainImage;    /**< ntrainImage > 1 only: probability of each TI */
  int ndataImage;
  nuvo_image *dataImage; /**< conditioning images on the simulation grid */
  int ndataPointSet;
  nuvo_pointSet *dataPointSet; /**< conditioning point sets */
  signed char maskImageFlag;
  nuvo_image *maskImage; /**< 1 = node simulated, 0 = left alone */
  int homothetyUsage;    /**< 0 none, 1 without tolerance, 2 with tolerance */
  signed char homothetyXRatioImageFlag, homothetyYRatioImageFlag, homothetyZRatioImageFlag;
  double *homothetyXRatioValue, *homothetyYRatioValue, *homothetyZRatioValue; /**< usage values */
  nuvo_image *homothetyXRatioImage, *homothetyYRatioImage, *homothetyZRatioImage;
  int rotationUsage; /**< 0 none, 1 without tolerance, 2 with tolerance */
  signed char rotationAzimuthImageFlag, rotationDipImageFlag, rotationPlungeImageFlag;
  double *rotationAzimuthValue, *rotationDipValue, *rotationPlungeValue; /**< usage values */
  nuvo_image *rotationAzimuthImage, *rotationDipImage, *rotationPlungeImage;
  double trainValueRangeExtensionMax; /**< expMax; negative: no check */
  int normalizingType;                /**< nuvo_normalizingType */
  nuvo_searchNeighborhoodParameters *searchNeighborhoodParameters; /**< per variable */
  int *nneighboringNode;                                           /**< per variable */
  double *neighboringNodeDensity;                                  /**< per variable */
  int *rescalingMode; /**< per variable, nuvo_rescalingMode */
  double *rescalingTargetMin, *rescalingTargetMax, *rescalingTargetMean, *rescalingTargetLength;
  signed char *relativeDistanceFlag; /**< per variable */
  int *distanceType;          /**< per variable: 0 non-matching, 1 L-1, 2 L-2, 3 L-p, 4 L-inf */
  double *powerLpDistance;    /**< per variable: p */
  double *powerLpDistanceInv; /**< per variable: 1/p */
  double *conditioningWeightFactor; /**< per variable */
  nuvo_simAndPathParameters *simAndPathParameters;
  double *distanceThreshold;             /**< per variable */
  nuvo_softProbability *softProbability; /**< per variable */
  nuvo_connectivity *connectivity;       /**< per variable */
  nuvo_blockData *blockData;             /**< per variable */
  double *maxScanFraction;               /**< per TI */
  nuvo_pyramidGeneralParameters *pyramidGeneralParameters;
  nuvo_pyramidParameters *pyramidParameters; /**< per variable */
  double tolerance;
  int npostProcessingPathMax;
  int *postProcessingNneighboringNode;          /**< per variable */
  double *postProcessingNeighboringNodeDensity; /**< per variable */
  double *postProcessingDistanceThreshold;      /**< per variable */
  double *postProcessingMaxScanFraction;        /**< per TI */
  double postProcessingTolerance;
  int seed;
  int seedIncrement;
  int nrealization;
} nuvo_simInput;

typedef struct {
  signed char consoleAppFlag;
  int simGridNx, simGridNy, simGridNz;    /**< node counts */
  double simGridSx, simGridSy, simGridSz; /**< cell sizes */
  double simGridOx, simGridOy, simGridOz; /**< origin */
  int nsimVar;                            /**< number of simulated variables */
  char **simVarName;                      /**< per variable */
  signed char *outputVarFlag;             /**< per variable */
  char **formatStringVar; /**< per variable; NUVO_DEFAULT_FORMAT_NAME for the default */
  int outputSimJob;       /**< nuvo_outputSimJob */
  char **outputSimImageFileName;
  signed char outputPathIndexFlag;
  char *outputPathIndexFileName;
  signed char outputErrorFlag;
  char *outputErrorFileName;
  signed char outputTiGridNodeIndexFlag;
  char *outputTiGridNodeIndexFileName;
  signed char outputTiIndexFlag;
  char *outputTiIndexFileName;
  signed char outputReportFlag;
  char *outputReportFileName;
  int ntrainImage;
  char **trainImageFileName;   /**< per TI; NUVO_SIM_GRID_AS_TI_NAME for the simulation grid */
  char *pdfTrainImageFileName; /**< ntrainImage > 1 only */
  int ndataImageFile;
  char **dataImageFileName;
  int ndataPointSetFile;
  char **dataPointSetFileName;
  signed char maskImageFlag;
  char *maskImageFileName;
  int homothetyUsage;
  signed char homothetyXRatioImageFlag, homothetyYRatioImageFlag, homothetyZRatioImageFlag;
  double *homothetyXRatioValue, *homothetyYRatioValue, *homothetyZRatioValue;
  char *homothetyXRatioImageFileName, *homothetyYRatioImageFileName, *homothetyZRatioImageFileName;
  int rotationUsage;
  signed char rotationAzimuthImageFlag, rotationDipImageFlag, rotationPlungeImageFlag;
  double *rotationAzimuthValue, *rotationDipValue, *rotationPlungeValue;
  char *rotationAzimuthImageFileName, *rotationDipImageFileName, *rotationPlungeImageFileName;
  double trainValueRangeExtensionMax;
  int normalizingType;
  nuvo_searchNeighborhoodParameters *searchNeighborhoodParameters;
  int *nneighboringNode;
  double *neighboringNodeDensity;
  int *rescalingMode;
  double *rescalingTargetMin, *rescalingTargetMax, *rescalingTargetMean, *rescalingTargetLength;
  signed char *relativeDistanceFlag;
  int *distanceType;
  double *powerLpDistance;
  double *powerLpDistanceInv;
  double *conditioningWeightFactor;
  nuvo_simAndPathParameters *simAndPathParameters;
  double *distanceThreshold;
  nuvo_softProbabilityASCII *softProbabilityASCII; /**< per variable */
  nuvo_connectivityASCII *connectivityASCII;       /**< per variable */
  nuvo_blockDataASCII *blockDataASCII;             /**< per variable */
  double *maxScanFraction;
  nuvo_pyramidGeneralParametersASCII *pyramidGeneralParametersASCII;
  nuvo_pyramidParameters *pyramidParameters; /**< per variable, only with pyramid levels */
  double tolerance;
  int npostProcessingPathMax;
  int postProcessingParametersJob;              /**< nuvo_postProcessingParametersJob */
  int *postProcessingNneighboringNode;          /**< manual job only */
  double *postProcessingNeighboringNodeDensity; /**< manual job only */
  double *postProcessingDistanceThreshold;      /**< manual job only */
  double *postProcessingMaxScanFraction;        /**< manual job only */
  double postProcessingTolerance;               /**< manual job only */
  int seed;
  int seedIncrement;
  int nrealization;
} nuvo_simInputASCII;

/* ---- nuvo_simInput ---- */

/** All pointers null, all counts and values 0. */
NUVO_API void NUVOInitSimInput(nuvo_simInput *si);

/** Releases every owned array, string, image, point set and sub-record (partly
 *  filled records are accepted) and re-initialises the record. */
NUVO_API void NUVOFreeSimInput(nuvo_simInput *si);

/** Dumps every field in the order of the record, one line each:
 *  "<prefix><field>: <value>", with " for variable %3d" or
 *  " for training image %3d" after the name of per-item fields, enumerations as
 *  keywords ("unknown" out of range), "NOT ALLOCATED" for a missing array, nested
 *  records with prefix plus three blanks and a blank line between groups. A
 *  training image that is the simulation grid prints "simulation grid is set as
 *  training image"; pdfTrainImage is printed only when ntrainImage > 1. Returns 0,
 *  -1 when a nested prefix cannot be made, or the code of a nested printer. */
NUVO_API int NUVOPrintSimInput(const nuvo_simInput *si, const char *prefix, FILE *stream);

/** Checks a simulation input before a simulation, first failure wins, and turns the
 *  automatic search neighborhood modes into numbers. Writes 0 or the negative code
 *  of the first failed check to *error and returns 0; a non-zero return is a
 *  failure of the validation itself: -1 (allocation), -1000 (stop asked through
 *  pm) or the non-zero result of the callback. Warnings are reported one at a time
 *  through pm and callback (without pm they are not reported). The record's
 *  neighborhood parameters are written (see below); nothing else is changed.

 *  Checks, in this order (per-variable and per-TI checks run item by item):
 *  -629 nvar < 1; -645 simImage missing or not of nvar variables; -647 no output
 *  flag set; -648 a format string not starting with "%" (formatStringVar may be
 *  null as a whole); -651 outputSimJob outside 0..3; -652, -595, -596, -597, -598,
 *  -653 an output name of 256 characters or more; -656 / -657 ntrainImage < 1 or
 *  > 100; -655 a TI with a number of variables other than nvar; -654 two TIs
 *  marked as the simulation grid (SG); -1151 trainValueRangeExtensionMax > 10;
 *  -1155 normalizingType outside 0..2; per variable: -667 distance type outside
 *  0..4, -710 relative distance with type 0, -668 / -669 L-p power p <= 0 or
 *  |p * powerLpDistanceInv - 1| > 1e-10, -2130 rescalingMode outside 0..2, then
 *  -2131 / -2133 (RESCALING_MIN_MAX / RESCALING_MEAN_LENGTH with type 0), -2132 /
 *  -2134 (with relative distance), -2141 / -2142 (with the SG as TI); per
 *  variable: the search neighborhood validator (-680 to -687), -689 a TI_RANGE
 *  radius mode with the SG as TI, then the resolution below (-1061 when a range
 *  cannot be computed); per variable -663 / -664 nneighboringNode outside 1..1000,
 *  -665 / -666 neighboringNodeDensity outside [1e-6, 1], -670
 *  conditioningWeightFactor <= 0; the path validator (-705 to -709); per variable
 *  -672 / -673 distanceThreshold outside [1e-6, 1]; per variable the validators of
 *  the soft probability, connectivity and block data records it uses (usage not 0);
 *  per TI -674 / -675 maxScanFraction outside [1e-6, 1] (-734 / -735, same bounds,
 *  when homothety or rotation is used); the pyramid general parameters validator
 *  (when the record is present) and, with pyramid levels, each variable's pyramid
 *  parameters validator; -676 / -677 tolerance outside [0, 100]; -1661 / -1662
 *  npostProcessingPathMax outside 0..100; when npostProcessingPathMax > 0 the
 *  post-processing counterparts with the same codes (neighbors and density per
 *  variable, thresholds per variable, scan fractions per TI); -678 nrealization
 *  > 1000000. -20 stands for a per-variable or per-TI array that the check needs
 *  but is null (softProbability, connectivity, blockData and pyramidParameters
 *  may be null: no variable uses them), a simulation image without grid, a TI
 *  without grid or values, or an additional map asked for (its flag set) without
 *  a file name prefix.
 *
 *  Then the probabilities of the training images (-1651 to -1656, two TIs or
 *  more), the homothety and rotation parameters (-1701 / -1801 usage outside
 *  0..2, then per axis the codes of nuvo_simtransform.h), and last -627 / -628 a
 *  NaN or an infinity in a training image, data image or data point set.
 *
 *  Search neighborhood of each variable, resolved once its parameters are valid.
 *  Let nx, ny, nz be the smallest extents along each axis over the training
 *  images (the SG's grid for a TI that is the SG):
 *  - SEARCHNEIGHBORHOOD_RADIUS_MANUAL: a radius above (n - 1) / 2 (integer
 *    division, n the smallest TI extent along its axis) is set to that bound, so
 *    that a data event spanning the whole neighborhood still fits in every TI;
 *    each reduction reports warning 25, 26 or 27 (x, y, z).
 *  - SEARCHNEIGHBORHOOD_RADIUS_LARGE_DEFAULT: rx = nx / 4, ry = ny / 4,
 *    rz = nz / 4 (integer division): a full neighborhood then leaves at least
 *    half of every TI extent as candidate positions.
 *  - SEARCHNEIGHBORHOOD_RADIUS_TI_RANGE: rx, ry, rz are the largest approximate
 *    variogram ranges of the variable over the TIs (NUVOComputeVariogramRangeApprox,
 *    categorical for distance type 0); warning 80 first when a categorical
 *    variable has more than 20 distinct values in a TI. _XY, _XZ, _YZ and _XYZ
 *    then set the named radii to the largest of them; _DEFAULT is TI_RANGE
 *    (homothety and rotation, which it would account for, are refused above).
 *  - Anisotropy: ONE gives 1, 1, 1; RADIUS gives rx, ry, rz; RADIUS_XY gives
 *    max(rx, ry) for ax and ay and rz for az, and likewise for _XZ, _YZ, _XYZ;
 *    MANUAL keeps the ratios. A ratio taken from a radius of 0 is set to 1 (only
 *    offset 0 passes along that axis, and a ratio of 0 would leave distances
 *    undefined).
 *  - Warnings 30 to 36: with bx, by, bz from NUVOSearchNeighborhoodApproxBound and
 *    mx, my, mz the SG extents, a data event spans at most e = min(2 b, m - 1)
 *    nodes beyond its first along an axis, leaving w = max(0, n - e) candidate
 *    positions along it in the smallest TI. Warning 30, 31, 32 when 2 w < n along
 *    x, y, z; 33, 34, 35 when 4 wx wy < nx ny (xy), 4 wx wz < nx nz (xz),
 *    4 wy wz < ny nz (yz); 36 when 8 wx wy wz < nx ny nz.
 *  On failure the record is left as it is, except that the neighborhoods of the
 *  variables already handled keep their resolved numbers. */
NUVO_API int NUVOValidateSimInput(nuvo_simInput *si, nuvo_progressMonitor *pm,
                                  nuvo_progressCallback callback, int *error);

/* ---- nuvo_simInputASCII ---- */

/** All pointers null, all counts and values 0. */
NUVO_API void NUVOInitSimInputASCII(nuvo_simInputASCII *si);

/** As NUVOFreeSimInput, for the text twin. */
NUVO_API void NUVOFreeSimInputASCII(nuvo_simInputASCII *si);

/** As NUVOPrintSimInput, for the text twin (file names instead of images). */
NUVO_API int NUVOPrintSimInputASCII(const nuvo_simInputASCII *si, const char *prefix, FILE *stream);

/** Builds `out` (initialised or freed) from `in`, loading every file it names:
 *  the simulation image (all values missing) from the grid and names; the format
 *  NUVO_DEFAULT_FORMAT_NAME becomes "%.10g"; training images (none for the name
 *  NUVO_SIM_GRID_AS_TI_NAME, which sets simGridAsTiFlag), the pdf of the TIs when
 *  there are several, data images, point sets, mask, homothety and rotation images
 *  where their flags ask for them (GSLIB text); the constraint and pyramid
 *  records through their converters; the post-processing settings according to
 *  postProcessingParametersJob when npostProcessingPathMax > 0 (defaults: 8, 6 or
 *  4 neighboring nodes for 3, 2 or fewer grid dimensions greater than 1, density
 *  1, threshold 0.02 for distance type 0 and 0.01 otherwise, scan fraction
 *  min(0.2, maxScanFraction), tolerance 0).
 *  Returns 0, -1 on allocation failure, a file that cannot be opened: -112 (TI),
 *  -119 (pdf of the TIs), -111 (data image), -123 (point set), -125 (mask),
 *  -113 / -114 / -115 (homothety x, y, z), -116 / -117 / -118 (azimuth, dip,
 *  plunge), the codes of the converters of the sub-records (-120, -121 ...), or
 *  the code of a file reader. On failure `out` is left partly filled for
 *  NUVOFreeSimInput. */
NUVO_API int NUVOSimInputASCIIToSimInput(const nuvo_simInputASCII *in, nuvo_simInput *out);

/* ---- The parameter file ---- */

/** Reads a parameter file from the open, seekable stream into `si`, which must be
 *  initialised (the caller opens and closes the stream). The file is a fixed
 *  sequence of tokens separated by white space, with "//" and slash-star comments
 *  allowed between any two: the grid, the variables, the output settings, the
 *  training images, the conditioning data, the mask, homothety and rotation,
 *  expMax, the normalizing type, per variable the search neighborhood, the
 *  numbers of neighbors, densities, rescaling modes, relative distance flags,
 *  distance types (type 3 followed by p; powerLpDistanceInv is set to 1/p) and
 *  weight factors, the simulation type and path, the distance thresholds, per
 *  variable the probability, connectivity and block data sections, per TI the
 *  maximal scan fractions, the pyramid sections, tolerance, post-processing,
 *  seed and increment, number of realizations and the word "END". Variable
 *  names and formats hold at most NUVO_VAR_NAME_MAX characters, file names
 *  NUVO_FILE_NAME_MAX.
 *  Returns 0 or the code of the first field that could not be read (missing,
 *  malformed, out of range, unknown keyword, too long), from -778 (simGridNx) to
 *  -870 ("END" expected) and -900 to -918 (additional maps and report), -2120 to
 *  -2124 (rescaling), -629 for fewer than one variable, -794 for fewer than one
 *  training image; the codes of the sub-block readers unchanged (search
 *  neighborhood -875 to -889, simulation and path -890 to -894, probability,
 *  connectivity, block data and pyramid sections); -1 on allocation failure. A
 *  count of variables, training images or data files larger than the number of
 *  bytes left in the stream gives the code of its first item (refused before
 *  allocating).
 *  Where it stopped: after a failure the stream is left at the first character
 *  of the token that could not be read (at the end of the stream when it ended
 *  first; just after the value when a value that was read is refused, as a count
 *  below its minimum or a word other than "END"); NUVOStreamLineNumber then gives
 *  the line to quote in a message.
 *  On failure `si` is left partly filled: free it with NUVOFreeSimInputASCII. */
NUVO_API int NUVOReadSimInputASCII(nuvo_simInputASCII *si, FILE *stream);

/** The 1-based line of the current position of a seekable stream: one more than
 *  the number of line feeds before it. The position is kept. Returns -1 when the
 *  position cannot be told (a pipe). */
NUVO_API int NUVOStreamLineNumber(FILE *stream);

/** Writes `si` as a parameter file "<directory>/<filePrefix>.in" that
 *  NUVOReadSimInputASCII reads back, with every image, point set and block data
 *  set it holds in a file of its own in `directory`: GSLIB text images with values
 *  "%.10g", point sets with "%.10g" coordinates and values, block data files.
 *  Names written in the parameter file are the prefix and a suffix, without the
 *  directory: "_ti<i>.gslib" (a TI that is the simulation grid is written
 *  "_DATA_"), "_pdfti.gslib", "_dataImage<i>.gslib", "_dataPointSet<i>.gslib",
 *  "_mask.gslib", "_homothetyXRatio.gslib" (Y, Z), "_rotationAzimuth.gslib" (Dip,
 *  Plunge), "_localPdf<i>.gslib", "_refConnectivityImage<i>.gslib",
 *  "_blockData<i>.dat" (i from 0); the additional maps get the prefixes
 *  "_pathIndex", "_error", "_tiGridNodeIndex", "_tiIndex", the report
 *  "_report.txt", and the realizations the prefix itself.
 *  Simplifications: every variable is written with the default format (or with
 *  its output flag 0), the realizations always one file per realization, the
 *  pyramid factors always explicitly, and post-processing settings always in the
 *  manual form. Reals are written with six decimals ("%lf"), pyramid factors with
 *  "%.16g".
 *  `endOfLine` ends every line and must hold a line feed when commentLevel is 2;
 *  commentLevel 0 writes values only, 1 adds the section headings, 2 adds
 *  explanatory comments and remarks after values. Levels 0 and 2 read back to the
 *  same record.
 *  `si` must be complete (as after NUVOSimInputASCIIToSimInput); absent
 *  constraint or pyramid records are written as unused. `directory` must exist;
 *  a prefix so long that a name passes NUVO_FILE_NAME_MAX characters is written
 *  but does not read back. Files written before a failure are left in place.
 *  Returns 0, -7101 when filePrefix holds '/' or '\\' (nothing written), -7100
 *  when a file cannot be opened or written, or the code of an image, point set
 *  or block data writer. */
NUVO_API int NUVOExportSimInput(const nuvo_simInput *si, const char *directory,
                                const char *filePrefix, const char *endOfLine, int commentLevel);

NUVO_EXTERN_C_END

#endif /* NUVO_SIMINPUT_H */
