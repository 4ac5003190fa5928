// Comment skipper of the text formats and fixed-width number text.
#include <cstdio>

#include "nuvo_text.h"

namespace nuvo {
namespace {

constexpr int kEndOfInput = -999;

bool isBlank(int c) {
  return c == ' ' || c == '\t' || c == '\n' || c == '\r';
}

// Skips the rest of a "//" comment; false at the end of the stream.
bool skipLineComment(FILE *stream) {
  for (int c = std::fgetc(stream); c != EOF; c = std::fgetc(stream))
    if (c == '\n') return true;
  return false;
}

// Skips the rest of a block comment up to and including its closing "*/".
bool skipBlockComment(FILE *stream) {
  int previous = 0;
  for (int c = std::fgetc(stream); c != EOF; c = std::fgetc(stream)) {
    if (previous == '*' && c == '/') return true;
    previous = c;
  }
  return false;
}

}  // namespace
}  // namespace nuvo

extern "C" {

// Each character is read after noting the stream position, so that the first
// significant one (or a lone '/') can be put back by seeking, which keeps the
// stream usable by any reader that follows, including fscanf and fgets.
int NUVOSkipComments(FILE *stream) {
  for (;;) {
    long start = std::ftell(stream);
    int c = std::fgetc(stream);
    if (c == EOF) return nuvo::kEndOfInput;
    if (nuvo::isBlank(c)) continue;
    if (c == '/') {
      int next = std::fgetc(stream);
      if (next == '/') {
        if (!nuvo::skipLineComment(stream)) return nuvo::kEndOfInput;
        continue;
      }
      if (next == '*') {
        if (!nuvo::skipBlockComment(stream)) return nuvo::kEndOfInput;
        continue;
      }
    }
    std::fseek(stream, start, SEEK_SET);
    return 0;
  }
}

void NUVOIntToString(int n, char *text, int width) {
  if (width < 0) return;
  // The digits of n from the last one backwards; unsigned arithmetic keeps this
  // exact for every int.
  unsigned int rest = n < 0 ? 0u : static_cast<unsigned int>(n);
  for (int i = width - 1; i >= 0; --i) {
    text[i] = n < 0 ? 'x' : static_cast<char>('0' + rest % 10u);
    rest /= 10u;
  }
  text[width] = '\0';
}

char NUVODigitToChar(int d) {
  return (d >= 0 && d <= 9) ? static_cast<char>('0' + d) : 'x';
}

}  // extern "C"
