// Parameter files on the command line: reading one, with the place where reading
// stopped on failure, and loading the files it names from its own folder.
#pragma once

#include <filesystem>
#include <string>
#include <utility>
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

// The folder relative names of the parameter file `path` are taken from: its
// own, or the current one for the standard input ("-") and pipes.
std::filesystem::path parameterFolder(const std::string &path);

// Reads the parameter file `path` ("-": the standard input; pipes are read too)
// into the initialised `ascii`. On failure
// reports the library's message with the line where reading stopped and the
// token there, and returns kInputError.
int readParameterFile(const std::string &path, nuvo_simInputASCII &ascii);

// Loads every file `ascii` names into the initialised `input` (run inside the
// parameter file's folder). On failure reports the library's message with the
// file concerned and its problem, and returns kInputError.
int loadSimInput(const std::string &path, const nuvo_simInputASCII &ascii, nuvo_simInput &input);

enum class InputKind { kImage, kPointSet, kBlockData };

// A file name of a parameter file: its owned buffer (NUVO_FILE_NAME_MAX + 1
// bytes) and what the file holds.
struct InputName {
  char *slot;
  InputKind kind;
};

// The input files that `ascii` names and uses, in the order they are loaded.
std::vector<InputName> inputNames(const nuvo_simInputASCII &ascii);

// The input files that `ascii` names (training images, conditioning data, mask,
// transform maps, constraint files), as written in the parameter file.
std::vector<std::string> inputFiles(const nuvo_simInputASCII &ascii);

// The owned buffers (NUVO_FILE_NAME_MAX + 1 bytes) of the output names in use in
// a simulation input or its text form, `nvar` its number of variables: the
// realization files or prefix, the prefixes of the maps asked for, the report.
template <typename Record>
std::vector<char *> outputNameSlots(Record &record, int nvar) {
  std::vector<char *> slots;
  int nnames = 0;
  if (record.outputSimJob == OUTPUT_SIM_ALL_IN_ONE_FILE ||
      record.outputSimJob == OUTPUT_SIM_ONE_FILE_PER_REALIZATION) {
    nnames = 1;
  } else if (record.outputSimJob == OUTPUT_SIM_ONE_FILE_PER_VARIABLE) {
    for (int v = 0; v < nvar; ++v) nnames += record.outputVarFlag[v] != 0;
  }
  for (int j = 0; j < nnames; ++j) slots.push_back(record.outputSimImageFileName[j]);
  const std::pair<signed char, char *> named[] = {
      {record.outputPathIndexFlag, record.outputPathIndexFileName},
      {record.outputErrorFlag, record.outputErrorFileName},
      {record.outputTiGridNodeIndexFlag, record.outputTiGridNodeIndexFileName},
      {record.outputTiIndexFlag, record.outputTiIndexFileName},
      {record.outputReportFlag, record.outputReportFileName}};
  for (const auto &[flag, slot] : named)
    if (flag && slot != nullptr) slots.push_back(slot);
  return slots;
}

// The files a simulation of `ascii` writes, as named in the parameter file:
// realizations, additional maps and report.
std::vector<std::string> outputFiles(const nuvo_simInputASCII &ascii);

}  // namespace nuvo::cli
