// Temporary streams for the tests: a file holding given bytes, read back from its
// start and closed at the end of the scope; the text a printer writes; and a
// stream too small for what is written to it.
#pragma once

#include <cstdio>
#include <sstream>
#include <string>
#include <vector>

namespace nuvo::test {

class TempStream {
 public:
  TempStream() : file_(std::tmpfile()) {}
  explicit TempStream(const std::string &content) : TempStream() {
    std::fwrite(content.data(), 1, content.size(), file_);
    std::rewind(file_);
  }
  ~TempStream() { std::fclose(file_); }
  TempStream(const TempStream &) = delete;
  TempStream &operator=(const TempStream &) = delete;

  FILE *get() const { return file_; }

  // Everything written so far; the stream is rewound for reading afterwards.
  std::string contents() const {
    std::rewind(file_);
    std::string text;
    for (int c = std::fgetc(file_); c != EOF; c = std::fgetc(file_)) text += static_cast<char>(c);
    std::rewind(file_);
    return text;
  }
  // The contents split into lines (without their line feeds).
  std::vector<std::string> lines() const {
    std::vector<std::string> out;
    std::istringstream in(contents());
    for (std::string line; std::getline(in, line);) out.push_back(line);
    return out;
  }

 private:
  FILE *file_;
};

// Everything `print` writes to a stream, as one string.
template <typename Print>
std::string printed(Print &&print) {
  TempStream stream;
  print(stream.get());
  return stream.contents();
}

// A write-only stream of `capacity` bytes without buffering: a write that does not
// fit fails at once, so a writer's code for each field can be observed.
class FullStream {
 public:
  explicit FullStream(std::size_t capacity)
      : buffer_(capacity + 1, '\0'), file_(fmemopen(buffer_.data(), capacity, "w")) {
    std::setvbuf(file_, nullptr, _IONBF, 0);
  }
  ~FullStream() { std::fclose(file_); }
  FullStream(const FullStream &) = delete;
  FullStream &operator=(const FullStream &) = delete;

  FILE *get() const { return file_; }

 private:
  std::string buffer_;
  FILE *file_;
};

}  // namespace nuvo::test
