#include "run_checks.hpp"

#include <sys/resource.h>
#include <unistd.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <limits>
#include <map>
#include <span>

#include "commands.hpp"
#include "files.hpp"
#include "image_io.hpp"
#include "parameter_file.hpp"

namespace nuvo::cli {

namespace {

namespace fs = std::filesystem;

// Values of the grid the simulation holds at once per simulated value: the
// simulation grid, its working and conditioned copies, the realization written out
// and the path and its flags (measured on 2D and 3D runs, rounded up).
constexpr double kGridCopies = 6.0;
// Bytes per node of the additional maps of one realization.
constexpr double kMapBytes = 8.0;

std::string numberText(double value) {
  char text[32];
  std::snprintf(text, sizeof text, "%g", value);
  return text;
}

std::string sizeText(double bytes) {
  char text[32];
  if (bytes >= 1e9)
    std::snprintf(text, sizeof text, "%.1f GB", bytes / 1e9);
  else
    std::snprintf(text, sizeof text, "%.0f MB", std::ceil(bytes / 1e6));
  return text;
}

// The file a name stands for, existing or not, in one spelling.
fs::path fileOf(const fs::path &name) {
  std::error_code error;
  fs::path file = fs::weakly_canonical(fs::absolute(name), error);
  return error ? fs::absolute(name).lexically_normal() : file;
}

int checkGrid(const std::string &path, const nuvo_simInputASCII &ascii) {
  const std::pair<const char *, double> sizes[] = {{"simGridSx", ascii.simGridSx},
                                                   {"simGridSy", ascii.simGridSy},
                                                   {"simGridSz", ascii.simGridSz}};
  for (const auto &[field, size] : sizes) {
    if (size > 0.0) continue;
    reportFailure(path, std::string("SIMULATION GRID, ") + field + " = " + numberText(size) +
                            ": the cell size must be positive");
    return kInputError;
  }
  if (ascii.nrealization < 1) {
    reportFailure(path, "NUMBER OF REALIZATION(S), nrealization = " +
                            std::to_string(ascii.nrealization) + ": at least 1 is needed");
    return kInputError;
  }
  return kSuccess;
}

int checkFormats(const std::string &path, const nuvo_simInputASCII &ascii) {
  for (int v = 0; v < ascii.nsimVar; ++v) {
    const char *format = ascii.formatStringVar[v];
    if (!ascii.outputVarFlag[v] || std::strcmp(format, NUVO_DEFAULT_FORMAT_NAME) == 0) continue;
    if (isNumberConversion(format)) continue;
    reportFailure(path, std::string("SIMULATION VARIABLES, formatStringVar of ") +
                            ascii.simVarName[v] + " = " + format +
                            ": not one printf conversion of a number (such as %.3f or %d)");
    return kInputError;
  }
  return kSuccess;
}

// Two outputs of the run on the same file, or an output on an input.
int checkOutputNames(const std::string &path, const nuvo_simInputASCII &ascii) {
  const fs::path folder = parameterFolder(path);
  std::map<fs::path, std::string> inputs{{fileOf(path), path}};
  for (const std::string &name : inputFiles(ascii)) inputs.emplace(fileOf(folder / name), name);
  std::map<fs::path, std::string> outputs;
  for (const std::string &name : outputFiles(ascii)) {
    const fs::path file = fileOf(folder / name);
    if (const auto input = inputs.find(file); input != inputs.end()) {
      reportFailure(path, "the output " + name + " would overwrite the input " + input->second);
      return kInputError;
    }
    if (const auto [other, added] = outputs.emplace(file, name); !added) {
      reportFailure(path,
                    "two outputs of the run are the same file: " + other->second + " and " + name);
      return kInputError;
    }
  }
  return kSuccess;
}

// The memory this process can use: physical memory, or its address-space limit
// when that is smaller.
double availableBytes(std::string &what) {
  what = "physical memory";
  double bytes =
      static_cast<double>(::sysconf(_SC_PHYS_PAGES)) * static_cast<double>(::sysconf(_SC_PAGESIZE));
  rlimit limit{};
  if (::getrlimit(RLIMIT_AS, &limit) == 0 && limit.rlim_cur != RLIM_INFINITY &&
      static_cast<double>(limit.rlim_cur) < bytes) {
    bytes = static_cast<double>(limit.rlim_cur);
    what = "address-space limit of the process";
  }
  return bytes;
}

// Refuses a grid whose values the library cannot count, or whose simulation
// cannot fit in memory, before anything of that size is allocated.
int checkMemory(const std::string &path, const nuvo_simInputASCII &ascii) {
  const double nodes = static_cast<double>(ascii.simGridNx) * ascii.simGridNy * ascii.simGridNz;
  const double values = nodes * ascii.nsimVar;
  if (values > std::numeric_limits<int>::max()) {
    reportFailure(path, "SIMULATION GRID: " + numberText(values) +
                            " values (nodes x variables), more than the largest grid (" +
                            std::to_string(std::numeric_limits<int>::max()) + ")");
    return kInputError;
  }
  const bool collected = ascii.outputSimJob == OUTPUT_SIM_ALL_IN_ONE_FILE ||
                         ascii.outputSimJob == OUTPUT_SIM_ONE_FILE_PER_VARIABLE;
  const int maps = ascii.outputPathIndexFlag + ascii.outputErrorFlag +
                   ascii.outputTiGridNodeIndexFlag + ascii.outputTiIndexFlag;
  const double needed =
      values * sizeof(double) * (kGridCopies + (collected ? ascii.nrealization : 0)) +
      nodes * kMapBytes * maps;
  std::string what;
  const double available = availableBytes(what);
  if (needed <= available) return kSuccess;
  reportFailure(path, "the simulation needs about " + sizeText(needed) + " of memory for a " +
                          std::to_string(ascii.simGridNx) + " x " +
                          std::to_string(ascii.simGridNy) + " x " +
                          std::to_string(ascii.simGridNz) + " grid, more than the " + what + " (" +
                          sizeText(available) + ")");
  return kInputError;
}

// The first value of `values` that is NaN or infinite, or -1.
std::ptrdiff_t firstNonFinite(std::span<const double> values) {
  for (std::size_t k = 0; k < values.size(); ++k)
    if (!std::isfinite(values[k])) return static_cast<std::ptrdiff_t>(k);
  return -1;
}

// Reports a NaN or infinite value of an image; `name` is its file.
bool imageIsFinite(const char *name, const nuvo_image *image) {
  if (image == nullptr || image->var == nullptr) return true;
  const std::ptrdiff_t at = firstNonFinite({image->var, static_cast<std::size_t>(image->nxyzv)});
  if (at < 0) return true;
  const int nxyz = image->nxyzv / image->nvar;
  reportFailure(name, "variable " + std::string(image->varName[at / nxyz]) + ", node " +
                          std::to_string(at % nxyz) + ": value " + numberText(image->var[at]) +
                          " is not a finite number");
  return false;
}

bool pointSetIsFinite(const char *name, const nuvo_pointSet &points) {
  const auto n = static_cast<std::size_t>(points.npoint);
  const std::pair<const char *, const double *> coordinates[] = {
      {"x", points.x}, {"y", points.y}, {"z", points.z}};
  for (const auto &[axis, values] : coordinates) {
    const std::ptrdiff_t at = firstNonFinite({values, n});
    if (at < 0) continue;
    reportFailure(name, std::string("point ") + std::to_string(at) + ": coordinate " + axis + " " +
                            numberText(values[at]) + " is not a finite number");
    return false;
  }
  const std::ptrdiff_t at = firstNonFinite({points.val, n * static_cast<std::size_t>(points.nvar)});
  if (at < 0) return true;
  reportFailure(name, "variable " + std::string(points.varName[at / points.npoint]) + ", point " +
                          std::to_string(at % points.npoint) + ": value " +
                          numberText(points.val[at]) + " is not a finite number");
  return false;
}

}  // namespace

int checkParameters(const std::string &path, const nuvo_simInputASCII &ascii) {
  for (auto check : {checkGrid, checkFormats, checkOutputNames, checkMemory}) {
    if (const int status = check(path, ascii); status != kSuccess) return status;
  }
  return kSuccess;
}

int checkLoadedValues(const nuvo_simInputASCII &ascii, const nuvo_simInput &input) {
  bool finite = true;
  for (int t = 0; finite && t < input.ntrainImage; ++t) {
    if (!input.simGridAsTiFlag[t])
      finite = imageIsFinite(ascii.trainImageFileName[t], &input.trainImage[t]);
  }
  if (finite && input.ntrainImage > 1)
    finite = imageIsFinite(ascii.pdfTrainImageFileName, input.pdfTrainImage);
  for (int k = 0; finite && k < input.ndataImage; ++k)
    finite = imageIsFinite(ascii.dataImageFileName[k], &input.dataImage[k]);
  for (int k = 0; finite && k < input.ndataPointSet; ++k)
    finite = pointSetIsFinite(ascii.dataPointSetFileName[k], input.dataPointSet[k]);
  if (finite && input.maskImageFlag)
    finite = imageIsFinite(ascii.maskImageFileName, input.maskImage);
  return finite ? kSuccess : kInputError;
}

int warnAboutParameters(const std::string &path, const nuvo_simInputASCII &ascii) {
  int warnings = 0;
  for (int v = 0; v < ascii.nsimVar; ++v) {
    const nuvo_searchNeighborhoodParameters &p = ascii.searchNeighborhoodParameters[v];
    if (p.radiusMode != SEARCHNEIGHBORHOOD_RADIUS_MANUAL || p.rx > 0.0 || p.ry > 0.0 || p.rz > 0.0)
      continue;
    std::fprintf(stderr,
                 "nuvosim: %s: warning: SEARCH NEIGHBORHOOD PARAMETERS of %s: radius 0 in every "
                 "direction, so no neighbor is used and the realizations are white noise\n",
                 path.c_str(), ascii.simVarName[v]);
    ++warnings;
  }
  if (ascii.seedIncrement == 0 && ascii.nrealization > 1) {
    std::fprintf(stderr,
                 "nuvosim: %s: warning: SEED NUMBER AND SEED INCREMENT: seedIncrement = 0, so "
                 "the %d realizations are identical\n",
                 path.c_str(), ascii.nrealization);
    ++warnings;
  }
  return warnings;
}

}  // namespace nuvo::cli
