// Parameter files on the command line: reading one, with the place where reading
// stopped on failure, and loading the files it names from its own folder.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "nuvo_siminput.h"

namespace nuvo::cli {

// Makes `folder` the working directory from construction to destruction, which
// restores the previous one; an empty folder changes nothing. Relative file names
// inside a parameter file are thereby taken from the parameter file's folder.
class FolderChange {
 public:
  explicit FolderChange(const std::filesystem::path &folder);
  ~FolderChange();
  FolderChange(const FolderChange &) = delete;
  FolderChange &operator=(const FolderChange &) = delete;

  // False (after reporting it) when the folder could not be entered.
  bool entered() const { return entered_; }

 private:
  std::filesystem::path previous_;
  bool entered_ = true;
};

// The folder relative names of the parameter file `path` are taken from.
std::filesystem::path parameterFolder(const std::string &path);

// Reads the parameter file `path` into the initialised `ascii`. On failure
// reports the library's message with the line where reading stopped and the
// token there, and returns kInputError.
int readParameterFile(const std::string &path, nuvo_simInputASCII &ascii);

// Loads every file `ascii` names into the initialised `input` (run inside the
// parameter file's folder). On failure reports the library's message with the
// file concerned and its problem, and returns kInputError.
int loadSimInput(const std::string &path, const nuvo_simInputASCII &ascii, nuvo_simInput &input);

// The input files that `ascii` names (training images, conditioning data, mask,
// transform maps, constraint files), as written in the parameter file.
std::vector<std::string> inputFiles(const nuvo_simInputASCII &ascii);

// The files a simulation of `ascii` writes, as named in the parameter file:
// realizations, additional maps and report.
std::vector<std::string> outputFiles(const nuvo_simInputASCII &ascii);

}  // namespace nuvo::cli
