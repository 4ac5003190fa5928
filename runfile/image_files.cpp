#include "image_files.hpp"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <map>

#include "nuvo_imagefile.h"
#include "run_files.hpp"

namespace nuvo::runfile {

namespace {

constexpr int kInputNotOpened = -109;
// The largest value the library's map writers declare in the header.
constexpr long kMapMaxValue = 255;
// The PPM reader returns -710 for a line 3 without the two dimensions, a code kept
// from the older readers whose text is about distance types; the text shown is
// that of the PPM dimension code.
constexpr int kPpmDimensionsReturned = -710;
constexpr int kPpmDimensions = -770;

std::string lowerCase(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return text;
}

// The library's key of a text format.
int textKey(ImageFormat format) {
  switch (format) {
    case ImageFormat::kVtk:
      return NUVO_IMAGE_FORMAT_VTK;
    case ImageFormat::kPgm:
      return NUVO_IMAGE_FORMAT_PGM;
    case ImageFormat::kPpm:
      return NUVO_IMAGE_FORMAT_PPM;
    default:
      return NUVO_IMAGE_FORMAT_GSLIB;
  }
}

bool isMap(ImageFormat format) {
  return format == ImageFormat::kPgm || format == ImageFormat::kPpm;
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

ImageFailure libraryFailure(int rc, ImageFormat format) {
  if (format == ImageFormat::kPpm && rc == kPpmDimensionsReturned)
    return {rc, libraryMessage(kPpmDimensions) + " (code 710 returned)"};
  return {rc, libraryMessage(rc)};
}

}  // namespace

ImageFormat formatOfKey(const std::string &key) {
  static const std::map<std::string, ImageFormat> kKeys{
      {"gslib", ImageFormat::kGslib},    {"0", ImageFormat::kGslib},
      {"vtk", ImageFormat::kVtk},        {"1", ImageFormat::kVtk},
      {"pgm", ImageFormat::kPgm},        {"2", ImageFormat::kPgm},
      {"ppm", ImageFormat::kPpm},        {"3", ImageFormat::kPpm},
      {"bin", ImageFormat::kGslibBinary}};
  const auto found = kKeys.find(lowerCase(key));
  return found == kKeys.end() ? ImageFormat::kByExtension : found->second;
}

ImageFormat formatOfExtension(const std::string &path) {
  const std::string extension = lowerCase(std::filesystem::path(path).extension().string());
  if (extension == ".gslib" || extension == ".dat" || extension == ".txt")
    return ImageFormat::kGslib;
  if (extension == ".vtk") return ImageFormat::kVtk;
  if (extension == ".pgm") return ImageFormat::kPgm;
  if (extension == ".ppm") return ImageFormat::kPpm;
  if (extension == ".gslibbin" || extension == ".bin") return ImageFormat::kGslibBinary;
  return ImageFormat::kByExtension;
}

ImageFailure readImage(const std::string &path, ImageFormat format, nuvo_image &image) {
  std::string reason;
  File stream = openReadable(path, reason);
  if (!stream) return {kInputNotOpened, libraryMessage(kInputNotOpened) + " (" + reason + ")"};
  if (isMap(format)) stream = withCommentLine(std::move(stream));
  if (!stream)
    return {kInputNotOpened, std::string("cannot be copied for reading (") +
                                 std::strerror(errno) + ")"};
  const int rc = format == ImageFormat::kGslibBinary
                     ? NUVOReadImageGslibBinary(&image, stream.get())
                     : NUVOReadImage(&image, textKey(format), stream.get());
  if (rc != 0) return libraryFailure(rc, format);
  if (!isMap(format)) return {};
  return {0, valuesWithin(image, mapMaxValue(stream.get()), "the range its header gives")};
}

ImageFailure writeImage(std::FILE *stream, ImageFormat format, const nuvo_image &image,
                        const std::string &valueFormat) {
  const int rc = format == ImageFormat::kGslibBinary
                     ? NUVOWriteImageGslibBinary(&image, stream)
                     : NUVOWriteImage(&image, valueFormat.c_str(), textKey(format), stream);
  if (rc != 0) return libraryFailure(rc, format);
  if (!isMap(format)) return {};
  return {0, valuesWithin(image, kMapMaxValue, "the range of a written map")};
}

}  // namespace nuvo::runfile
