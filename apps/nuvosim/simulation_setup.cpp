#include "simulation_setup.hpp"

#include <cstring>
#include <utility>
#include <vector>

#include "commands.hpp"
#include "files.hpp"
#include "image_io.hpp"
#include "nuvo_text.h"
#include "run_checks.hpp"

namespace nuvo::cli {

int SimulationSetup::check() {
  if (const int status = checkParameters(path_, ascii()); status != kSuccess) return status;
  warnings_ = warnAboutParameters(path_, ascii());
  return kSuccess;
}

int SimulationSetup::enter() {
  if (!folder_) folder_ = std::make_unique<FolderChange>(parameterFolder(path_));
  return entered(*folder_, parameterFolder(path_)) ? kSuccess : kInputError;
}

int SimulationSetup::load() {
  if (const int status = enter(); status != kSuccess) return status;
  // The library loads GSLIB text only: images of the other formats are converted
  // into a scratch folder and the names of the copies loaded in their place, then
  // the names given are put back for every later message.
  const ScratchFolder scratch;
  std::vector<std::pair<char *, std::string>> replaced;
  const auto restore = [&replaced] {
    for (const auto &[slot, name] : replaced) std::memcpy(slot, name.c_str(), name.size() + 1);
  };
  for (const InputName &named : inputNames(ascii())) {
    const ImageFormat format = formatOfExtension(named.slot);
    if (named.kind != InputKind::kImage || format == ImageFormat::kByExtension ||
        format == ImageFormat::kGslib)
      continue;
    Image image;
    if (const int status = readImageFile(named.slot, format, *image.get()); status != kSuccess) {
      restore();
      return status;
    }
    const std::string copy =
        (scratch.path() / ("image" + std::to_string(replaced.size()) + ".gslib")).string();
    if (scratch.path().empty() || copy.size() > NUVO_FILE_NAME_MAX ||
        writeImageFile(copy, ImageFormat::kGslib, *image.get(), "%.17g") != kSuccess) {
      reportFailure(named.slot, "cannot be converted for loading in a temporary folder");
      restore();
      return kInputError;
    }
    replaced.emplace_back(named.slot, named.slot);
    std::memcpy(named.slot, copy.c_str(), copy.size() + 1);
  }
  const int status = loadSimInput(path_, ascii(), input());
  restore();
  return status != kSuccess ? status : checkLoadedValues(ascii(), input());
}

}  // namespace nuvo::cli
