// Cache hints for the shuffles, which touch long lists at random places.
#pragma once

#include <algorithm>
#include <cstddef>

namespace nuvo {

// Asks for the cache line holding `address` ahead of its use; no effect on results.
// Forced inline: GCC takes a function that does nothing but prefetch for one
// without effect, and drops the calls to it.
[[gnu::always_inline]] inline void prefetch(const void *address) {
#if defined(__GNUC__)
  __builtin_prefetch(address);
#else
  static_cast<void>(address);
#endif
}

// Asks for the cache lines of base[from, min(from + count, size)), from < size.
template <typename T>
[[gnu::always_inline]] inline void prefetchRange(const T *base, std::size_t from, std::size_t count,
                                                 std::size_t size) {
  const std::size_t to = std::min(from + count, size);
  for (std::size_t i = from; i < to; i += 64 / sizeof(T)) prefetch(base + i);
  prefetch(base + to - 1);
}

}  // namespace nuvo
