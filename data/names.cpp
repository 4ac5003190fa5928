#include "data/names.hpp"

#include <cstdlib>

namespace nuvo {

char **allocateNames(int n) {
  if (n <= 0) return nullptr;
  auto *block = static_cast<char *>(std::calloc(static_cast<std::size_t>(n), kNameSlot));
  auto **names = static_cast<char **>(std::malloc(static_cast<std::size_t>(n) * sizeof(char *)));
  if (block == nullptr || names == nullptr) {
    std::free(block);
    std::free(names);
    return nullptr;
  }
  for (int i = 0; i < n; ++i) names[i] = block + static_cast<std::size_t>(i) * kNameSlot;
  return names;
}

void freeNames(char **names) {
  if (names == nullptr) return;
  std::free(names[0]);
  std::free(names);
}

}  // namespace nuvo
