// A checksum of every value of an image, to pin realizations in the tests.
#pragma once

#include <cstdint>

#include "nuvo_image.h"

namespace nuvo_test {

// FNV-1a over the bytes of the values.
inline std::uint64_t checksum(const nuvo_image &image) {
  std::uint64_t h = 14695981039346656037ull;
  const auto *bytes = reinterpret_cast<const unsigned char *>(image.var);
  for (std::size_t i = 0; i < sizeof(double) * static_cast<std::size_t>(image.nxyzv); ++i) {
    h ^= bytes[i];
    h *= 1099511628211ull;
  }
  return h;
}

}  // namespace nuvo_test
