// Files of the command line: input streams owned for the duration of a command,
// output written all-or-nothing, and the one way failures are reported.
#pragma once

#include <cstdio>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>

#include "run_files.hpp"

namespace nuvo::cli {

using runfile::File;
using runfile::libraryMessage;
using runfile::openReadable;

// A new folder of its own in the temporary folder, for intermediate files, removed
// with everything in it on destruction; path() is empty when it could not be made.
class ScratchFolder {
 public:
  ScratchFolder();
  ~ScratchFolder();
  ScratchFolder(const ScratchFolder &) = delete;
  ScratchFolder &operator=(const ScratchFolder &) = delete;
  const std::filesystem::path &path() const { return path_; }

 private:
  std::filesystem::path path_;
};

// Prints "nuvosim: <path>: <message>" on stderr.
void reportFailure(const std::string &path, const std::string &message);

// Opens `path` as openReadable does; on failure reports the library's "can not be
// opened" message with the path and the reason, and returns null.
File openInput(const std::string &path);

// Writes a file through `write` (which returns an empty text on success, else
// the reason of the failure). The content goes to "<path>.tmp", renamed to `path`
// once complete; on any failure the temporary file is removed, the reason is
// reported and kOutputError returned, so `path` is never left half written.
int writeOutput(const std::string &path, const std::function<std::string(std::FILE *)> &write);

}  // namespace nuvo::cli
