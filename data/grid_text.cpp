// Text input and output of nuvo_grid: the commented reader and the printer.
#include <cstdio>

#include "data/c_locale.hpp"
#include "data/values.hpp"
#include "nuvo_grid.h"
#include "nuvo_text.h"

namespace nuvo {
namespace {

// Reads one value with `format` after skipping blanks and comments.
template <typename T>
bool readValue(FILE *stream, const char *format, T *value) {
  return NUVOSkipComments(stream) == 0 && std::fscanf(stream, format, value) == 1;
}

}  // namespace
}  // namespace nuvo

extern "C" {

int NUVOReadGrid(nuvo_grid *grid, FILE *stream) {
  const nuvo::CNumericLocale numericLocale;
  int *counts[] = {&grid->nx, &grid->ny, &grid->nz};
  double *reals[] = {&grid->sx, &grid->sy, &grid->sz, &grid->ox, &grid->oy, &grid->oz};
  int k = 711;
  for (int *count : counts) {
    NUVO_FAIL_IF(!nuvo::readValue(stream, "%d", count), -k);
    ++k;
  }
  for (double *real : reals) {
    NUVO_FAIL_IF(!nuvo::readValue(stream, "%lf", real), -k);
    ++k;
  }
  NUVO_FAIL_IF(!nuvo::productFitsInInt({grid->nx, grid->ny}, &grid->nxy), -610);
  NUVO_FAIL_IF(!nuvo::productFitsInInt({grid->nxy, grid->nz}, &grid->nxyz), -610);
  return 0;
}

int NUVOPrintGrid(const nuvo_grid *grid, const char *prefix, FILE *stream) {
  const nuvo::CNumericLocale numericLocale;
  std::fprintf(stream, "%sSize   : %7d %14d %14d\n", prefix, grid->nx, grid->ny, grid->nz);
  std::fprintf(stream, "%sSpacing: %14.6f %14.6f %14.6f\n", prefix, grid->sx, grid->sy, grid->sz);
  std::fprintf(stream, "%sOrigin : %14.6f %14.6f %14.6f\n", prefix, grid->ox, grid->oy, grid->oz);
  std::fprintf(stream, "%sNumber of nodes in a xy-section: %8d\n", prefix, grid->nxy);
  std::fprintf(stream, "%sTotal number of nodes          : %8d\n", prefix, grid->nxyz);
  return 0;
}

}  // extern "C"
