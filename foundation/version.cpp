#include <cstdio>
#include "nuvo_version.h"

extern "C" int NUVOPrintVersion(FILE *stream) {
  std::fprintf(stream, "NUVO %s / %s\n", NUVO_VERSION_STRING, NUVO_BUILD_TAG);
  return 0;
}
