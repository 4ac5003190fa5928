#include "run_file.hpp"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <thread>
#include <vector>

#include "image_arrays.hpp"
#include "library_error.hpp"
#include "nuvo_omp.h"
#include "progress_bridge.hpp"
#include "records.hpp"
#include "run_files.hpp"

namespace nuvo::python {

namespace {

namespace fs = std::filesystem;

constexpr int kInputNotOpened = -109;

struct FileCloser {
  void operator()(std::FILE *stream) const { std::fclose(stream); }
};

void readParameterFile(const std::string &path, nuvo_simInputASCII &ascii) {
  const std::unique_ptr<std::FILE, FileCloser> stream{std::fopen(path.c_str(), "rb")};
  if (!stream) throw LibraryError(kInputNotOpened, path);
  if (const int rc = NUVOReadSimInputASCII(&ascii, stream.get()); rc != 0) {
    const std::string place = runfile::stopPlace(stream.get());
    throw LibraryError(rc, place.empty() ? path : path + ": " + place);
  }
}

// Makes `ascii` run its realization r alone: seed + r * seedIncrement with 32-bit
// wrap-around, as the library derives it inside a longer run.
void keepRealization(nuvo_simInputASCII &ascii, int r) {
  if (r >= ascii.nrealization) throw std::invalid_argument("no such realization in the file");
  ascii.seed = static_cast<int>(static_cast<unsigned int>(ascii.seed) +
                                static_cast<unsigned int>(r) *
                                    static_cast<unsigned int>(ascii.seedIncrement));
  ascii.nrealization = 1;
}

void writeNoFiles(nuvo_simInputASCII &ascii) {
  ascii.outputSimJob = OUTPUT_SIM_NO_FILE;
  ascii.outputPathIndexFlag = 0;
  ascii.outputErrorFlag = 0;
  ascii.outputTiGridNodeIndexFlag = 0;
  ascii.outputTiIndexFlag = 0;
  ascii.outputReportFlag = 0;
}

// Loads, simulates and, on failure, removes the output files written since the
// start. Runs in the parameter file's folder, without the GIL. Returns the
// library's code; throws LibraryError for what fails before the simulation.
// The working directory belongs to the whole process, so runs started from
// several Python threads take their turns.
int simulate(const std::string &path, const nuvo_simInputASCII &ascii, nuvo_simInput &input,
             nuvo_simOutput &output, ProgressBridge &bridge, int threads) {
  static std::mutex folderInUse;
  const std::lock_guard<std::mutex> turn(folderInUse);
  const fs::path where = runfile::parameterFolder(path);
  const runfile::FolderChange folder(where);
  if (!folder.failure().empty()) throw std::runtime_error(where.string() + ": " + folder.failure());
  if (const int rc = NUVOSimInputASCIIToSimInput(&ascii, &input); rc != 0) {
    throw LibraryError(rc, path + runfile::firstInputProblem(ascii));
  }
  input.consoleAppFlag = 0;
  const std::vector<std::string> outputs = runfile::outputFiles(ascii);
  if (const std::string failure = runfile::createOutputFolders(outputs); !failure.empty()) {
    throw std::runtime_error(failure);
  }
  const fs::file_time_type start = fs::file_time_type::clock::now();
  const int nthread =
      threads > 0 ? threads : std::max(1, static_cast<int>(std::thread::hardware_concurrency()));
  const int rc = nthread == 1 ? NUVOSim(&input, &output, bridge.monitor(), ProgressBridge::callback)
                              : NUVOOMPSim(&input, &output, bridge.monitor(),
                                           ProgressBridge::callback, nthread);
  if (rc != 0) {
    for (const std::string &file : outputs) {
      std::error_code error;
      if (fs::last_write_time(file, error) >= start && !error) fs::remove(file, error);
    }
  }
  return rc;
}

}  // namespace

py::array_t<double> runFile(const std::string &path, int realization, bool writeFiles,
                            py::object progress, int threads) {
  SimInputASCII ascii;
  SimInput input;
  SimOutput output;
  readParameterFile(path, *ascii.get());
  if (realization >= 0) keepRealization(*ascii.get(), realization);
  if (!writeFiles) writeNoFiles(*ascii.get());
  ProgressBridge bridge(std::move(progress));
  int rc = 0;
  {
    const py::gil_scoped_release released;
    rc = simulate(path, *ascii.get(), *input.get(), *output.get(), bridge, threads);
  }
  bridge.raisePending();
  if (rc != 0) throw LibraryError(rc, path);
  const nuvo_grid &grid = *input->simImage->grid;
  const std::vector<py::ssize_t> shape{output->nreal, output->nvarSimPerReal, grid.nz, grid.ny,
                                       grid.nx};
  if (output->outputSimImage == nullptr) return py::array_t<double>(shape);
  return imageValues(*output->outputSimImage, shape);
}

int realizationCount(const std::string &path) {
  SimInputASCII ascii;
  readParameterFile(path, *ascii.get());
  return ascii->nrealization;
}

}  // namespace nuvo::python
