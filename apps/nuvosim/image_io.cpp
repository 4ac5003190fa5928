#include "image_io.hpp"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string_view>

#include "commands.hpp"
#include "files.hpp"
#include "nuvo_imagefile.h"

namespace nuvo::cli {

namespace {

// The largest value the library's map writers declare in the header.
constexpr long kMapMaxValue = 255;
constexpr int kPpmDimensionsReturned = -710;
constexpr int kPpmDimensions = -770;

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

// The largest value of a grey or colour map: its fourth header line, or -1 when
// that line holds no number.
long mapMaxValue(std::FILE *stream) {
  std::rewind(stream);
  char line[256] = "";
  for (int k = 0; k < 4; ++k)
    if (std::fgets(line, sizeof line, stream) == nullptr) return -1;
  char *end = nullptr;
  const long value = std::strtol(line, &end, 10);
  return end == line ? -1 : value;
}

// The first value of `image` outside [0, maxValue] told with `what` (the rule it
// breaks), or an empty text when there is none.
std::string valuesWithin(const nuvo_image &image, long maxValue, const std::string &what) {
  const int nxyz = image.nvar > 0 ? image.nxyzv / image.nvar : 0;
  for (int k = 0; k < image.nxyzv; ++k) {
    const double value = image.var[k];
    if (value >= 0.0 && value <= static_cast<double>(maxValue)) continue;
    char text[32];
    std::snprintf(text, sizeof text, "%g", value);
    return std::string("variable ") + image.varName[k / nxyz] + ", node " +
           std::to_string(k % nxyz) + ": value " + text + " outside 0.." +
           std::to_string(maxValue) + ", " + what;
  }
  return {};
}

// A grey or colour map as the library reads it: a standard file, whose second line
// is not a comment, is copied with an empty comment line inserted there (the
// library's writer keeps the geometry in that line). Null when the copy fails.
File withCommentLine(File stream) {
  std::string first;
  for (int c = std::fgetc(stream.get()); c != EOF && c != '\n'; c = std::fgetc(stream.get()))
    first += static_cast<char>(c);
  const int next = std::fgetc(stream.get());
  if (next == '#' || next == EOF) {
    std::rewind(stream.get());
    return stream;
  }
  File copy{std::tmpfile()};
  if (!copy) return copy;
  std::fprintf(copy.get(), "%s\n#\n", first.c_str());
  char buffer[1 << 14];
  std::ungetc(next, stream.get());
  for (std::size_t n = 0; (n = std::fread(buffer, 1, sizeof buffer, stream.get())) > 0;)
    std::fwrite(buffer, 1, n, copy.get());
  std::rewind(copy.get());
  return copy;
}

bool isMap(ImageFormat format) {
  return format == ImageFormat::kPgm || format == ImageFormat::kPpm;
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
  File stream = openInput(path);
  if (!stream) return kInputError;
  if (isMap(format)) stream = withCommentLine(std::move(stream));
  if (!stream) {
    reportFailure(path, std::string("cannot be copied for reading (") + std::strerror(errno) + ")");
    return kInputError;
  }
  const int rc = runfile::readImage(stream.get(), format, image);
  if (rc != 0) {
    // The PPM reader returns -710 for a line 3 without the two dimensions, a code
    // kept from the older readers whose text is about distance types; the text
    // shown is that of the PPM dimension code, with the code returned.
    const bool ppmDimensions = format == ImageFormat::kPpm && rc == kPpmDimensionsReturned;
    reportFailure(path, ppmDimensions ? libraryMessage(kPpmDimensions) + " (code 710 returned)"
                                      : libraryMessage(rc));
    return kInputError;
  }
  const std::string outside =
      isMap(format) ? valuesWithin(image, mapMaxValue(stream.get()), "the range its header gives")
                    : std::string();
  if (outside.empty()) return kSuccess;
  reportFailure(path, outside);
  return kInputError;
}

int writeImageFile(const std::string &path, ImageFormat format, const nuvo_image &image,
                   const std::string &valueFormat) {
  format = resolveFormat(path, format, "--to");
  if (format == ImageFormat::kByExtension) return kUsageError;
  return writeOutput(path, [&](std::FILE *stream) {
    const int rc = runfile::writeImage(stream, format, image, valueFormat);
    if (rc != 0) return libraryMessage(rc);
    return isMap(format) ? valuesWithin(image, kMapMaxValue, "the range of a written map")
                         : std::string();
  });
}

}  // namespace nuvo::cli
