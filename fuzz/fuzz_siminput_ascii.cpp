// Fuzz target for the parameter-file reader. Each input must be read without a
// crash; a failure must be one of the library's error codes with a place in the
// file to report, and a record that reads must have its counts in range and
// print in full. The files the record names are never opened.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "nuvo_error.h"
#include "nuvo_siminput.h"

namespace {

void check(bool condition, const char *what) {
  if (condition) return;
  std::fprintf(stderr, "fuzz check failed: %s\n", what);
  std::abort();
}

FILE *openBytes(const void *data, std::size_t size) {
  static const char kEmpty[1] = {0};
  return fmemopen(const_cast<void *>(size != 0 ? data : kEmpty), size, "rb");
}

// Prints the record into memory, and checks that something was printed.
void checkPrint(const nuvo_simInputASCII &si) {
  char *text = nullptr;
  std::size_t size = 0;
  FILE *out = open_memstream(&text, &size);
  check(NUVOPrintSimInputASCII(&si, "", out) == 0, "print record");
  std::fclose(out);
  check(size > 0, "printed text");
  std::free(text);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  nuvo_simInputASCII si;
  NUVOInitSimInputASCII(&si);
  FILE *in = openBytes(data, size);
  const int rc = NUVOReadSimInputASCII(&si, in);
  if (rc != 0) {
    check(rc < 0 && std::strcmp(NUVOGetErrorMessage(-rc), "ERROR: unknown\n") != 0,
          "known error code");
    const long position = std::ftell(in);
    check(position >= 0 && static_cast<std::size_t>(position) <= size, "stopped inside the file");
    check(NUVOStreamLineNumber(in) >= 1, "line where reading stopped");
  } else {
    check(si.nsimVar >= 1 && si.ntrainImage >= 1, "counts in range");
    check(si.ndataImageFile >= 0 && si.ndataPointSetFile >= 0, "file counts in range");
    checkPrint(si);
  }
  std::fclose(in);
  NUVOFreeSimInputASCII(&si);
  return 0;
}
