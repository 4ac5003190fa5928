// Running a parameter file the way the command line does, shared by the front ends
// (the nuvosim program and the Python module): the library's messages, where
// reading stopped, which input file fails to load, which files a run writes, and
// the folder it runs in.
#pragma once

#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "nuvo_siminput.h"

namespace nuvo::runfile {

// The library's text for the return code rc (negative), without its line end.
std::string libraryMessage(int rc);

struct FileCloser {
  void operator()(std::FILE *stream) const { std::fclose(stream); }
};
using File = std::unique_ptr<std::FILE, FileCloser>;

// Opens `path` for binary reading when it is a file with something in it; else
// returns null with the reason (a folder, empty, or the system's reason).
File openReadable(const std::string &path, std::string &reason);

// Makes `folder` the working directory from construction to destruction, which
// restores the previous one; an empty folder changes nothing. Relative file names
// inside a parameter file are thereby taken from the parameter file's folder.
class FolderChange {
 public:
  explicit FolderChange(const std::filesystem::path &folder);
  ~FolderChange();
  FolderChange(const FolderChange &) = delete;
  FolderChange &operator=(const FolderChange &) = delete;

  // Empty when the folder was entered, else why it could not be (the folder
  // not named).
  const std::string &failure() const { return failure_; }

 private:
  std::filesystem::path previous_;
  std::string failure_;
};

// The folder relative names of the parameter file `path` are taken from: its
// own, or the current one for the standard input ("-") and pipes.
std::filesystem::path parameterFolder(const std::string &path);

// Where reading of a parameter file stopped, from the stream's position after the
// failure: the line, then the token that could not be read (at it), or the value
// read and refused (just after it), or the end of the file. Empty when the
// position cannot be told.
std::string stopPlace(std::FILE *stream);

enum class InputKind { kImage, kPointSet, kBlockData };

// A file name of a parameter file: its owned buffer (NUVO_FILE_NAME_MAX + 1
// bytes) and what the file holds.
struct InputName {
  char *slot;
  InputKind kind;
};

// The input files that `ascii` names and uses (training images, conditioning
// data, mask, transform maps, constraint files), in the order they are loaded.
std::vector<InputName> inputNames(const nuvo_simInputASCII &ascii);

// The same names, as written in the parameter file.
std::vector<std::string> inputFiles(const nuvo_simInputASCII &ascii);

// ": <name> (<problem>)" for the first input file of `ascii` that does not read
// as the library reads it (the system's reason when it cannot be opened, a
// folder, an empty file, or the reader's message), else nothing. Names are
// relative to the working directory.
std::string firstInputProblem(const nuvo_simInputASCII &ascii);

// The files a simulation of `ascii` writes, as named in the parameter file:
// realizations, additional maps and report.
std::vector<std::string> outputFiles(const nuvo_simInputASCII &ascii);

// Creates the missing folders of `files` (names relative to the working
// directory). Empty on success, else the file and the reason.
std::string createOutputFolders(const std::vector<std::string> &files);

}  // namespace nuvo::runfile
