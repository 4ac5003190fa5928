// Files for the constraint tests: a named temporary file holding a given text
// (the conversions open their files by name), and classes read from text.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <initializer_list>
#include <string>

#include "nuvo_classofvalues.h"
#include "nuvo_image.h"
#include "tests/support/temp_stream.hpp"

namespace nuvo_test {

// A file in the temporary directory, named after the running test, removed again
// at the end of the scope.
class NamedFile {
 public:
  NamedFile(const std::string &tag, const std::string &content) {
    const auto *info = ::testing::UnitTest::GetInstance()->current_test_info();
    path_ = (std::filesystem::temp_directory_path() /
             (std::string("nuvo_") + info->test_suite_name() + "_" + info->name() + "_" + tag))
                .string();
    FILE *file = std::fopen(path_.c_str(), "w");
    std::fputs(content.c_str(), file);
    std::fclose(file);
  }
  ~NamedFile() { std::remove(path_.c_str()); }
  NamedFile(const NamedFile &) = delete;
  NamedFile &operator=(const NamedFile &) = delete;
  const std::string &path() const { return path_; }

 private:
  std::string path_;
};

// A new class-of-values record, allocated as the records own theirs (they release
// it with free), read from its text form.
inline nuvo_classOfValues *newClasses(const std::string &text) {
  auto *c = static_cast<nuvo_classOfValues *>(std::calloc(1, sizeof(nuvo_classOfValues)));
  NUVOInitClassOfValues(c);
  EXPECT_EQ(NUVOReadClassOfValues(c, nuvo::test::TempStream(text).get()), 0);
  return c;
}

// A buffer of `size` bytes, allocated as the records own theirs, holding text.
inline char *newText(const std::string &text, std::size_t size) {
  auto *buffer = static_cast<char *>(std::calloc(size, 1));
  text.copy(buffer, size - 1);
  return buffer;
}

// An array of doubles allocated as the records own theirs.
inline double *newValues(std::initializer_list<double> values) {
  auto *array = static_cast<double *>(std::calloc(values.size(), sizeof(double)));
  std::copy(values.begin(), values.end(), array);
  return array;
}

// A new image, allocated as the records own theirs, on an nx x 1 x 1 grid of unit
// cells with the given variable names and values (variable after variable).
inline nuvo_image *newImage(int nx, std::initializer_list<const char *> names,
                            std::initializer_list<double> values) {
  auto *image = static_cast<nuvo_image *>(std::calloc(1, sizeof(nuvo_image)));
  NUVOInitImage(image);
  const int nvar = static_cast<int>(names.size());
  EXPECT_EQ(NUVOMallocImage(image, nx, nvar), 0);
  *image->grid = nuvo_grid{nx, 1, 1, 1.0, 1.0, 1.0, 0.0, 0.0, 0.0, nx, nx};
  image->nvar = nvar;
  image->nxyzv = nx * nvar;
  int iv = 0;
  for (const char *name : names) std::snprintf(image->varName[iv++], 128, "%s", name);
  std::copy(values.begin(), values.end(), image->var);
  return image;
}

}  // namespace nuvo_test
