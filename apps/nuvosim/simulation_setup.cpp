#include "simulation_setup.hpp"

#include "commands.hpp"
#include "run_checks.hpp"

namespace nuvo::cli {

int SimulationSetup::check() {
  if (const int status = checkParameters(path_, ascii()); status != kSuccess) return status;
  warnings_ = warnAboutParameters(path_, ascii());
  return kSuccess;
}

int SimulationSetup::enter() {
  if (!folder_) folder_ = std::make_unique<FolderChange>(parameterFolder(path_));
  return entered(*folder_, parameterFolder(path_)) ? kSuccess : kInputError;
}

int SimulationSetup::load() {
  if (const int status = enter(); status != kSuccess) return status;
  if (const int status = loadSimInput(path_, ascii(), input()); status != kSuccess) return status;
  return checkLoadedValues(ascii(), input());
}

}  // namespace nuvo::cli
