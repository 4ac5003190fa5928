/* Compiles the umbrella header as strict C11 and calls the shared library. */
#include <stdio.h>
#include <string.h>

#include "nuvosim.h"

_Static_assert(sizeof(int) == 4, "the interface assumes 32-bit int");

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
