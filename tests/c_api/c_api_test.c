/* Compiles the umbrella header as strict C11 and calls the shared library. */
#include <stdio.h>
#include <string.h>

#include "nuvosim.h"

_Static_assert(sizeof(int) == 4, "the interface assumes 32-bit int");

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
_Static_assert(SEARCHNEIGHBORHOOD_RADIUS_TI_RANGE_XYZ == 6 && SEARCHNEIGHBORHOOD_RADIUS_MANUAL == 7,
               "radius mode");
_Static_assert(SEARCHNEIGHBORHOOD_ANISOTROPY_RATIO_RADIUS_XYZ == 5 &&
                   SEARCHNEIGHBORHOOD_ANISOTROPY_RATIO_MANUAL == 6,
               "anisotropy mode");
_Static_assert(SEARCHNEIGHBORHOOD_ROTATION_ON == 1, "rotation");
_Static_assert(SIM_VARIABLE_VECTOR == 1, "simulation type");
_Static_assert(PATH_RANDOM_HD_DISTANCE_SUM_SORT == 4 && PATH_UNILATERAL == 5, "path type");

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

  return failures == 0 ? 0 : 1;
}
