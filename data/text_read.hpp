// Reading pieces shared by the text readers of images and point sets: whole header
// lines, and the "%d", "%lf" and "%s" items of scanf, read from a stream or from a
// header line. The number syntax is the one glibc's scanf accepts, but the
// conversion never depends on the locale and never overflows.
#pragma once

#include <array>
#include <cstdio>
#include <string>

namespace nuvo {

// A header line: at most 254 characters and its line feed, zero-terminated.
inline constexpr int kLineBytes = 256;
using HeaderLine = std::array<char, kLineBytes>;

// Reads one header line. Returns 0, `missingCode` when no line can be read, or
// `tooLongCode` when the line does not end with a line feed within the buffer
// (a last line without its line feed included).
int readHeaderLine(FILE *stream, HeaderLine &line, int missingCode, int tooLongCode);

// Characters one at a time, with one character of push-back, from a stream (locked
// for the source's lifetime and read without further locking) or from a text.
class CharSource {
 public:
  explicit CharSource(FILE *stream);
  explicit CharSource(const char *text) : text_(text) {}
  ~CharSource();
  CharSource(const CharSource &) = delete;
  CharSource &operator=(const CharSource &) = delete;

  int get() {
    if (stream_ != nullptr) return getc_unlocked(stream_);
    return *text_ == '\0' ? EOF : static_cast<unsigned char>(*text_++);
  }
  void unget(int c) {
    if (c == EOF) return;
    if (stream_ != nullptr)
      std::ungetc(c, stream_);
    else
      --text_;
  }
  // Scratch space for the characters of one number.
  std::string &token() { return token_; }

 private:
  FILE *stream_ = nullptr;
  const char *text_ = nullptr;
  std::string token_;
};

// "%d": blanks, an optional sign and decimal digits. False when there is no
// number or when it does not fit in an int.
bool scanInt(CharSource &source, int &value);

// "%lf": blanks, then a decimal or hexadecimal number, "inf", "infinity" or "nan"
// (any case, optional sign). Like glibc, an exponent marker without digits is
// consumed and ignored ("1e" reads 1). Values beyond the range of double become
// infinite or zero, as with scanf.
bool scanDouble(CharSource &source, double &value);

enum class WordStatus { kMissing, kRead, kTooLong };

// "%s": blanks, then the characters up to the next blank or the end. The word is
// always consumed whole; `word` keeps at most `maxLength` characters, and a longer
// word gives kTooLong. kMissing when the source ends before any character.
WordStatus scanWord(CharSource &source, std::string &word, std::size_t maxLength);

// Runs `steps` in order until one fails and returns how many succeeded, as scanf
// counts the items it converted.
template <typename... Steps>
int countMatched(Steps &&...steps) {
  int matched = 0;
  bool going = true;
  ((going = going && steps(), matched += going ? 1 : 0), ...);
  return matched;
}

}  // namespace nuvo
