// nuvosim generate channels|lenses|field OUT: synthetic training images.
#include <memory>

#include "commands.hpp"
#include "files.hpp"
#include "image_io.hpp"
#include "nuvo_synthetic.h"
#include "records.hpp"

namespace nuvo::cli {

namespace {

struct GenerateOptions {
  std::string output;
  int nx = 200;
  int ny = 200;
  int nz = 1;
  int seed = 1;
  ImageFormat to = ImageFormat::kByExtension;
  std::string valueFormat = "%.10g";
  double proportion = 0.3;    // channels
  double width = 8.0;         // channels
  double correlation = 10.0;  // field
};

// Adds the output, grid size, seed and format options every generator shares, and
// makes `generate` (a call of the library's generator) the command's action.
void addGenerator(CLI::App *command, const std::shared_ptr<GenerateOptions> &options,
                  int (*generate)(const GenerateOptions &, nuvo_image *)) {
  command->add_option("OUT", options->output, "Image file to write")->required();
  command->add_option("--nx", options->nx, "Number of nodes along x")
      ->capture_default_str()
      ->check(numberCheck(true));
  command->add_option("--ny", options->ny, "Number of nodes along y")
      ->capture_default_str()
      ->check(numberCheck(true));
  command->add_option("--nz", options->nz, "Number of nodes along z")
      ->capture_default_str()
      ->check(numberCheck(true));
  command->add_option("--seed", options->seed, "Seed of the random numbers")->capture_default_str();
  addFormatOption(command, "--to", options->to, "Format of OUT");
  addValueFormatOption(command, options->valueFormat);
  setAction(command, [options, generate]() -> int {
    Image image;
    if (const int rc = generate(*options, image.get()); rc != 0) {
      reportFailure(options->output, libraryMessage(rc));
      return rc == -1 ? kInputError : kUsageError;  // else the arguments were refused
    }
    return writeImageFile(options->output, options->to, *image.get(), options->valueFormat);
  });
}

}  // namespace

void addGenerateCommand(CLI::App &app) {
  CLI::App *generate = app.add_subcommand("generate", "Generate a synthetic training image");
  generate->require_subcommand(1);

  auto channels = std::make_shared<GenerateOptions>();
  CLI::App *command = generate->add_subcommand(
      "channels", "Sinuous channels along x: variable facies, 0 background, 1 channel");
  command->add_option("--proportion", channels->proportion, "Proportion of channel nodes")
      ->capture_default_str()
      ->check(CLI::Range(0.0, 1.0));
  command->add_option("--width", channels->width, "Channel width in nodes")
      ->capture_default_str()
      ->check(CLI::Range(1.0, 1e6));
  addGenerator(command, channels, [](const GenerateOptions &o, nuvo_image *image) {
    return NUVOGenerateChannelImage(image, o.nx, o.ny, o.nz, o.proportion, o.width, o.seed);
  });

  auto lenses = std::make_shared<GenerateOptions>();
  command = generate->add_subcommand(
      "lenses", "Flattened lenses: variable facies, 0 background, 1 sand, 2 shale");
  addGenerator(command, lenses, [](const GenerateOptions &o, nuvo_image *image) {
    return NUVOGenerateLensImage(image, o.nx, o.ny, o.nz, o.seed);
  });

  auto field = std::make_shared<GenerateOptions>();
  command = generate->add_subcommand(
      "field", "Smooth continuous field, variable value, about standard normal");
  command->add_option("--range", field->correlation, "Correlation length in nodes")
      ->capture_default_str()
      ->check(numberCheck(true));
  addGenerator(command, field, [](const GenerateOptions &o, nuvo_image *image) {
    return NUVOGenerateContinuousImage(image, o.nx, o.ny, o.nz, o.correlation, o.seed);
  });
}

}  // namespace nuvo::cli
