// nuvosim convert IN OUT: an image from one file format to another.
#include <memory>

#include "commands.hpp"
#include "image_io.hpp"
#include "records.hpp"

namespace nuvo::cli {

namespace {

struct ConvertOptions {
  std::string input;
  std::string output;
  ImageFormat from = ImageFormat::kByExtension;
  ImageFormat to = ImageFormat::kByExtension;
  std::string valueFormat = "%.10g";
};

int runConvert(const ConvertOptions &options) {
  Image image;
  if (const int status = readImageFile(options.input, options.from, *image.get()); status != 0) {
    return status;
  }
  return writeImageFile(options.output, options.to, *image.get(), options.valueFormat);
}

}  // namespace

void addConvertCommand(CLI::App &app) {
  auto options = std::make_shared<ConvertOptions>();
  CLI::App *command = app.add_subcommand("convert", "Convert an image between file formats");
  command->add_option("IN", options->input, "Image file to read")->required();
  command->add_option("OUT", options->output, "Image file to write")->required();
  addFormatOption(command, "--from", options->from, "Format of IN");
  addFormatOption(command, "--to", options->to, "Format of OUT");
  addValueFormatOption(command, options->valueFormat);
  setAction(command, [options] { return runConvert(*options); });
}

}  // namespace nuvo::cli
