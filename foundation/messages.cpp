// Lookup of the error and warning texts.
//
// The tables live in messages.def and warnings.def as rows NUVO_ERROR(ddddd, "text").
// The five-digit code is only ever stringized: the full text "ERROR ddddd: text\n" is
// assembled by the preprocessor, and the numeric code is parsed from the same digits
// at compile time, so a row cannot disagree with itself. Compile-time checks keep the
// rows sorted, which makes the lookup a binary search.
#include <algorithm>
#include <array>
#include <string_view>

#include "nuvo_error.h"

namespace nuvo {
namespace {

struct MessageRow {
  int code;
  const char *text;
};

constexpr int parseCode(std::string_view digits) {
  int code = 0;
  for (char c : digits) code = code * 10 + (c - '0');
  return code;
}

constexpr bool isFiveDigits(std::string_view digits) {
  return digits.size() == 5 &&
         std::all_of(digits.begin(), digits.end(), [](char c) { return c >= '0' && c <= '9'; });
}

// std::to_array sizes the tables without deducing one template argument per row,
// which some compilers refuse beyond a few hundred rows.
#define NUVO_ERROR(code, message) MessageRow{parseCode(#code), "ERROR " #code ": " message "\n"},
constexpr auto kErrors = std::to_array<MessageRow>({
#include "messages.def"
});
#undef NUVO_ERROR

#define NUVO_WARNING(code, message) \
  MessageRow{parseCode(#code), "WARNING " #code ": " message "\n"},
constexpr auto kWarnings = std::to_array<MessageRow>({
#include "warnings.def"
});
#undef NUVO_WARNING

#define NUVO_ERROR(code, message) &&isFiveDigits(#code)
static_assert(true
#include "messages.def"
              ,
              "every error code is written with five digits");
#undef NUVO_ERROR
#define NUVO_WARNING(code, message) &&isFiveDigits(#code)
static_assert(true
#include "warnings.def"
              ,
              "every warning code is written with five digits");
#undef NUVO_WARNING

template <std::size_t N>
constexpr bool strictlyIncreasing(const std::array<MessageRow, N> &rows) {
  for (std::size_t i = 1; i < N; ++i)
    if (rows[i - 1].code >= rows[i].code) return false;
  return true;
}
static_assert(strictlyIncreasing(kErrors), "messages.def must be sorted by code, without repeats");
static_assert(strictlyIncreasing(kWarnings),
              "warnings.def must be sorted by code, without repeats");

template <std::size_t N>
const char *lookup(const std::array<MessageRow, N> &rows, int code, const char *unknown) {
  auto it = std::lower_bound(rows.begin(), rows.end(), code,
                             [](const MessageRow &row, int c) { return row.code < c; });
  return (it != rows.end() && it->code == code) ? it->text : unknown;
}

// Warnings 26 and 27 have always returned each other's texts; host applications
// match on these strings, so the crossing is kept.
constexpr int warningTextCode(int code) {
  return code == 26 ? 27 : code == 27 ? 26 : code;
}

}  // namespace
}  // namespace nuvo

extern "C" {

const char *NUVOGetErrorMessage(int code) {
  return nuvo::lookup(nuvo::kErrors, code, "ERROR: unknown\n");
}

const char *NUVOGetWarningMessage(int code) {
  return nuvo::lookup(nuvo::kWarnings, nuvo::warningTextCode(code), "WARNING: unknown\n");
}

}  // extern "C"
