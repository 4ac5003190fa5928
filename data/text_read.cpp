#include "data/text_read.hpp"

#include <algorithm>
#include <charconv>
#include <climits>
#include <cmath>
#include <cstring>
#include <limits>
#include <string_view>

namespace nuvo {
namespace {

// The blanks of scanf in the C locale: space, \t, \n, \v, \f, \r.
bool isBlank(int c) {
  return c == ' ' || (c >= '\t' && c <= '\r');
}
bool isDigit(int c) {
  return c >= '0' && c <= '9';
}
bool isHexDigit(int c) {
  return isDigit(c) || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}
int toLower(int c) {
  return (c >= 'A' && c <= 'Z') ? c - 'A' + 'a' : c;
}

int skipBlanks(CharSource &source) {
  int c = source.get();
  while (isBlank(c)) c = source.get();
  return c;
}

// Consumes the letters of `word` (given in lower case) in any case; `c` is the
// current character and, on return, the first one not consumed.
bool matchWord(CharSource &source, int &c, const char *word) {
  for (; *word != '\0'; ++word, c = source.get())
    if (toLower(c) != *word) return false;
  return true;
}

// "inf", "infinity" or "nan"; a word that stops half-way through "infinity" fails,
// as it does for scanf.
bool scanSpecial(CharSource &source, int &c, double &magnitude) {
  if (toLower(c) == 'n') {
    magnitude = std::numeric_limits<double>::quiet_NaN();
    return matchWord(source, c, "nan");
  }
  magnitude = HUGE_VAL;
  if (!matchWord(source, c, "inf")) return false;
  return toLower(c) != 'i' || matchWord(source, c, "inity");
}

// Position of the first significant digit of a number token, as an exponent of
// its base (decimal, or binary for hexadecimal): positive for magnitudes above one.
// Only its sign matters, to tell an overflow from an underflow.
long long leadingExponent(std::string_view token, bool hex) {
  const std::size_t marker = token.find(hex ? 'p' : 'e');
  long long position = 0;
  bool point = false;
  bool significant = false;
  for (char ch : token.substr(0, marker)) {
    if (ch == '.') {
      point = true;
      continue;
    }
    significant = significant || ch != '0';
    if (!point && significant) ++position;
    if (point && !significant) --position;
  }
  long long exponent = 0;
  bool negative = false;
  if (marker != std::string_view::npos) {
    std::string_view digits = token.substr(marker + 1);
    negative = digits.front() == '-';
    for (char ch : digits)
      if (isDigit(ch)) exponent = std::min(exponent * 10 + (ch - '0'), 1'000'000'000LL);
  }
  return position * (hex ? 4 : 1) + (negative ? -exponent : exponent);
}

bool convert(const std::string &token, bool hex, double &magnitude) {
  const char *first = token.data();
  const char *last = first + token.size();
  const auto [end, error] = std::from_chars(
      first, last, magnitude, hex ? std::chars_format::hex : std::chars_format::general);
  if (error == std::errc::result_out_of_range) {
    magnitude = leadingExponent(token, hex) > 0 ? HUGE_VAL : 0.0;
    return true;
  }
  return error == std::errc{} && end == last;
}

// Digits with an optional point and exponent, or "0x" and hexadecimal digits with
// an optional point and binary exponent "p". At least one mantissa digit is needed.
bool scanFinite(CharSource &source, int &c, double &magnitude) {
  std::string &token = source.token();
  token.clear();
  bool hex = false;
  if (c == '0') {
    c = source.get();
    if (toLower(c) == 'x') {
      hex = true;
      c = source.get();
    } else {
      token += '0';
    }
  }
  const auto isMantissaDigit = hex ? isHexDigit : isDigit;
  bool digits = !token.empty();
  for (; isMantissaDigit(c); c = source.get(), digits = true) token += static_cast<char>(c);
  if (c == '.') {
    token += '.';
    for (c = source.get(); isMantissaDigit(c); c = source.get(), digits = true)
      token += static_cast<char>(c);
  }
  if (!digits) return false;
  const char marker = hex ? 'p' : 'e';
  if (toLower(c) == marker) {
    const std::size_t mantissaEnd = token.size();
    token += marker;
    c = source.get();
    if (c == '+' || c == '-') {
      token += static_cast<char>(c);
      c = source.get();
    }
    bool exponentDigits = false;
    for (; isDigit(c); c = source.get(), exponentDigits = true) token += static_cast<char>(c);
    if (!exponentDigits) token.resize(mantissaEnd);
  }
  return convert(token, hex, magnitude);
}

}  // namespace

int readHeaderLine(FILE *stream, HeaderLine &line, int missingCode, int tooLongCode) {
  if (std::fgets(line.data(), kLineBytes, stream) == nullptr) return missingCode;
  return std::strchr(line.data(), '\n') == nullptr ? tooLongCode : 0;
}

CharSource::CharSource(FILE *stream) : stream_(stream) {
  flockfile(stream_);
}

CharSource::~CharSource() {
  if (stream_ != nullptr) funlockfile(stream_);
}

bool scanInt(CharSource &source, int &value) {
  int c = skipBlanks(source);
  const bool negative = c == '-';
  if (c == '+' || c == '-') c = source.get();
  if (!isDigit(c)) return false;
  const long long limit = negative ? -static_cast<long long>(INT_MIN) : INT_MAX;
  long long magnitude = 0;
  for (; isDigit(c); c = source.get()) magnitude = std::min(magnitude * 10 + (c - '0'), limit + 1);
  source.unget(c);
  if (magnitude > limit) return false;
  value = static_cast<int>(negative ? -magnitude : magnitude);
  return true;
}

bool scanDouble(CharSource &source, double &value) {
  int c = skipBlanks(source);
  const bool negative = c == '-';
  if (c == '+' || c == '-') c = source.get();
  double magnitude = 0.0;
  const bool special = toLower(c) == 'i' || toLower(c) == 'n';
  if (!(special ? scanSpecial(source, c, magnitude) : scanFinite(source, c, magnitude)))
    return false;
  source.unget(c);
  value = negative ? -magnitude : magnitude;
  return true;
}

WordStatus scanWord(CharSource &source, std::string &word, std::size_t maxLength) {
  word.clear();
  int c = skipBlanks(source);
  if (c == EOF) return WordStatus::kMissing;
  std::size_t length = 0;
  for (; c != EOF && !isBlank(c); c = source.get(), ++length)
    if (length < maxLength) word += static_cast<char>(c);
  source.unget(c);
  return length > maxLength ? WordStatus::kTooLong : WordStatus::kRead;
}

}  // namespace nuvo
