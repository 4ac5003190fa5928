// Streams for the input tests: a temporary file holding a given text, and the
// text a printer wrote.
#pragma once

#include <cstdio>
#include <string>

namespace nuvo_test {

// A temporary stream holding `content`, positioned at its start.
struct TextStream {
  explicit TextStream(const std::string &content) : file(std::tmpfile()) {
    std::fputs(content.c_str(), file);
    std::rewind(file);
  }
  ~TextStream() { std::fclose(file); }
  TextStream(const TextStream &) = delete;
  TextStream &operator=(const TextStream &) = delete;
  FILE *file;
};

// Everything `print` writes to a stream, as one string.
template <typename Print>
std::string printed(Print &&print) {
  FILE *file = std::tmpfile();
  print(file);
  std::string text;
  std::rewind(file);
  for (int c = std::fgetc(file); c != EOF; c = std::fgetc(file)) text += static_cast<char>(c);
  std::fclose(file);
  return text;
}

}  // namespace nuvo_test
