// nuvosim run FILE.in: reads a parameter file, loads the files it names,
// validates the input and simulates, writing the files the parameter file names.
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <memory>
#include <thread>

#include "commands.hpp"
#include "files.hpp"
#include "nuvo_omp.h"
#include "nuvo_text.h"
#include "progress_display.hpp"
#include "simulation_setup.hpp"
#include "staged_outputs.hpp"
#include "validation_place.hpp"

namespace nuvo::cli {

namespace {

namespace fs = std::filesystem;

constexpr int kOutputNotOpened = -110;
constexpr int kStopped = -1000;
constexpr std::size_t kFilesListed = 10;

struct RunOptions {
  std::string parameterFile;
  bool quiet = false;
  bool force = false;
  int seed = 0;
  int nrealization = 1;
  std::string outputDir;
  int nthread = 0;  // 0: every hardware thread
  CLI::Option *seedOption = nullptr;
  CLI::Option *nrealizationOption = nullptr;
};

// The settings of the command line that replace those of the parameter file.
// Returns kSuccess or kUsageError (reported).
int applyOptions(const RunOptions &options, nuvo_simInputASCII &ascii) {
  if (options.seedOption->count() > 0) ascii.seed = options.seed;
  if (options.nrealizationOption->count() > 0) ascii.nrealization = options.nrealization;
  if (options.outputDir.empty()) return kSuccess;
  // Taken from the folder the command started in, before the parameter file's.
  const fs::path folder = fs::absolute(options.outputDir);
  for (char *slot : outputNameSlots(ascii, ascii.nsimVar)) {
    const std::string name = (folder / fs::path(slot).filename()).string();
    if (name.size() > NUVO_FILE_NAME_MAX) {
      reportFailure(
          name, "name too long (at most " + std::to_string(NUVO_FILE_NAME_MAX) + " characters)");
      return kUsageError;
    }
    std::memcpy(slot, name.c_str(), name.size() + 1);
  }
  return kSuccess;
}

// Prints `files` (at most kFilesListed of them) on `stream`, one per line.
void listFiles(std::FILE *stream, const std::vector<std::string> &files) {
  for (std::size_t k = 0; k < files.size() && k < kFilesListed; ++k) {
    std::fprintf(stream, "  %s\n", files[k].c_str());
  }
  if (files.size() > kFilesListed) {
    std::fprintf(stream, "  ... and %zu more\n", files.size() - kFilesListed);
  }
}

// The outputs of `ascii` named from the folder the command was started in.
std::vector<std::string> shownOutputs(const std::string &path, const nuvo_simInputASCII &ascii) {
  std::vector<std::string> shown;
  for (const std::string &name : outputFiles(ascii)) {
    shown.push_back((parameterFolder(path) / name).lexically_normal().string());
  }
  return shown;
}

// After an interruption: the outputs complete so far keep their names, the
// status tells the signal (128 + its number).
int reportStop(const std::string &path, StagedOutputs &outputs) {
  const int number = ProgressDisplay::stopSignal();
  reportFailure(path, libraryMessage(kStopped) + " (signal " + std::to_string(number) + ")");
  if (outputs.commit() != kSuccess) return kOutputError;
  if (!outputs.committed().empty()) {
    std::fprintf(stderr, "nuvosim: complete outputs kept:\n");
    listFiles(stderr, outputs.committed());
  }
  return 128 + number;
}

int runRun(const RunOptions &options) {
  const std::string &path = options.parameterFile;
  // From the start, so that a signal while the files load stops the run as well.
  ProgressDisplay display(!options.quiet && ::isatty(STDERR_FILENO) != 0, !options.quiet);
  SimulationSetup setup(path);
  if (const int status = setup.read(); status != kSuccess) return status;
  if (const int status = applyOptions(options, setup.ascii()); status != kSuccess) return status;
  if (const int status = setup.check(); status != kSuccess) return status;
  if (const int status = setup.enter(); status != kSuccess) return status;
  StagedOutputs outputs(setup.ascii(), shownOutputs(path, setup.ascii()), options.force);
  if (const int status = outputs.checkExisting(); status != kSuccess) return status;
  if (const int status = setup.load(); status != kSuccess) return status;
  nuvo_simInput &input = setup.input();
  input.consoleAppFlag = 1;
  if (const int status = outputs.stage(input); status != kSuccess) return status;

  display.addWarnings(setup.warnings());
  SimOutput output;
  errno = 0;
  const int nthread = options.nthread > 0
                          ? options.nthread
                          : std::max(1, static_cast<int>(std::thread::hardware_concurrency()));
  const int rc =
      nthread == 1
          ? NUVOSim(&input, output.get(), display.monitor(), ProgressDisplay::callback)
          : NUVOOMPSim(&input, output.get(), display.monitor(), ProgressDisplay::callback, nthread);
  const int writeError = errno;
  display.clearBar();
  if (rc == kStopped && ProgressDisplay::stopSignal() != 0) return reportStop(path, outputs);
  if (rc == kOutputNotOpened) {
    outputs.reportWriteFailure(writeError != 0 ? std::strerror(writeError) : "reason unknown");
  } else if (rc != 0) {
    const std::string place = validationPlace(rc, input);
    reportFailure(path, (place.empty() ? "" : place + ": ") + libraryMessage(rc));
  }
  if (rc != 0) {
    std::fprintf(stderr, "nuvosim: no output written\n");
    return rc == kOutputNotOpened ? kOutputError : kInputError;
  }
  if (const int status = outputs.commit(); status != kSuccess) return status;
  std::printf("%d realization(s) in %.1f s, %d warning(s), %zu file(s) written:\n",
              input.nrealization, display.elapsedSeconds(), display.warningCount(),
              outputs.committed().size());
  listFiles(stdout, outputs.committed());
  return kSuccess;
}

}  // namespace

void addRunCommand(CLI::App &app) {
  auto options = std::make_shared<RunOptions>();
  CLI::App *command =
      app.add_subcommand("run", "Read a parameter file, validate it and run the simulation");
  command->footer(
      "Relative file names inside the parameter file (training images, data, outputs) are\n"
      "taken from the parameter file's own folder: the command works there while it reads\n"
      "and simulates, so 'nuvosim run examples/x/x.in' works from any folder. Missing\n"
      "folders of output files are created.\n"
      "Outputs are written under temporary names (.nuvosim-PID-NAME) and renamed once the\n"
      "run has succeeded: a failed run writes nothing; an existing output is an error\n"
      "unless --force is given.\n"
      "On a terminal a progress bar is drawn on stderr; warnings are printed as they come.\n"
      "A failure prints the library's message (with the line where reading stopped for a\n"
      "malformed file). Ctrl-C or SIGTERM stops the simulation: the outputs complete so\n"
      "far are kept and the exit status is 128 + the signal's number (130 for Ctrl-C, 143\n"
      "for SIGTERM); a second signal ends the program at once.");
  command
      ->add_option("FILE", options->parameterFile,
                   "Parameter file (.in), or - for the standard input")
      ->required();
  command->add_flag("-q,--quiet", options->quiet, "No progress bar and no warnings");
  command->add_flag("-f,--force", options->force, "Replace outputs that exist already");
  options->seedOption = command->add_option("--seed", options->seed,
                                            "Seed of the first realization (replaces the file's)");
  options->nrealizationOption = command
                                    ->add_option("--nreal", options->nrealization,
                                                 "Number of realizations (replaces the file's)")
                                    ->check(numberCheck(true));
  command
      ->add_option("--output-dir", options->outputDir,
                   "Folder of every output (taken from the current folder when relative); the "
                   "names keep their last part")
      ->option_text("DIR");
  command
      ->add_option("--threads", options->nthread,
                   "Threads of the simulation (default: every hardware thread; 1 runs the "
                   "serial engine); the realizations are the same for any number")
      ->check(numberCheck(true));
  setAction(command, [options] { return runRun(*options); });
}

}  // namespace nuvo::cli
