// nuvosim check FILE.in: reads a parameter file, loads the files it names and
// validates the simulation input, without simulating.
#include <filesystem>
#include <memory>
#include <system_error>

#include "commands.hpp"
#include "files.hpp"
#include "nuvo_conditioning.h"
#include "progress_display.hpp"
#include "records.hpp"
#include "simulation_setup.hpp"
#include "validation_place.hpp"

namespace nuvo::cli {

namespace {

struct CheckOptions {
  std::string parameterFile;
};

int runCheck(const CheckOptions &options) {
  const std::string &path = options.parameterFile;
  SimulationSetup setup(path);
  for (auto step : {&SimulationSetup::read, &SimulationSetup::check, &SimulationSetup::load}) {
    if (const int status = (setup.*step)(); status != kSuccess) return status;
  }
  nuvo_simInput &input = setup.input();
  ProgressDisplay display(false, true);
  display.addWarnings(setup.warnings());
  int verdict = 0;
  const int rc =
      NUVOValidateSimInput(&input, display.monitor(), ProgressDisplay::callback, &verdict);
  if (rc != 0 || verdict != 0) {
    const int code = rc != 0 ? rc : verdict;
    const std::string place = validationPlace(code, input);
    reportFailure(path, (place.empty() ? "" : place + ": ") + libraryMessage(code));
    return kInputError;
  }
  // What run reports only once it simulates: the warnings of merging the
  // conditioning data (ignored variables, points outside the grid, conflicts).
  Image merged;
  int nignored = 0;
  int nconflict = 0;
  int rcMerge = NUVOCopyImage(input.simImage, merged.get());
  if (rcMerge == 0) {
    rcMerge = NUVOSimIntegrateConditioningData(&input, merged.get(), &nignored, &nconflict,
                                               display.monitor(), ProgressDisplay::callback);
  }
  if (rcMerge != 0) {
    reportFailure(path, libraryMessage(rcMerge));
    return kInputError;
  }
  for (const std::string &name : outputFiles(setup.ascii())) {
    std::error_code error;
    if (!std::filesystem::exists(name, error)) continue;
    std::fprintf(stderr, "nuvosim: %s: warning: the output exists already; run needs --force\n",
                 (parameterFolder(path) / name).lexically_normal().c_str());
    display.addWarnings(1);
  }
  const nuvo_grid &grid = *input.simImage->grid;
  std::printf(
      "%s: valid: %d x %d x %d grid, %d variable(s), %d training image(s), "
      "%d realization(s), %d warning(s)\n",
      path.c_str(), grid.nx, grid.ny, grid.nz, input.nvar, input.ntrainImage, input.nrealization,
      display.warningCount());
  return kSuccess;
}

}  // namespace

void addCheckCommand(CLI::App &app) {
  auto options = std::make_shared<CheckOptions>();
  CLI::App *command = app.add_subcommand(
      "check", "Read a parameter file, load the files it names and validate the input");
  command->footer(
      "A dry run of 'run': everything run refuses or warns about before it simulates\n"
      "(settings, format strings, outputs, memory, values, validation, the conditioning\n"
      "data merged onto the grid, outputs that exist already) is reported.\n"
      "Warnings are listed as they come, then the first error, if any (exit status 2).\n"
      "Relative file names inside the parameter file are taken from its own folder.");
  command
      ->add_option("FILE", options->parameterFile,
                   "Parameter file (.in), or - for the standard input")
      ->required();
  setAction(command, [options] { return runCheck(*options); });
}

}  // namespace nuvo::cli
