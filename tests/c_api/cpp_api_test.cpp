// The umbrella header also serves C++ callers: it compiles as C++ and links
// against the shared library with C linkage.
#include <cstring>

#include "nuvosim.h"

int main() {
  nuvo_image image;
  NUVOInitImage(&image);
  NUVOFreeImage(&image);
  return std::strcmp(NUVOGetErrorMessage(1), "ERROR 00001: memory allocation (malloc)\n") == 0 ? 0
                                                                                               : 1;
}
