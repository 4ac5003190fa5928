#include "parameter_file.hpp"

#include "commands.hpp"
#include "files.hpp"

namespace nuvo::cli {

namespace fs = std::filesystem;

using runfile::parameterFolder;

bool entered(const runfile::FolderChange &folder) {
  if (folder.failure().empty()) return true;
  std::fprintf(stderr, "nuvosim: %s\n", folder.failure().c_str());
  return false;
}

int readParameterFile(const std::string &path, nuvo_simInputASCII &ascii) {
  const File stream = openInput(path);
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
  const fs::path folder = parameterFolder(path);
  reportFailure(path, libraryMessage(rc) + runfile::unopenedInput(ascii, rc) +
                          " (names in the file are relative to " +
                          (folder.empty() ? std::string(".") : folder.string()) + ")");
  return kInputError;
}

}  // namespace nuvo::cli
