// Text machinery shared by every record of the simulation input: reading the
// tokens of the parameter file and printing the one-line-per-field dumps.
//
// Reading. Every reader skips comments first (NUVOSkipComments) and returns 0 or
// the negative code the caller hands in for the field it reads: a missing token,
// a malformed one, an unknown keyword and an end of file all give that code.
// Numbers are parsed independently of the locale and must fill their whole token
// (up to white space or a comment): "1.0" is not an integer; words end at white
// space. A token that
// cannot be read (malformed, too long, out of range, unknown) is put back: the
// stream is left at its first character, so a caller can tell where reading
// stopped. The stream must be seekable.
//
// Keywords. The keywords of an enumeration live in one table, indexed by the
// value of the enumeration, that its reader and its printer both use.
//
// Printing. FieldPrinter writes "<prefix><name>: <value>\n" lines; per-variable
// and per-training-image lines insert " for variable %3d" or
// " for training image %3d" after the name; a missing array prints
// "NOT ALLOCATED" and an out-of-range enumeration value "unknown". Nested records
// are printed with nestedPrefix(prefix), three blanks longer.
#pragma once

#include <cstdio>
#include <span>
#include <string>

#include "data/values.hpp"
#include "foundation/check.hpp"

namespace nuvo {

// Keywords of an enumeration; the keyword of value v is table[v].
using KeywordTable = std::span<const char *const>;

inline constexpr char kUnknown[] = "unknown";
inline constexpr char kNotAllocated[] = "NOT ALLOCATED";

// The keyword of value, or "unknown" when the value is outside the table.
const char *keywordOf(KeywordTable table, int value);

// ---- Reading ----

int readInt(FILE *stream, int *value, int code);
int readDouble(FILE *stream, double *value, int code);
// A flag: an integer that must be 0 or 1.
int readFlag(FILE *stream, signed char *flag, int code);
// A word of at most maxLength characters into word (maxLength + 1 bytes);
// a longer one gives tooLongCode.
int readWord(FILE *stream, char *word, int maxLength, int code, int tooLongCode);
// A word that must be one of the keywords of table; *value is its index.
int readKeyword(FILE *stream, KeywordTable table, int *value, int code);

inline int readValue(FILE *stream, int *value, int code) {
  return readInt(stream, value, code);
}
inline int readValue(FILE *stream, double *value, int code) {
  return readDouble(stream, value, code);
}
inline int readValue(FILE *stream, signed char *flag, int code) {
  return readFlag(stream, flag, code);
}

// n values in a row (one per variable, one per training image ...), all with the
// same code.
template <typename T>
int readList(FILE *stream, T *values, int n, int code) {
  for (int i = 0; i < n; ++i)
    if (int rc = readValue(stream, &values[i], code); rc != 0) return rc;
  return 0;
}

// ---- Text slots ----

// n empty text slots of slotSize bytes in one block, plus the n pointers into it;
// null on failure or when n <= 0. Released by freeTextSlots (null accepted).
char **allocateTextSlots(int n, int slotSize);
void freeTextSlots(char **slots);
// One empty owned text of slotSize bytes (null on failure), released by free.
char *allocateText(int slotSize);

// ---- Printing ----

// What the items of a list are numbered by.
inline constexpr char kPerVariable[] = "variable";
inline constexpr char kPerTrainImage[] = "training image";

class FieldPrinter {
 public:
  FieldPrinter(FILE *stream, const char *prefix) : stream_(stream), prefix_(prefix) {}

  FILE *stream() const { return stream_; }
  const char *prefix() const { return prefix_; }

  // "<prefix><name>: <value>\n", the value written with format.
  template <typename T>
  void field(const char *name, const char *format, T value) const {
    start(name);
    std::fprintf(stream_, format, value);
    std::fputc('\n', stream_);
  }
  // "<prefix><name>: <text>\n", "NOT ALLOCATED" for a null text.
  void text(const char *name, const char *value) const {
    field(name, "%s", value != nullptr ? value : kNotAllocated);
  }
  // The keyword of value, or "unknown".
  void keyword(const char *name, KeywordTable table, int value) const {
    text(name, keywordOf(table, value));
  }
  // "<prefix><name>: NOT ALLOCATED\n".
  void notAllocated(const char *name) const { text(name, kNotAllocated); }
  // "<prefix><name>:\n", introducing a nested record or a list.
  void heading(const char *name) const;
  // "<prefix><name> for <kind> %3d\n", introducing one nested record of a list.
  void itemHeading(const char *name, const char *kind, int index) const;
  // An empty line between groups of fields.
  void blank() const { std::fputc('\n', stream_); }

  // The n values of an array on one line, each written with format and
  // separated by a blank, or "NOT ALLOCATED" for a null array.
  template <typename T>
  void values(const char *name, const T *array, int n, const char *format) const {
    if (array == nullptr) return notAllocated(name);
    start(name);
    for (int i = 0; i < n; ++i) {
      if (i > 0) std::fputc(' ', stream_);
      std::fprintf(stream_, format, array[i]);
    }
    std::fputc('\n', stream_);
  }

  // "<prefix><name> for <kind> %3d: <value>\n" for every item of the array, or
  // one "NOT ALLOCATED" line for a null array.
  template <typename T>
  void items(const char *name, const char *kind, const T *array, int n, const char *format) const {
    if (array == nullptr) return notAllocated(name);
    for (int i = 0; i < n; ++i) {
      startItem(name, kind, i);
      std::fprintf(stream_, format, array[i]);
      std::fputc('\n', stream_);
    }
  }
  // As items, with the keyword (or "unknown") of each value.
  void keywordItems(const char *name, const char *kind, const int *array, int n,
                    KeywordTable table) const;

  // Starts "<prefix><name>: " / "<prefix><name> for <kind> %3d: "; the caller
  // writes the value and the line feed.
  void start(const char *name) const { std::fprintf(stream_, "%s%s: ", prefix_, name); }
  void startItem(const char *name, const char *kind, int index) const {
    std::fprintf(stream_, "%s%s for %s %3d: ", prefix_, name, kind, index);
  }

 private:
  FILE *stream_;
  const char *prefix_;
};

// Prints record under "<prefix><name>:" with the nested prefix, or
// "<prefix><name>: NOT ALLOCATED" for a null record; print is a record printer
// (record, prefix, stream) whose non-zero code is passed on.
template <typename T, typename Print>
int printNested(const FieldPrinter &out, const char *name, const T *record, Print print) {
  if (record == nullptr) {
    out.notAllocated(name);
    return 0;
  }
  out.heading(name);
  std::string nested = nestedPrefix(out.prefix());
  return print(record, nested.c_str(), out.stream());
}

// Prints the n records of array under "<prefix><name>:", each introduced by
// "<prefix><name> for <kind> %3d" and printed with the nested prefix.
template <typename T, typename Print>
int printNestedItems(const FieldPrinter &out, const char *name, const char *kind, const T *array,
                     int n, Print print) {
  if (array == nullptr) {
    out.notAllocated(name);
    return 0;
  }
  out.heading(name);
  std::string nested = nestedPrefix(out.prefix());
  for (int i = 0; i < n; ++i) {
    out.itemHeading(name, kind, i);
    NUVO_TRY(print(&array[i], nested.c_str(), out.stream()));
  }
  return 0;
}

}  // namespace nuvo
