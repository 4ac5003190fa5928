// A temporary folder removed with its content at the end of the scope, and the
// whole content of a file as text.
#pragma once

#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

namespace nuvo_test {

inline std::string fileText(const std::filesystem::path &path) {
  std::ifstream in(path, std::ios::binary);
  std::stringstream text;
  text << in.rdbuf();
  return text.str();
}

class TempFolder {
 public:
  TempFolder() {
    std::string pattern = (std::filesystem::temp_directory_path() / "nuvo_test_XXXXXX").string();
    path_ = mkdtemp(pattern.data());
  }
  ~TempFolder() { std::filesystem::remove_all(path_); }
  TempFolder(const TempFolder &) = delete;
  TempFolder &operator=(const TempFolder &) = delete;

  const std::string &path() const { return path_; }
  // The full name of a file of the folder.
  std::string file(const std::string &name) const { return path_ + "/" + name; }
  // Writes a file of the folder and returns its full name.
  std::string write(const std::string &name, const std::string &content) const {
    std::ofstream(file(name), std::ios::binary) << content;
    return file(name);
  }
  std::string missing() const { return file("missing.gslib"); }

 private:
  std::string path_;
};

}  // namespace nuvo_test
