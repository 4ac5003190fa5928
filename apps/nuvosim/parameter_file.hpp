// Parameter files on the command line: reading one, with the place where reading
// stopped on failure, and loading the files it names from its own folder
// (run_files.hpp holds what the front ends share).
#pragma once

#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include "nuvo_siminput.h"
#include "run_files.hpp"

namespace nuvo::cli {

using runfile::FolderChange;
using runfile::inputFiles;
using runfile::InputKind;
using runfile::InputName;
using runfile::inputNames;
using runfile::outputFiles;
using runfile::parameterFolder;

// Whether `folder` (made the working directory) was entered; reports it when not.
bool entered(const FolderChange &change, const std::filesystem::path &folder);

// Reads the parameter file `path` ("-": the standard input; pipes are read too)
// into the initialised `ascii`. On failure
// reports the library's message with the line where reading stopped and the
// token there, and returns kInputError.
int readParameterFile(const std::string &path, nuvo_simInputASCII &ascii);

// Loads every file `ascii` names into the initialised `input` (run inside the
// parameter file's folder). On failure reports the library's message with the
// file concerned and its problem, and returns kInputError.
int loadSimInput(const std::string &path, const nuvo_simInputASCII &ascii, nuvo_simInput &input);

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

}  // namespace nuvo::cli
