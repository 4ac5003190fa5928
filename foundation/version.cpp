#include "nuvo_version.h"
#include <cstdio>


extern "C" int NUVOPrintVersion(FILE *stream) {
  std::fprintf(stream, "NUVO %s / %s\n", NUVO_VERSION_STRING, NUVO_BUILD_TAG);
  return 0;
}
