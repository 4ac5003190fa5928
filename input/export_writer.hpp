// The pieces every part of the parameter-file exporter writes with: lines of the
// parameter file at the chosen comment level, and the data files written beside
// it in the export directory.
#pragma once

#include <cstdio>
#include <initializer_list>
#include <memory>
#include <string>

#include "foundation/check.hpp"

namespace nuvo {

inline constexpr int kExportCannotOpen = -7100;
inline constexpr int kExportBadPrefix = -7101;

// Comment levels: values only, section headings, explanatory notes and remarks.
inline constexpr int kCommentHeadings = 1;
inline constexpr int kCommentNotes = 2;

struct FileCloser {
  void operator()(FILE *file) const { std::fclose(file); }
};
using File = std::unique_ptr<FILE, FileCloser>;

// printf into a std::string.
template <typename... Args>
std::string formatted(const char *format, Args... args) {
  int length = std::snprintf(nullptr, 0, format, args...);
  std::string text(static_cast<std::size_t>(length > 0 ? length : 0), '\0');
  std::snprintf(text.data(), text.size() + 1, format, args...);
  return text;
}

class ParameterFileWriter {
 public:
  ParameterFileWriter(FILE *out, const char *directory, const char *prefix, const char *endOfLine,
                      int commentLevel)
      : out_(out), directory_(directory), prefix_(prefix), eol_(endOfLine), level_(commentLevel) {}

  // A section heading on one line or more, after an empty line unless it opens
  // the file (from level 1).
  void heading(std::initializer_list<const char *> lines) const;
  void heading(const char *text) const { heading({text}); }
  void heading(const std::string &text) const { heading({text.c_str()}); }
  // The explanatory notes of a section, one "//" comment per line (level 2).
  void notes(std::initializer_list<const char *> lines) const;

  // One line: the values written with format, then " // remark" at level 2.
  template <typename... Args>
  void line(const std::string &remark, const char *format, Args... args) const {
    std::fprintf(out_, format, args...);
    endLine(remark);
  }
  // A line holding one word.
  void word(const std::string &remark, const char *text) const { line(remark, "%s", text); }

  // The name of a data file: the prefix, the suffix, the index (unless it is
  // negative) and the extension.
  std::string fileName(const char *suffix, int index, const char *extension) const;
  // The prefix followed by suffix, for names that are only prefixes.
  std::string prefixed(const char *suffix) const { return prefix_ + suffix; }

  // Creates the data file `name` in the export directory and fills it with
  // write(FILE*). Returns 0, -7100 when it cannot be created or written, or the
  // code of write.
  template <typename Write>
  int writeDataFile(const std::string &name, Write write) const {
    File file(std::fopen((directory_ + "/" + name).c_str(), "w"));
    NUVO_FAIL_IF(file == nullptr, kExportCannotOpen);
    NUVO_TRY(write(file.get()));
    return close(file);
  }

  // Closes a file written by the exporter: -7100 when what was written did not
  // reach it.
  static int close(File &file);

 private:
  void endLine(const std::string &remark) const;

  FILE *out_;
  std::string directory_;
  std::string prefix_;
  const char *eol_;
  int level_;
};

}  // namespace nuvo
