#include "parameter_file.hpp"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <system_error>

#include "commands.hpp"
#include "files.hpp"

namespace nuvo::cli {

namespace {

namespace fs = std::filesystem;

constexpr const char *kStandardInput = "-";

// The parameter file `path` ("-" for the standard input) as a seekable stream,
// which the reader needs to put back a token that fails: a pipe is copied into
// a temporary file first. Null after reporting a failure.
File openParameterFile(const std::string &path) {
  std::error_code error;
  if (path != kStandardInput && fs::is_regular_file(path, error)) return openInput(path);
  File copy{std::tmpfile()};
  const File opened{path == kStandardInput ? nullptr : std::fopen(path.c_str(), "rb")};
  std::FILE *from = path == kStandardInput ? stdin : opened.get();
  if (!copy || from == nullptr) {
    reportFailure(path, std::string("cannot be read (") + std::strerror(errno) + ")");
    return nullptr;
  }
  char buffer[1 << 14];
  for (std::size_t n = 0; (n = std::fread(buffer, 1, sizeof buffer, from)) > 0;)
    std::fwrite(buffer, 1, n, copy.get());
  std::rewind(copy.get());
  return copy;
}

}  // namespace

int readParameterFile(const std::string &path, nuvo_simInputASCII &ascii) {
  const File stream = openParameterFile(path);
  if (!stream) return kInputError;
  const int rc = NUVOReadSimInputASCII(&ascii, stream.get());
  if (rc == 0) return kSuccess;
  const std::string place = runfile::stopPlace(stream.get());
  reportFailure(place.empty() ? path : path + ": " + place, libraryMessage(rc));
  return kInputError;
}

int loadSimInput(const std::string &path, const nuvo_simInputASCII &ascii, nuvo_simInput &input) {
  const int rc = NUVOSimInputASCIIToSimInput(&ascii, &input);
  if (rc == 0) return kSuccess;
  // The library's code tells the kind of file, not which one: the first input
  // file with a problem is named, with the system's reason or the reader's message.
  const std::string which = runfile::firstInputProblem(ascii);
  const fs::path folder = parameterFolder(path);
  reportFailure(path, libraryMessage(rc) + which + "; names in the file are relative to " +
                          (folder.empty() ? std::string(".") : folder.string()));
  return kInputError;
}

bool entered(const FolderChange &change, const fs::path &folder) {
  if (change.failure().empty()) return true;
  reportFailure(folder.string(), change.failure());
  return false;
}

}  // namespace nuvo::cli
