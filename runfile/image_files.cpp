#include "image_files.hpp"

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <map>

#include "nuvo_imagefile.h"

namespace nuvo::runfile {

namespace {

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

int readImage(std::FILE *stream, ImageFormat format, nuvo_image &image) {
  return format == ImageFormat::kGslibBinary ? NUVOReadImageGslibBinary(&image, stream)
                                             : NUVOReadImage(&image, textKey(format), stream);
}

int writeImage(std::FILE *stream, ImageFormat format, const nuvo_image &image,
               const std::string &valueFormat) {
  return format == ImageFormat::kGslibBinary
             ? NUVOWriteImageGslibBinary(&image, stream)
             : NUVOWriteImage(&image, valueFormat.c_str(), textKey(format), stream);
}

}  // namespace nuvo::runfile
