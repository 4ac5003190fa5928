/* Compiles the umbrella header as strict C11 and calls the shared library. */
#include <stdio.h>
#include <string.h>

#include "nuvosim.h"

_Static_assert(sizeof(int) == 4, "the interface assumes 32-bit int");

/* The numbering of the enumerations is part of the interface (files store it). */
_Static_assert(SIM_ONE_BY_ONE == 0 && SIM_VARIABLE_VECTOR == 1, "simType");
_Static_assert(PATH_RANDOM == 0 && PATH_RANDOM_HD_DISTANCE_PDF == 1 &&
                   PATH_RANDOM_HD_DISTANCE_SORT == 2 && PATH_RANDOM_HD_DISTANCE_SUM_PDF == 3 &&
                   PATH_RANDOM_HD_DISTANCE_SUM_SORT == 4 && PATH_UNILATERAL == 5,
               "pathType");
_Static_assert(SEARCHNEIGHBORHOOD_RADIUS_LARGE_DEFAULT == 0 &&
                   SEARCHNEIGHBORHOOD_RADIUS_TI_RANGE_DEFAULT == 1 &&
                   SEARCHNEIGHBORHOOD_RADIUS_TI_RANGE == 2 &&
                   SEARCHNEIGHBORHOOD_RADIUS_TI_RANGE_XY == 3 &&
                   SEARCHNEIGHBORHOOD_RADIUS_TI_RANGE_XZ == 4 &&
                   SEARCHNEIGHBORHOOD_RADIUS_TI_RANGE_YZ == 5 &&
                   SEARCHNEIGHBORHOOD_RADIUS_TI_RANGE_XYZ == 6 &&
                   SEARCHNEIGHBORHOOD_RADIUS_MANUAL == 7,
               "radiusMode");
_Static_assert(SEARCHNEIGHBORHOOD_ANISOTROPY_RATIO_ONE == 0 &&
                   SEARCHNEIGHBORHOOD_ANISOTROPY_RATIO_RADIUS == 1 &&
                   SEARCHNEIGHBORHOOD_ANISOTROPY_RATIO_RADIUS_XY == 2 &&
                   SEARCHNEIGHBORHOOD_ANISOTROPY_RATIO_RADIUS_XZ == 3 &&
                   SEARCHNEIGHBORHOOD_ANISOTROPY_RATIO_RADIUS_YZ == 4 &&
                   SEARCHNEIGHBORHOOD_ANISOTROPY_RATIO_RADIUS_XYZ == 5 &&
                   SEARCHNEIGHBORHOOD_ANISOTROPY_RATIO_MANUAL == 6,
               "anisotropyRatioMode");
_Static_assert(NUVO_IMAGE_FORMAT_GSLIB == 0 && NUVO_IMAGE_FORMAT_VTK == 1 &&
                   NUVO_IMAGE_FORMAT_PGM == 2 && NUVO_IMAGE_FORMAT_PPM == 3,
               "image format keys");
/* Constraint and pyramid enumerations: their numbers are part of the text forms. */
_Static_assert(NUVO_PROBABILITY_CONSTRAINT_LOCAL == 2, "probability usage");
_Static_assert(NUVO_LOCAL_CURRENT_PDF_APPROXIMATE == 1, "current pdf computation");
_Static_assert(NUVO_COMPARING_PDF_JSD == 3 && NUVO_COMPARING_PDF_MLIKROPT == 5, "pdf method");
_Static_assert(NUVO_PROBABILITY_THRESHOLD_DYNAMIC == 1, "threshold type");
_Static_assert(NUVO_CONNECTIVITY_PATTERN == 3, "connectivity usage");
_Static_assert(CONNECT_FACE_EDGE == 1 && CONNECT_FACE_EDGE_CORNER == 2, "connectivity type");
_Static_assert(NUVO_BLOCK_DATA_MEAN == 1, "block data usage");
_Static_assert(PYRAMID_SIM_HIERARCHICAL_USING_EXPANSION == 2 &&
                   PYRAMID_SIM_ALL_LEVEL_ONE_BY_ONE == 3,
               "pyramid simulation mode");
_Static_assert(PYRAMID_NNEIGHBOR_ADAPTING_FACTOR_MANUAL == 1 &&
                   PYRAMID_THRESHOLD_ADAPTING_FACTOR_MANUAL == 1 &&
                   PYRAMID_MAX_SCAN_FRACTION_ADAPTING_FACTOR_MANUAL == 1,
               "pyramid factor modes");
_Static_assert(PYRAMID_CATEGORICAL_CUSTOM == 3 && PYRAMID_CATEGORICAL_TO_CONTINUOUS == 4,
               "pyramid type");

/* Simulation input enumerations: their numbers are part of the text forms. */
_Static_assert(OUTPUT_SIM_ONE_FILE_PER_REALIZATION == 3, "output job");
_Static_assert(NORMALIZING_NORMAL == 2, "normalizing type");
_Static_assert(RESCALING_MEAN_LENGTH == 2, "rescaling mode");
_Static_assert(POST_PROCESSING_PARAMETERS_MANUAL == 2, "post-processing parameters");
_Static_assert(SEARCHNEIGHBORHOOD_ROTATION_ON == 1, "rotation");

static int failures = 0;

static void check(int ok, const char *what) {
  if (!ok) {
    fprintf(stderr, "c_api_test: %s\n", what);
    ++failures;
  }
}

int main(void) {
  int err = 0;
  double *v = (double *)NUVOMalloc(4, sizeof(double), &err);
  check(v != NULL && err == 0, "NUVOMalloc");
  NUVOFree(v);

  check(strcmp(NUVOGetErrorMessage(1000), "ERROR 01000: aborted job\n") == 0, "error text");
  check(strcmp(NUVOGetWarningMessage(28), "WARNING: unknown\n") == 0, "unknown warning");

  nuvo_progressMonitor pm;
  NUVOInitProgressMonitor(&pm);
  pm.stopFlag = 1;
  check(NUVOUpdateProgressMonitorStdout(&pm) == -NUVO_ABORTED, "stop flag");

  char text[8];
  NUVOIntToString(7, text, 3);
  check(strcmp(text, "007") == 0, "NUVOIntToString");

  /* A row of 5 values reduced by 2: the centre node takes (1, 4, 6, 4, 1) / 16. */
  double w[3], row[5] = {0.0, 0.0, 16.0, 0.0, 0.0}, coarse[3], weight[3];
  NUVOPyramidWeight(2, -1.0, w);
  check(NUVOPyramidReduce(row, 5, 1, 1, 2, 0, 0, w, NULL, NULL, 0, 0, 0, 3, 1, 1, coarse, weight,
                          0.6) == 0 &&
            coarse[1] == 6.0,
        "NUVOPyramidReduce");

  return failures == 0 ? 0 : 1;
}
