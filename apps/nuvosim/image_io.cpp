#include "image_io.hpp"

#include <cstdio>
#include <string_view>

#include "commands.hpp"
#include "files.hpp"

namespace nuvo::cli {

namespace {

// The format to use for `path`, or kByExtension (after reporting it) when neither
// the option nor the extension tells it.
ImageFormat resolveFormat(const std::string &path, ImageFormat format, const char *option) {
  if (format != ImageFormat::kByExtension) return format;
  format = formatOfExtension(path);
  if (format == ImageFormat::kByExtension) {
    reportFailure(path, std::string("unknown image extension; name the format with ") + option +
                            " (gslib, vtk, pgm, ppm or bin)");
  }
  return format;
}

}  // namespace

bool isNumberConversion(std::string_view piece) {
  const auto skip = [&](std::size_t k, std::string_view set) {
    while (k < piece.size() && set.find(piece[k]) != std::string_view::npos) ++k;
    return k;
  };
  constexpr std::string_view kDigits = "0123456789";
  if (piece.empty() || piece[0] != '%') return false;
  std::size_t k = skip(skip(1, "-+ #0"), kDigits);
  if (k < piece.size() && piece[k] == '.') k = skip(k + 1, kDigits);
  constexpr std::string_view kReal = "eEfFgGaA";
  if (k + 2 == piece.size() && piece[k] == 'l') return kReal.find(piece[k + 1]) != kReal.npos;
  return k + 1 == piece.size() &&
         (piece[k] == 'd' || piece[k] == 'i' || kReal.find(piece[k]) != kReal.npos);
}

CLI::Option *addFormatOption(CLI::App *command, const std::string &name, ImageFormat &format,
                             const std::string &purpose) {
  return command
      ->add_option(name, format, purpose + ": gslib, vtk, pgm, ppm (or 0 to 3), bin (GSLIB binary)")
      ->option_text("KEY")
      ->transform(CLI::Validator(
          [](std::string &key) -> std::string {
            const ImageFormat named = runfile::formatOfKey(key);
            if (named == ImageFormat::kByExtension) {
              return "unknown format " + key + " (gslib, vtk, pgm, ppm, bin or 0 to 3)";
            }
            key = std::to_string(static_cast<int>(named));
            return {};
          },
          ""));
}

CLI::Option *addValueFormatOption(CLI::App *command, std::string &valueFormat) {
  const CLI::Validator conversions(
      [](std::string &text) -> std::string {
        bool any = false;
        for (const std::string &piece : CLI::detail::split(text, ';')) {
          if (piece.empty()) continue;
          if (!isNumberConversion(piece)) return "not a number conversion: " + piece;
          any = true;
        }
        return any ? std::string() : "no conversion given";
      },
      "");
  return command
      ->add_option("--format", valueFormat,
                   "printf conversions of the values, \";\"-separated, reused over the "
                   "variables (default " +
                       valueFormat + ")")
      ->option_text("FMT")
      ->check(conversions);
}

int readImageFile(const std::string &path, ImageFormat format, nuvo_image &image) {
  format = resolveFormat(path, format, "--from");
  if (format == ImageFormat::kByExtension) return kUsageError;
  const runfile::ImageFailure failure = runfile::readImage(path, format, image);
  if (!failure) return kSuccess;
  reportFailure(path, failure.text);
  return kInputError;
}

int writeImageFile(const std::string &path, ImageFormat format, const nuvo_image &image,
                   const std::string &valueFormat) {
  format = resolveFormat(path, format, "--to");
  if (format == ImageFormat::kByExtension) return kUsageError;
  return writeOutput(path, [&](std::FILE *stream) {
    return runfile::writeImage(stream, format, image, valueFormat).text;
  });
}

}  // namespace nuvo::cli
