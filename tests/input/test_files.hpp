// Files for the input tests: a temporary folder, small GSLIB images and a point
// set to name in simulation inputs.
#pragma once

#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

namespace nuvo_test {

// A temporary folder, removed with its content at the end.
class TempFolder {
 public:
  TempFolder() {
    namespace fs = std::filesystem;
    std::string pattern = (fs::temp_directory_path() / "nuvo_input_XXXXXX").string();
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
    std::ofstream(file(name)) << content;
    return file(name);
  }
  std::string missing() const { return file("missing.gslib"); }

 private:
  std::string path_;
};

// GSLIB text image on a 2 x 2 x 1 grid with nvar variables v0, v1, ...
inline std::string gslibImage(int nvar) {
  std::ostringstream text;
  text << "2 2 1 1.0 1.0 1.0 0.0 0.0 0.0\n" << nvar << "\n";
  for (int iv = 0; iv < nvar; ++iv) text << 'v' << iv << '\n';
  for (int node = 0; node < 4; ++node) {
    for (int iv = 0; iv < nvar; ++iv) text << node % 2 << ' ';
    text << '\n';
  }
  return text.str();
}

inline constexpr char kPointSet[] = "2\n4\nx\ny\nz\nfacies\n0.5 0.5 0.5 1\n1.5 0.5 0.5 0\n";

}  // namespace nuvo_test
