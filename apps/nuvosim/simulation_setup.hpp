// The steps that check and run share before a simulation: the parameter file read
// and checked, then the files it names loaded from its folder and their values
// checked.
#pragma once

#include <memory>
#include <string>

#include "parameter_file.hpp"
#include "records.hpp"

namespace nuvo::cli {

class SimulationSetup {
 public:
  explicit SimulationSetup(std::string path) : path_(std::move(path)) {}

  // Reads the parameter file. Returns kSuccess or kInputError (reported).
  int read() { return readParameterFile(path_, *ascii_.get()); }
  // The command line's checks of the parameter file as read; prints its warnings.
  // Returns kSuccess or kInputError (reported).
  int check();
  // Enters the parameter file's folder, where its relative names are taken from,
  // for the lifetime of the setup. Returns kSuccess or kInputError (reported).
  int enter();
  // Enters the folder (when not done yet), loads the files the parameter file
  // names and checks their values. Returns kSuccess or kInputError (reported).
  int load();

  const std::string &path() const { return path_; }
  nuvo_simInputASCII &ascii() { return *ascii_.get(); }
  nuvo_simInput &input() { return *input_.get(); }
  // Warnings printed by check.
  int warnings() const { return warnings_; }

 private:
  std::string path_;
  SimInputASCII ascii_;
  SimInput input_;
  std::unique_ptr<FolderChange> folder_;
  int warnings_ = 0;
};

}  // namespace nuvo::cli
