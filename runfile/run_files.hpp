// Running a parameter file the way the command line does, shared by the front ends
// (the nuvosim program and the Python module): where reading stopped, which input
// file failed to load, which files a run writes, and the folder it runs in.
#pragma once

#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

#include "nuvo_siminput.h"

namespace nuvo::runfile {

// Makes `folder` the working directory from construction to destruction, which
// restores the previous one; an empty folder changes nothing. Relative file names
// inside a parameter file are thereby taken from the parameter file's folder.
class FolderChange {
 public:
  explicit FolderChange(const std::filesystem::path &folder);
  ~FolderChange();
  FolderChange(const FolderChange &) = delete;
  FolderChange &operator=(const FolderChange &) = delete;

  // Empty when the folder was entered, else why it could not be.
  const std::string &failure() const { return failure_; }

 private:
  std::filesystem::path previous_;
  std::string failure_;
};

// The folder relative names of the parameter file `path` are taken from.
std::filesystem::path parameterFolder(const std::string &path);

// Where reading of a parameter file stopped, from the stream's position after the
// failure: the line, then the token that could not be read (at it), or the value
// read and refused (just after it), or the end of the file. Empty when the
// position cannot be told.
std::string stopPlace(std::FILE *stream);

// ": <name>" for the first input file of `ascii` that the loading code `rc` may be
// about and that cannot be opened, else nothing.
std::string unopenedInput(const nuvo_simInputASCII &ascii, int rc);

// The files a simulation of `ascii` writes, as named in the parameter file:
// realizations, additional maps and report.
std::vector<std::string> outputFiles(const nuvo_simInputASCII &ascii);

// Creates the missing folders of `files` (names relative to the working
// directory). Empty on success, else the file and the reason.
std::string createOutputFolders(const std::vector<std::string> &files);

}  // namespace nuvo::runfile
