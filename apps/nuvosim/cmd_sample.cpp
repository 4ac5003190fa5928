// nuvosim sample IMAGE N OUT: random nodes of an image written as a point set,
// typically conditioning data drawn from a reference image.
#include <memory>

#include "commands.hpp"
#include "files.hpp"
#include "image_io.hpp"
#include "nuvo_imagefile.h"
#include "nuvo_synthetic.h"
#include "records.hpp"

namespace nuvo::cli {

namespace {

struct SampleOptions {
  std::string image;
  int npoint = 0;
  std::string output;
  int seed = 1;
  ImageFormat from = ImageFormat::kByExtension;
  std::string valueFormat = "%.10g";
};

int runSample(const SampleOptions &options) {
  Image image;
  if (const int status = readImageFile(options.image, options.from, *image.get()); status != 0) {
    return status;
  }
  PointSet points;
  if (const int rc = NUVOSampleImage(image.get(), options.npoint, options.seed, points.get());
      rc != 0) {
    reportFailure(options.image, libraryMessage(rc));
    return kInputError;
  }
  const int status = writeOutput(options.output, [&](std::FILE *stream) {
    const char *format = options.valueFormat.c_str();
    const int rc = NUVOWritePointSet(points.get(), format, format, stream);
    return rc == 0 ? std::string() : libraryMessage(rc);
  });
  if (status == kSuccess) std::printf("%s: %d point(s)\n", options.output.c_str(), points->npoint);
  return status;
}

}  // namespace

void addSampleCommand(CLI::App &app) {
  auto options = std::make_shared<SampleOptions>();
  CLI::App *command = app.add_subcommand(
      "sample", "Draw N random informed nodes of an image and write them as a point set");
  command->footer(
      "The points sit at the node centres and carry every variable of the image: conditioning\n"
      "data drawn from a reference image, for example. OUT is GSLIB point-set text.");
  command->add_option("IMAGE", options->image, "Image file")->required();
  command->add_option("N", options->npoint, "Number of points")
      ->required()
      ->check(numberCheck(true));
  command->add_option("OUT", options->output, "Point-set file to write")->required();
  command->add_option("--seed", options->seed, "Seed of the random numbers")->capture_default_str();
  addFormatOption(command, "--from", options->from, "Format of IMAGE");
  addValueFormatOption(command, options->valueFormat);
  setAction(command, [options] { return runSample(*options); });
}

}  // namespace nuvo::cli
