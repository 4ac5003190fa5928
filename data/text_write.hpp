// Writing pieces shared by the text writers of images and point sets: the
// ";"-separated column formats given by the caller, and a buffered sink that
// prints numbers with a '.' decimal point whatever the caller's locale.
#pragma once

#include <locale.h>
#include <array>
#include <cstdio>
#include <string_view>
#include <vector>

namespace nuvo {

inline constexpr int kNoFormat = -1021;
// A text stream that refused what was written to it.
inline constexpr int kWriteFailed = -110;

// One printf conversion, for an int (its text ends with 'd' or 'i': the value is
// truncated toward zero first) or for a double. A bare conversion ("%d", "%g",
// "%.17g", "%.3f", "%e": no flag, width or other text) is printed with
// std::to_chars instead, which gives the very characters of printf in the C locale
// several times faster; `bare` holds its letter then, else 0.
struct ColumnFormat {
  std::array<char, 128> text{};
  bool integer = false;
  char bare = 0;
  int precision = 6;
};

// The formats of the columns of a table of numbers, taken from a text such as
// "%10.5f;%d;%.3e": runs of ';' are skipped, and column k gets piece k modulo the
// number of pieces. Only the first `ncolumn` pieces are kept.
class ColumnFormats {
 public:
  // Returns 0, or -1021 when `text` is null or holds no piece, or when a kept piece
  // has 128 characters or more or is not exactly one conversion of its number
  // (flags, a width and a precision of at most three digits, an optional 'l' for a
  // double; "%%" allowed anywhere), which printf could not take safely.
  int parse(const char *text, int ncolumn);
  const ColumnFormat &operator[](int column) const {
    return pieces_[static_cast<std::size_t>(column) % pieces_.size()];
  }

 private:
  std::vector<ColumnFormat> pieces_;
};

// Collects text in a large buffer and hands it to the stream in blocks. Numbers are
// printed in the C locale for the sink's lifetime (the calling thread's locale is
// restored afterwards).
class TextSink {
 public:
  explicit TextSink(FILE *stream);
  ~TextSink();
  TextSink(const TextSink &) = delete;
  TextSink &operator=(const TextSink &) = delete;

  void put(char c) {
    if (used_ == buffer_.size()) flush();
    buffer_[used_++] = c;
  }
  void put(std::string_view text);
  void print(const char *format, ...) __attribute__((format(printf, 2, 3)));
  void value(const ColumnFormat &format, double value);
  // Writes out what is buffered. Returns 0, -1 when the C locale could not be set
  // up (nothing was written then), or -110 when the stream refused a block.
  int finish();

 private:
  void flush();
  void bareValue(const ColumnFormat &format, double value);

  FILE *stream_;
  locale_t cLocale_;
  locale_t callerLocale_ = nullptr;
  std::vector<char> buffer_;
  std::size_t used_ = 0;
  int status_ = 0;
};

}  // namespace nuvo
