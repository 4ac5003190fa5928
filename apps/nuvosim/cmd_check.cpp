// nuvosim check FILE.in: reads a parameter file, loads the files it names and
// validates the simulation input, without simulating.
#include <memory>

#include "commands.hpp"
#include "files.hpp"
#include "parameter_file.hpp"
#include "progress_display.hpp"
#include "records.hpp"

namespace nuvo::cli {

namespace {

struct CheckOptions {
  std::string parameterFile;
};

int runCheck(const CheckOptions &options) {
  const std::string &path = options.parameterFile;
  SimInputASCII ascii;
  if (const int status = readParameterFile(path, *ascii.get()); status != kSuccess) return status;
  const runfile::FolderChange folder(runfile::parameterFolder(path));
  if (!entered(folder)) return kInputError;
  SimInput input;
  if (const int status = loadSimInput(path, *ascii.get(), *input.get()); status != kSuccess) {
    return status;
  }
  ProgressDisplay display(false, true);
  int verdict = 0;
  const int rc =
      NUVOValidateSimInput(input.get(), display.monitor(), ProgressDisplay::callback, &verdict);
  if (rc != 0 || verdict != 0) {
    reportFailure(path, libraryMessage(rc != 0 ? rc : verdict));
    return kInputError;
  }
  const nuvo_grid &grid = *input->simImage->grid;
  std::printf(
      "%s: valid: %d x %d x %d grid, %d variable(s), %d training image(s), "
      "%d realization(s), %d warning(s)\n",
      path.c_str(), grid.nx, grid.ny, grid.nz, input->nvar, input->ntrainImage, input->nrealization,
      display.warningCount());
  return kSuccess;
}

}  // namespace

void addCheckCommand(CLI::App &app) {
  auto options = std::make_shared<CheckOptions>();
  CLI::App *command = app.add_subcommand(
      "check", "Read a parameter file, load the files it names and validate the input");
  command->footer(
      "Warnings are listed as they come, then the first error, if any (exit status 2).\n"
      "Relative file names inside the parameter file are taken from its own folder.");
  command->add_option("FILE", options->parameterFile, "Parameter file (.in)")->required();
  setAction(command, [options] { return runCheck(*options); });
}

}  // namespace nuvo::cli
