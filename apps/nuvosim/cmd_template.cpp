// nuvosim template OUT.in: a complete, commented parameter file with sensible
// defaults, written by the library's own exporter with its training image beside it.
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <set>
#include <sstream>
#include <system_error>

#include "commands.hpp"
#include "files.hpp"
#include "image_io.hpp"
#include "nuvo_imagefile.h"
#include "nuvo_synthetic.h"
#include "records.hpp"

namespace nuvo::cli {

namespace {

namespace fs = std::filesystem;

// Without --ti, the training image is a 100 x 100 channel image to be replaced.
constexpr int kDefaultTiSize = 100;
constexpr double kDefaultProportion = 0.3;
constexpr double kDefaultWidth = 6.0;
// Variables with at most this many distinct whole values are taken as categories.
constexpr std::size_t kMaxCategories = 20;

struct TemplateOptions {
  std::string output;
  std::string trainImage;
  ImageFormat from = ImageFormat::kByExtension;
  std::vector<int> grid;
  bool force = false;
};

// 0 (non-matching nodes) for a variable of few whole values, else 1 (L-1).
int distanceTypeOf(const nuvo_image &image, int iv) {
  std::set<double> values;
  const int nxyz = image.nxyzv / image.nvar;
  for (int k = 0; k < nxyz; ++k) {
    const double value = image.var[iv * nxyz + k];
    if (value == -9999999.0) continue;
    if (value != std::floor(value)) return 1;
    values.insert(value);
    if (values.size() > kMaxCategories) return 1;
  }
  return 0;
}

// The parameter file of a simulation of the variables of `ti` (read from
// `tiFile`) on a grid of `n` nodes: every section with its default.
std::string defaultParameters(const nuvo_image &ti, const std::string &tiFile,
                              const std::vector<int> &n) {
  std::ostringstream text;
  const auto perVariable = [&](const std::string &item) {
    for (int v = 0; v < ti.nvar; ++v) text << item << "\n";
  };
  text << n[0] << " " << n[1] << " " << n[2] << " 1.0 1.0 1.0 0.0 0.0 0.0\n" << ti.nvar << "\n";
  for (int v = 0; v < ti.nvar; ++v) text << ti.varName[v] << " 1 DEFAULT_FORMAT\n";
  text << "OUTPUT_SIM_ONE_FILE_PER_REALIZATION sim\n0 0 0 0\n0\n1 " << tiFile << "\n0\n0\n0\n0\n0\n"
       << "-1.0\nNORMALIZING_LINEAR\n";
  perVariable(
      "SEARCHNEIGHBORHOOD_RADIUS_LARGE_DEFAULT SEARCHNEIGHBORHOOD_ANISOTROPY_RATIO_ONE "
      "SEARCHNEIGHBORHOOD_ROTATION_OFF -1.0");
  perVariable("24");
  perVariable("1.0");
  perVariable("RESCALING_NONE");
  perVariable("0");
  for (int v = 0; v < ti.nvar; ++v) text << distanceTypeOf(ti, v) << "\n";
  perVariable("1.0");
  text << "SIM_VARIABLE_VECTOR PATH_RANDOM\n";
  perVariable("0.03");
  perVariable("0 0 0");
  // Tolerance 0.5: one post-processing path re-simulates the poorly matched nodes
  // and their data events, not most of the grid.
  text << "0.25\n0\n0.5\n1 POST_PROCESSING_PARAMETERS_DEFAULT\n1 1\n1\nEND\n";
  return text.str();
}

// The simulation input of `parameters`, the training image file read.
int buildInput(const std::string &parameters, nuvo_simInput &input) {
  SimInputASCII ascii;
  const File stream{std::tmpfile()};
  if (!stream) return -1;
  std::fputs(parameters.c_str(), stream.get());
  std::rewind(stream.get());
  const int rc = NUVOReadSimInputASCII(ascii.get(), stream.get());
  return rc != 0 ? rc : NUVOSimInputASCIIToSimInput(ascii.get(), &input);
}

int runTemplate(const TemplateOptions &options) {
  const fs::path out(options.output);
  if (out.extension() != ".in") {
    reportFailure(options.output, "the parameter file's name must end with .in");
    return kUsageError;
  }
  std::error_code error;
  if (!options.force && fs::exists(out, error)) {
    reportFailure(options.output, "exists already; --force replaces it");
    return kOutputError;
  }
  Image ti;
  if (!options.trainImage.empty()) {
    if (const int status = readImageFile(options.trainImage, options.from, *ti.get());
        status != kSuccess) {
      return status;
    }
  } else if (const int rc = NUVOGenerateChannelImage(ti.get(), kDefaultTiSize, kDefaultTiSize, 1,
                                                     kDefaultProportion, kDefaultWidth, 1);
             rc != 0) {
    reportFailure(options.output, libraryMessage(rc));
    return kInputError;
  }
  const nuvo_grid &tiGrid = *ti->grid;
  const std::vector<int> n =
      options.grid.empty() ? std::vector<int>{tiGrid.nx, tiGrid.ny, tiGrid.nz} : options.grid;

  const ScratchFolder scratch;
  const std::string tiFile = (scratch.path() / "ti.gslib").string();
  if (scratch.path().empty() ||
      writeImageFile(tiFile, ImageFormat::kGslib, *ti.get(), "%.10g") != kSuccess) {
    reportFailure(options.output, "cannot prepare the training image in a temporary folder");
    return kOutputError;
  }
  SimInput input;
  if (const int rc = buildInput(defaultParameters(*ti.get(), tiFile, n), *input.get()); rc != 0) {
    reportFailure(options.output, libraryMessage(rc));
    return kInputError;
  }
  const std::string folder = out.has_parent_path() ? out.parent_path().string() : ".";
  fs::create_directories(folder, error);
  if (error) {
    reportFailure(options.output, "cannot create its folder (" + error.message() + ")");
    return kOutputError;
  }
  if (const int rc = NUVOExportSimInput(input.get(), folder.c_str(), out.stem().c_str(), "\n", 2);
      rc != 0) {
    reportFailure(options.output, libraryMessage(rc));
    return kOutputError;
  }
  std::printf("%s: %d x %d x %d grid, %d variable(s), training image %s_ti0.gslib%s\n",
              options.output.c_str(), n[0], n[1], n[2], ti->nvar,
              (fs::path(folder) / out.stem()).string().c_str(),
              options.trainImage.empty() ? " (channels, to be replaced by your own)" : "");
  return kSuccess;
}

}  // namespace

void addTemplateCommand(CLI::App &app) {
  auto options = std::make_shared<TemplateOptions>();
  CLI::App *command = app.add_subcommand(
      "template", "Write a complete, commented parameter file with sensible defaults");
  command->footer(
      "The library's exporter writes OUT.in, every section commented, and a copy of the\n"
      "training image beside it (OUT_ti0.gslib), to be edited and run with 'nuvosim run'.\n"
      "Without --ti the training image is a 100 x 100 channel image. Variables of at most\n"
      "20 whole values get distance type 0 (categories), the others type 1.");
  command->add_option("OUT", options->output, "Parameter file to write (.in)")->required();
  command->add_option("--ti", options->trainImage, "Training image (any image format)")
      ->option_text("FILE");
  addFormatOption(command, "--from", options->from, "Format of the training image");
  command->add_option("--grid", options->grid, "Simulation grid (default: the training image's)")
      ->expected(3)
      ->option_text("NX NY NZ")
      ->check(numberCheck(true));
  command->add_flag("-f,--force", options->force, "Replace OUT if it exists");
  setAction(command, [options] { return runTemplate(*options); });
}

}  // namespace nuvo::cli
