#include "input/text_io.hpp"

#include <charconv>
#include <cstdlib>
#include <cstring>

#include "foundation/check.hpp"
#include "nuvo_text.h"

namespace nuvo {
namespace {

// Longest number text considered: any double printed with "%lf" or "%14.6lf"
// (up to 309 integer digits), as the writers of the records do, reads back.
constexpr int kNumberTextMax = 330;
// Keywords are short; a longer word cannot be one.
constexpr int kKeywordMax = 255;

bool isSpace(int c) {
  return c == ' ' || c == '\t' || c == '\n' || c == '\v' || c == '\f' || c == '\r';
}

// Skips the comments before the next token and gives its position; false when
// the stream ends first.
bool atToken(FILE *stream, long *start) {
  if (NUVOSkipComments(stream) != 0) return false;
  *start = std::ftell(stream);
  return true;
}

// Puts the stream back to the start of the token that failed and returns code,
// so that the caller can tell where reading stopped.
int failAt(FILE *stream, long start, int code) {
  std::fseek(stream, start, SEEK_SET);
  return code;
}

// Whether the stream stands at the end of a token: white space, the end of the
// file or a comment. Moves the stream.
bool atTokenEnd(FILE *stream) {
  const int c = std::fgetc(stream);
  if (c == EOF || isSpace(c)) return true;
  if (c != '/') return false;
  const int next = std::fgetc(stream);
  return next == '/' || next == '*';
}

// Reads a number of type T at the next token: collects the characters that may
// belong to it and parses them, so that "3//note" reads 3 and leaves the comment.
// The number must be the whole token: "1.0", "5e1" or "12x" for an integer, or
// "0.5x" for a real, is refused at its start with the field's code, rather than
// read in part and leaving the rest to be refused as the next field.
template <typename T>
int readNumber(FILE *stream, T *value, int code, const char *allowed) {
  long start = 0;
  if (!atToken(stream, &start)) return code;
  char text[kNumberTextMax + 1];
  int length = 0;
  for (int c = std::fgetc(stream); c != EOF; c = std::fgetc(stream)) {
    if (length == kNumberTextMax || std::strchr(allowed, c) == nullptr) break;
    text[length++] = static_cast<char>(c);
  }
  text[length] = '\0';
  // from_chars does not take a leading '+', which scanf accepts.
  int skip = (length > 1 && text[0] == '+' && text[1] != '-' && text[1] != '+') ? 1 : 0;
  T parsed{};
  std::from_chars_result result = std::from_chars(text + skip, text + length, parsed);
  if (result.ec != std::errc{} || result.ptr == text + skip) return failAt(stream, start, code);
  const long end = start + (result.ptr - text);
  std::fseek(stream, end, SEEK_SET);
  if (!atTokenEnd(stream)) return failAt(stream, start, code);
  *value = parsed;
  std::fseek(stream, end, SEEK_SET);
  return 0;
}

}  // namespace

const char *keywordOf(KeywordTable table, int value) {
  if (value < 0 || static_cast<std::size_t>(value) >= table.size()) return kUnknown;
  return table[static_cast<std::size_t>(value)];
}

int readInt(FILE *stream, int *value, int code) {
  return readNumber(stream, value, code, "+-0123456789");
}

int readDouble(FILE *stream, double *value, int code) {
  return readNumber(stream, value, code, "+-0123456789.eE");
}

int readFlag(FILE *stream, signed char *flag, int code) {
  long start = 0;
  if (!atToken(stream, &start)) return code;
  int value = 0;
  NUVO_TRY(readInt(stream, &value, code));
  if (value != 0 && value != 1) return failAt(stream, start, code);
  *flag = static_cast<signed char>(value);
  return 0;
}

int readWord(FILE *stream, char *word, int maxLength, int code, int tooLongCode) {
  long start = 0;
  if (!atToken(stream, &start)) return code;
  int length = 0;
  int c = std::fgetc(stream);
  for (; c != EOF && !isSpace(c); c = std::fgetc(stream)) {
    if (length == maxLength) return failAt(stream, start, tooLongCode);
    word[length++] = static_cast<char>(c);
  }
  if (c != EOF) std::ungetc(c, stream);
  word[length] = '\0';
  return length == 0 ? code : 0;
}

int readKeyword(FILE *stream, KeywordTable table, int *value, int code) {
  long start = 0;
  if (!atToken(stream, &start)) return code;
  char word[kKeywordMax + 1];
  if (int rc = readWord(stream, word, kKeywordMax, code, code); rc != 0) return rc;
  for (std::size_t i = 0; i < table.size(); ++i) {
    if (std::strcmp(word, table[i]) == 0) {
      *value = static_cast<int>(i);
      return 0;
    }
  }
  return failAt(stream, start, code);
}

char **allocateTextSlots(int n, int slotSize) {
  if (n <= 0) return nullptr;
  auto count = static_cast<std::size_t>(n);
  auto *block = static_cast<char *>(std::calloc(count, static_cast<std::size_t>(slotSize)));
  auto **slots = static_cast<char **>(std::malloc(count * sizeof(char *)));
  if (block == nullptr || slots == nullptr) {
    std::free(block);
    std::free(slots);
    return nullptr;
  }
  for (std::size_t i = 0; i < count; ++i) slots[i] = block + i * static_cast<std::size_t>(slotSize);
  return slots;
}

void freeTextSlots(char **slots) {
  if (slots == nullptr) return;
  std::free(slots[0]);
  std::free(slots);
}

char *allocateText(int slotSize) {
  return static_cast<char *>(std::calloc(static_cast<std::size_t>(slotSize), 1));
}

void FieldPrinter::heading(const char *name) const {
  std::fprintf(stream_, "%s%s:\n", prefix_, name);
}

void FieldPrinter::itemHeading(const char *name, const char *kind, int index) const {
  std::fprintf(stream_, "%s%s for %s %3d\n", prefix_, name, kind, index);
}

void FieldPrinter::keywordItems(const char *name, const char *kind, const int *array, int n,
                                KeywordTable table) const {
  if (array == nullptr) return notAllocated(name);
  for (int i = 0; i < n; ++i) {
    startItem(name, kind, i);
    std::fprintf(stream_, "%s\n", keywordOf(table, array[i]));
  }
}

}  // namespace nuvo
