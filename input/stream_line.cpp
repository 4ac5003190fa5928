// NUVOStreamLineNumber: where a reader stopped, as a line number for messages.
#include <cstdio>

#include "nuvo_siminput.h"

extern "C" {

int NUVOStreamLineNumber(FILE *stream) {
  const long position = std::ftell(stream);
  if (position < 0 || std::fseek(stream, 0, SEEK_SET) != 0) return -1;
  int line = 1;
  for (long i = 0; i < position; ++i) {
    const int c = std::fgetc(stream);
    if (c == EOF) break;
    line += c == '\n';
  }
  std::fseek(stream, position, SEEK_SET);
  return line;
}

}  // extern "C"
