// nuvosim info IMAGE: the library's report on an image.
#include <memory>

#include "commands.hpp"
#include "files.hpp"
#include "image_io.hpp"
#include "records.hpp"

namespace nuvo::cli {

namespace {

// Images with at most this many distinct values of a variable get its pdf.
constexpr int kMaxValuesForDetail = 20;

struct InfoOptions {
  std::string image;
  ImageFormat from = ImageFormat::kByExtension;
};

int runInfo(const InfoOptions &options) {
  Image image;
  if (const int status = readImageFile(options.image, options.from, *image.get()); status != 0) {
    return status;
  }
  std::printf("Image file: %s\n", options.image.c_str());
  if (const int rc = NUVOPrintImageInfo(image.get(), "", stdout, kMaxValuesForDetail); rc != 0) {
    reportFailure(options.image, libraryMessage(rc));
    return kInputError;
  }
  return kSuccess;
}

}  // namespace

void addInfoCommand(CLI::App &app) {
  auto options = std::make_shared<InfoOptions>();
  CLI::App *command = app.add_subcommand(
      "info", "Print a report on an image: grid, statistics, proportions of values");
  command->add_option("IMAGE", options->image, "Image file")->required();
  addFormatOption(command, "--from", options->from, "Format of IMAGE");
  setAction(command, [options] { return runInfo(*options); });
}

}  // namespace nuvo::cli
