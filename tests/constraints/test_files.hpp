// Records for the constraint tests: records freed at the end of the scope, and
// what they hold allocated the way the constraint records own theirs (they
// release them with free): classes read from text, names in buffers and images
// from literal values. Files named in the records go to a TempFolder.
#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "nuvo_classofvalues.h"
#include "tests/input/siminput_builder.hpp"
#include "tests/input/test_files.hpp"
#include "tests/support/temp_stream.hpp"

namespace nuvo_test {

// A record initialised with Init and freed with Free at the end of the scope,
// standing for the record wherever a pointer to one is taken.
template <typename T, void (*Init)(T *), void (*Free)(T *)>
struct Owned : T {
  Owned() : T{} { Init(this); }
  ~Owned() { Free(this); }
  Owned(const Owned &) = delete;
  Owned &operator=(const Owned &) = delete;
  // Frees the record, then fills it with reader(record, stream of text); the
  // reader's code.
  template <typename Reader>
  int read(Reader reader, const std::string &text) {
    Free(this);
    Init(this);
    return reader(this, nuvo::test::TempStream(text).get());
  }
};

inline nuvo_classOfValues *newClasses(const std::string &text) {
  auto *c = initialisedRecords<nuvo_classOfValues>(1, NUVOInitClassOfValues);
  EXPECT_EQ(NUVOReadClassOfValues(c, nuvo::test::TempStream(text).get()), 0);
  return c;
}

// A buffer of `size` bytes holding text.
inline char *newText(const std::string &text, std::size_t size) {
  auto *buffer = static_cast<char *>(std::calloc(size, 1));
  text.copy(buffer, size - 1);
  return buffer;
}

// An image on an nx x 1 x 1 grid of unit cells with the given variable names and
// values (variable after variable).
inline nuvo_image *newImage(int nx, const std::vector<std::string> &names,
                            const std::vector<double> &values) {
  return newImage(nx, 1, 1, names,
                  [&](int ix, int, int, int iv) { return values.at(iv * nx + ix); });
}

}  // namespace nuvo_test
