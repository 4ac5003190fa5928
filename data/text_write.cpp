#include "data/text_write.hpp"

#include <algorithm>
#include <cassert>
#include <charconv>
#include <climits>
#include <cstdarg>
#include <cstring>

namespace nuvo {
namespace {

constexpr std::size_t kSinkBytes = std::size_t{1} << 16;
// Room for the longest bare conversion: "%.999f" of -1.8e308.
constexpr std::size_t kBareRoom = 1400;

// Skips at most three digits; npos when a fourth follows.
std::size_t skipNumber(std::string_view piece, std::size_t i) {
  const std::size_t start = i;
  while (i < piece.size() && piece[i] >= '0' && piece[i] <= '9') ++i;
  return i - start > 3 ? std::string_view::npos : i;
}

// One conversion of the expected type, bounded width and precision, so that the
// argument matches and one printed value always fits in the sink's buffer.
bool isNumberConversion(std::string_view piece, bool integer) {
  int conversions = 0;
  for (std::size_t i = 0; i < piece.size(); ++i) {
    if (piece[i] != '%') continue;
    if (++i < piece.size() && piece[i] == '%') continue;
    while (i < piece.size() && std::string_view("-+ #0'").find(piece[i]) != std::string_view::npos)
      ++i;
    i = skipNumber(piece, i);
    if (i < piece.size() && piece[i] == '.') i = skipNumber(piece, i + 1);
    if (i < piece.size() && !integer && piece[i] == 'l') ++i;
    if (i >= piece.size()) return false;
    if (std::string_view(integer ? "di" : "eEfFgGaA").find(piece[i]) == std::string_view::npos)
      return false;
    ++conversions;
  }
  return conversions == 1;
}

// Recognises "%d" and "%[.precision]" followed by 'f', 'e' or 'g' in a piece that
// already holds exactly one valid conversion.
void findBareConversion(std::string_view piece, ColumnFormat &format) {
  const char letter = piece.back();
  if (piece.front() != '%' || std::string_view("dfeg").find(letter) == std::string_view::npos)
    return;
  const std::string_view middle = piece.substr(1, piece.size() - 2);
  if (!middle.empty()) {
    if (letter == 'd' || middle.front() != '.') return;
    format.precision = 0;
    for (char ch : middle.substr(1)) {
      if (ch < '0' || ch > '9') return;
      format.precision = format.precision * 10 + (ch - '0');
    }
  }
  format.bare = letter;
}

// Truncation toward zero, clamped to the range of int (NaN gives 0) so that the
// conversion is always defined.
int truncateToInt(double value) {
  if (value != value) return 0;
  if (value <= static_cast<double>(INT_MIN)) return INT_MIN;
  if (value >= static_cast<double>(INT_MAX)) return INT_MAX;
  return static_cast<int>(value);
}

}  // namespace

int ColumnFormats::parse(const char *text, int ncolumn) {
  pieces_.clear();
  const std::size_t wanted = ncolumn > 1 ? static_cast<std::size_t>(ncolumn) : 1;
  std::string_view rest = text != nullptr ? text : "";
  while (pieces_.size() < wanted) {
    rest.remove_prefix(std::min(rest.find_first_not_of(';'), rest.size()));
    if (rest.empty()) break;
    const std::string_view piece = rest.substr(0, rest.find(';'));
    rest.remove_prefix(piece.size());
    ColumnFormat format;
    format.integer = piece.back() == 'd' || piece.back() == 'i';
    if (piece.size() >= format.text.size() || !isNumberConversion(piece, format.integer))
      return kNoFormat;
    piece.copy(format.text.data(), piece.size());
    findBareConversion(piece, format);
    pieces_.push_back(format);
  }
  return pieces_.empty() ? kNoFormat : 0;
}

TextSink::TextSink(FILE *stream)
    : stream_(stream), cLocale_(newlocale(LC_NUMERIC_MASK, "C", nullptr)), buffer_(kSinkBytes) {
  if (cLocale_ == nullptr)
    status_ = -1;
  else
    callerLocale_ = uselocale(cLocale_);
}

TextSink::~TextSink() {
  if (cLocale_ == nullptr) return;
  uselocale(callerLocale_);
  freelocale(cLocale_);
}

void TextSink::put(std::string_view text) {
  while (!text.empty()) {
    if (used_ == buffer_.size()) flush();
    const std::size_t n = std::min(text.size(), buffer_.size() - used_);
    text.copy(buffer_.data() + used_, n);
    used_ += n;
    text.remove_prefix(n);
  }
}

void TextSink::print(const char *format, ...) {
  va_list args;
  va_list retry;
  va_start(args, format);
  va_copy(retry, args);
  int n = std::vsnprintf(buffer_.data() + used_, buffer_.size() - used_, format, args);
  if (n >= 0 && static_cast<std::size_t>(n) >= buffer_.size() - used_) {
    flush();
    n = std::vsnprintf(buffer_.data(), buffer_.size(), format, retry);
    // Every format printed here is bounded far below the buffer size.
    assert(n < 0 || static_cast<std::size_t>(n) < buffer_.size());
  }
  va_end(retry);
  va_end(args);
  if (n < 0) {
    status_ = status_ != 0 ? status_ : kWriteFailed;
    return;
  }
  used_ += static_cast<std::size_t>(n);
}

void TextSink::value(const ColumnFormat &format, double value) {
  if (format.bare != 0)
    bareValue(format, value);
  else if (format.integer)
    print(format.text.data(), truncateToInt(value));
  else
    print(format.text.data(), value);
}

void TextSink::bareValue(const ColumnFormat &format, double value) {
  if (buffer_.size() - used_ < kBareRoom) flush();
  char *first = buffer_.data() + used_;
  char *last = buffer_.data() + buffer_.size();
  std::to_chars_result printed{};
  switch (format.bare) {
    case 'd':
      printed = std::to_chars(first, last, truncateToInt(value));
      break;
    case 'f':
      printed = std::to_chars(first, last, value, std::chars_format::fixed, format.precision);
      break;
    case 'e':
      printed = std::to_chars(first, last, value, std::chars_format::scientific, format.precision);
      break;
    default:
      printed = std::to_chars(first, last, value, std::chars_format::general, format.precision);
  }
  used_ = static_cast<std::size_t>(printed.ptr - buffer_.data());
}

void TextSink::flush() {
  if (status_ == 0 && std::fwrite(buffer_.data(), 1, used_, stream_) != used_)
    status_ = kWriteFailed;
  used_ = 0;
}

int TextSink::finish() {
  flush();
  return status_;
}

}  // namespace nuvo
