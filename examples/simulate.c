/* simulate: the library's C interface from end to end.
 *
 * Reads a parameter file, loads the files it names, runs the simulation with
 * the results kept in memory (as well as written to the files the parameter file
 * names), prints the mean of every simulated variable and frees everything.
 * The library opens file names as given, so run it from the parameter file's
 * folder:
 *   cd examples/channels2d && ../../build/release/examples/simulate channels2d.in
 */
#include <stdio.h>

#include "nuvosim.h"

/* Prints the library's message for the return code rc (negative) and returns 1. */
static int fail(const char *what, int rc) {
  fprintf(stderr, "%s: %s", what, NUVOGetErrorMessage(-rc));
  return 1;
}

/* The mean of the informed values of variable iv of the image. */
static double mean(const nuvo_image *image, int iv) {
  const double *values = image->var + (size_t)iv * (size_t)image->grid->nxyz;
  double sum = 0.0;
  int count = 0;
  for (int k = 0; k < image->grid->nxyz; ++k) {
    if (values[k] != NUVO_MISSING_VALUE) {
      sum += values[k];
      ++count;
    }
  }
  return count > 0 ? sum / count : 0.0;
}

static int simulate(const char *parameterFile, nuvo_simInputASCII *ascii, nuvo_simInput *input,
                    nuvo_simOutput *output) {
  FILE *stream = fopen(parameterFile, "r");
  if (stream == NULL) return fail(parameterFile, -109);
  int rc = NUVOReadSimInputASCII(ascii, stream);
  const int line = NUVOStreamLineNumber(stream);
  fclose(stream);
  if (rc != 0) {
    fprintf(stderr, "%s: line %d: ", parameterFile, line);
    return fail("reading", rc);
  }
  rc = NUVOSimInputASCIIToSimInput(ascii, input);
  if (rc != 0) return fail("loading the files", rc);

  nuvo_progressMonitor monitor;
  NUVOInitProgressMonitor(&monitor);
  rc = NUVOSim(input, output, &monitor, NUVOUpdateProgressMonitorAllStdout);
  if (rc != 0) return fail("simulating", rc);

  const nuvo_image *result = output->outputSimImage;
  for (int iv = 0; iv < result->nvar; ++iv) {
    printf("%s: mean %g\n", result->varName[iv], mean(result, iv));
  }
  return 0;
}

int main(int argc, char **argv) {
  if (argc != 2) {
    fprintf(stderr, "usage: %s FILE.in\n", argv[0]);
    return 1;
  }
  nuvo_simInputASCII ascii;
  nuvo_simInput input;
  nuvo_simOutput output;
  NUVOInitSimInputASCII(&ascii);
  NUVOInitSimInput(&input);
  NUVOInitSimOutput(&output);

  const int status = simulate(argv[1], &ascii, &input, &output);

  NUVOFreeSimOutput(&output);
  NUVOFreeSimInput(&input);
  NUVOFreeSimInputASCII(&ascii);
  return status;
}
