// Parameter files on the command line: reading one, with the place where reading
// stopped on failure, and loading the files it names from its own folder
// (run_files.hpp holds what the front ends share).
#pragma once

#include <string>

#include "nuvo_siminput.h"
#include "run_files.hpp"

namespace nuvo::cli {

// Whether `folder` was entered; reports it when not.
bool entered(const runfile::FolderChange &folder);

// Reads the parameter file `path` into the initialised `ascii`. On failure
// reports the library's message with the line where reading stopped and the
// token there, and returns kInputError.
int readParameterFile(const std::string &path, nuvo_simInputASCII &ascii);

// Loads every file `ascii` names into the initialised `input` (run inside the
// parameter file's folder). On failure reports the library's message and returns
// kInputError.
int loadSimInput(const std::string &path, const nuvo_simInputASCII &ascii, nuvo_simInput &input);

}  // namespace nuvo::cli
