// nuvosim run FILE.in: reads a parameter file, loads the files it names,
// validates the input and simulates, writing the files the parameter file names.
#include <unistd.h>

#include <filesystem>
#include <memory>
#include <system_error>

#include "commands.hpp"
#include "files.hpp"
#include "parameter_file.hpp"
#include "progress_display.hpp"
#include "records.hpp"

namespace nuvo::cli {

namespace {

namespace fs = std::filesystem;

using runfile::parameterFolder;

constexpr int kOutputNotOpened = -110;
constexpr std::size_t kFilesListed = 10;

struct RunOptions {
  std::string parameterFile;
  bool quiet = false;
};

// Prints `files` (at most kFilesListed of them) on `stream`, one per line.
void listFiles(std::FILE *stream, const std::vector<std::string> &files) {
  for (std::size_t k = 0; k < files.size() && k < kFilesListed; ++k) {
    std::fprintf(stream, "  %s\n", files[k].c_str());
  }
  if (files.size() > kFilesListed) {
    std::fprintf(stream, "  ... and %zu more\n", files.size() - kFilesListed);
  }
}

int runRun(const RunOptions &options) {
  const std::string &path = options.parameterFile;
  SimInputASCII ascii;
  if (const int status = readParameterFile(path, *ascii.get()); status != kSuccess) return status;
  const std::vector<std::string> outputs = runfile::outputFiles(*ascii.get());
  // The same files named from the folder the command was started in.
  std::vector<std::string> shownOutputs;
  for (const std::string &name : outputs) {
    shownOutputs.push_back((parameterFolder(path) / name).lexically_normal().string());
  }

  const runfile::FolderChange folder(parameterFolder(path));
  if (!entered(folder)) return kInputError;
  SimInput input;
  if (const int status = loadSimInput(path, *ascii.get(), *input.get()); status != kSuccess) {
    return status;
  }
  input->consoleAppFlag = 1;
  if (const std::string failure = runfile::createOutputFolders(outputs); !failure.empty()) {
    std::fprintf(stderr, "nuvosim: %s\n", failure.c_str());
    return kOutputError;
  }

  const fs::file_time_type start = fs::file_time_type::clock::now();
  ProgressDisplay display(!options.quiet && ::isatty(STDERR_FILENO) != 0, !options.quiet);
  SimOutput output;
  const int rc = NUVOSim(input.get(), output.get(), display.monitor(), ProgressDisplay::callback);
  display.clearBar();
  if (rc != 0) {
    reportFailure(path, libraryMessage(rc));
    std::vector<std::string> written;
    for (std::size_t k = 0; k < outputs.size(); ++k) {
      std::error_code error;
      const fs::file_time_type time = fs::last_write_time(outputs[k], error);
      if (!error && time >= start) written.push_back(shownOutputs[k]);
    }
    if (!written.empty()) {
      std::fprintf(stderr, "nuvosim: written before the failure (the last may be incomplete):\n");
      listFiles(stderr, written);
    }
    return rc == kOutputNotOpened ? kOutputError : kInputError;
  }
  std::printf("%d realization(s) in %.1f s, %d warning(s), %zu file(s) written:\n",
              input->nrealization, display.elapsedSeconds(), display.warningCount(),
              shownOutputs.size());
  listFiles(stdout, shownOutputs);
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
      "On a terminal a progress bar is drawn on stderr; warnings are printed as they come.\n"
      "A failure prints the library's message (with the line where reading stopped for a\n"
      "malformed file) and the output files written before it. Ctrl-C stops the simulation\n"
      "the same way (a second Ctrl-C ends the program at once).");
  command->add_option("FILE", options->parameterFile, "Parameter file (.in)")->required();
  command->add_flag("-q,--quiet", options->quiet, "No progress bar and no warnings");
  setAction(command, [options] { return runRun(*options); });
}

}  // namespace nuvo::cli
