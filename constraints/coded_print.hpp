// The print lines of the constraint records that follow a numeric setting with
// the text describing it, as in "probabilityConstraintUsage: 1(global)".
#pragma once

#include <cstddef>
#include <cstdio>

namespace nuvo {

// "<prefix><name>: <value>" followed by texts[value] (which ends the line), or by
// fallback for a value outside the table.
template <std::size_t N>
void printCoded(FILE *stream, const char *prefix, const char *name, int value,
                const char *const (&texts)[N], const char *fallback) {
  std::fprintf(stream, "%s%s: %1d", prefix, name, value);
  const bool known = value >= 0 && value < static_cast<int>(N);
  std::fputs(known ? texts[value] : fallback, stream);
}

}  // namespace nuvo
