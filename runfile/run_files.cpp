#include "run_files.hpp"

#include <cctype>
#include <cerrno>
#include <cstring>
#include <memory>
#include <system_error>
#include <utility>

#include "nuvo_error.h"
#include "nuvo_imagefile.h"
#include "nuvo_text.h"
#include "records.hpp"

namespace nuvo::runfile {

namespace {

namespace fs = std::filesystem;

constexpr std::size_t kShownLength = 40;
constexpr const char *kStandardInput = "-";

bool blank(int c) {
  return std::isspace(static_cast<unsigned char>(c)) != 0;
}

// `word`, cut after kShownLength characters.
std::string shorten(const std::string &word) {
  return word.size() > kShownLength ? word.substr(0, kShownLength) + "..." : word;
}

void addSlot(std::vector<InputName> &names, char *slot, InputKind kind) {
  if (slot != nullptr && slot[0] != '\0') names.push_back({slot, kind});
}

// What is wrong with the input file `name`, read as the library reads it: the
// system's reason when it cannot be opened, a folder, an empty file, or the
// reader's message; empty when it reads.
std::string problemOf(const std::string &name, InputKind kind) {
  std::string reason;
  const File stream = openReadable(name, reason);
  if (!stream) return reason;
  if (kind == InputKind::kPointSet) {
    PointSet points;
    const int rc = NUVOReadPointSet(points.get(), stream.get());
    return rc == 0 ? "" : libraryMessage(rc);
  }
  if (kind == InputKind::kBlockData) return "";
  Image image;
  const int rc = NUVOReadImage(image.get(), NUVO_IMAGE_FORMAT_GSLIB, stream.get());
  return rc == 0 ? "" : libraryMessage(rc);
}

void addPerRealization(std::vector<std::string> &files, const char *prefix, int nrealization) {
  for (int r = 0; r < nrealization; ++r) {
    char digits[6];
    NUVOIntToString(r, digits, 5);
    files.push_back(std::string(prefix) + "_real" + digits + ".gslib");
  }
}

}  // namespace

std::string libraryMessage(int rc) {
  std::string text = NUVOGetErrorMessage(-rc);
  while (!text.empty() && text.back() == '\n') text.pop_back();
  return text;
}

File openReadable(const std::string &path, std::string &reason) {
  std::error_code error;
  if (fs::is_directory(path, error)) {
    reason = "a folder, not a file";
    return nullptr;
  }
  File stream{std::fopen(path.c_str(), "rb")};
  if (!stream) {
    reason = std::strerror(errno);
    return nullptr;
  }
  if (std::fgetc(stream.get()) == EOF) {
    reason = std::ferror(stream.get()) != 0 ? std::strerror(errno) : "empty file";
    return nullptr;
  }
  std::rewind(stream.get());
  return stream;
}

FolderChange::FolderChange(const fs::path &folder) {
  if (folder.empty()) return;
  std::error_code error;
  previous_ = fs::current_path(error);
  if (!error) fs::current_path(folder, error);
  if (error) {
    failure_ = "cannot enter the folder (" + error.message() + ")";
    previous_.clear();
  }
}

FolderChange::~FolderChange() {
  std::error_code ignored;
  if (!previous_.empty()) fs::current_path(previous_, ignored);
}

fs::path parameterFolder(const std::string &path) {
  std::error_code error;
  const fs::file_type type = fs::status(path, error).type();
  // /dev/stdin and its kin stand for a stream even when it comes from a file.
  const bool device = path.rfind("/dev/", 0) == 0 || path.rfind("/proc/", 0) == 0;
  const bool stream = device || type == fs::file_type::fifo || type == fs::file_type::character ||
                      type == fs::file_type::socket;
  return path == kStandardInput || stream ? fs::path() : fs::path(path).parent_path();
}

std::string stopPlace(std::FILE *stream) {
  const int line = NUVOStreamLineNumber(stream);
  const long at = std::ftell(stream);
  if (line < 0 || at < 0) return "";
  const std::string place = "line " + std::to_string(line);
  std::string before(static_cast<std::size_t>(at), '\0');
  std::rewind(stream);
  before.resize(std::fread(before.data(), 1, before.size(), stream));
  std::string from;
  int c = 0;
  while (from.size() <= kShownLength && (c = std::fgetc(stream)) != EOF && !blank(c)) {
    from += static_cast<char>(c);
  }
  if (!from.empty()) return place + ", at \"" + shorten(from) + "\"";
  if (c == EOF) return place + ", at the end of the file";
  if (before.empty() || blank(before.back())) return place;
  std::size_t start = before.size();
  while (start > 0 && !blank(before[start - 1])) --start;
  return place + ", after \"" + shorten(before.substr(start)) + "\"";
}

std::vector<InputName> inputNames(const nuvo_simInputASCII &ascii) {
  constexpr InputKind kImage = InputKind::kImage;
  std::vector<InputName> names;
  for (int t = 0; t < ascii.ntrainImage; ++t) {
    if (std::strcmp(ascii.trainImageFileName[t], NUVO_SIM_GRID_AS_TI_NAME) != 0)
      addSlot(names, ascii.trainImageFileName[t], kImage);
  }
  if (ascii.ntrainImage > 1) addSlot(names, ascii.pdfTrainImageFileName, kImage);
  for (int k = 0; k < ascii.ndataImageFile; ++k) addSlot(names, ascii.dataImageFileName[k], kImage);
  for (int k = 0; k < ascii.ndataPointSetFile; ++k)
    addSlot(names, ascii.dataPointSetFileName[k], InputKind::kPointSet);
  if (ascii.maskImageFlag) addSlot(names, ascii.maskImageFileName, kImage);
  const std::pair<signed char, char *> maps[] = {
      {ascii.homothetyXRatioImageFlag, ascii.homothetyXRatioImageFileName},
      {ascii.homothetyYRatioImageFlag, ascii.homothetyYRatioImageFileName},
      {ascii.homothetyZRatioImageFlag, ascii.homothetyZRatioImageFileName},
      {ascii.rotationAzimuthImageFlag, ascii.rotationAzimuthImageFileName},
      {ascii.rotationDipImageFlag, ascii.rotationDipImageFileName},
      {ascii.rotationPlungeImageFlag, ascii.rotationPlungeImageFileName}};
  for (std::size_t m = 0; m < 6; ++m) {
    const bool used = m < 3 ? ascii.homothetyUsage > 0 : ascii.rotationUsage > 0;
    if (used && maps[m].first) addSlot(names, maps[m].second, kImage);
  }
  for (int v = 0; v < ascii.nsimVar; ++v) {
    if (ascii.softProbabilityASCII != nullptr)
      addSlot(names, ascii.softProbabilityASCII[v].localPdfImageFileName, kImage);
    if (ascii.connectivityASCII != nullptr) {
      char *reference = ascii.connectivityASCII[v].refConnectivityImageFileName;
      if (reference != nullptr && std::strcmp(reference, "_TI_") != 0)
        addSlot(names, reference, kImage);
    }
    if (ascii.blockDataASCII != nullptr)
      addSlot(names, ascii.blockDataASCII[v].blockDataFileName, InputKind::kBlockData);
  }
  return names;
}

std::vector<std::string> inputFiles(const nuvo_simInputASCII &ascii) {
  std::vector<std::string> files;
  for (const InputName &name : inputNames(ascii)) files.emplace_back(name.slot);
  return files;
}

std::string firstInputProblem(const nuvo_simInputASCII &ascii) {
  for (const InputName &named : inputNames(ascii)) {
    if (const std::string problem = problemOf(named.slot, named.kind); !problem.empty())
      return std::string(": ") + named.slot + " (" + problem + ")";
  }
  return "";
}

std::vector<std::string> outputFiles(const nuvo_simInputASCII &ascii) {
  std::vector<std::string> files;
  int nkept = 0;
  for (int v = 0; v < ascii.nsimVar; ++v) nkept += ascii.outputVarFlag[v] != 0;
  if (nkept > 0 && ascii.outputSimJob == OUTPUT_SIM_ALL_IN_ONE_FILE) {
    files.emplace_back(ascii.outputSimImageFileName[0]);
  } else if (nkept > 0 && ascii.outputSimJob == OUTPUT_SIM_ONE_FILE_PER_VARIABLE) {
    for (int j = 0; j < nkept; ++j) files.emplace_back(ascii.outputSimImageFileName[j]);
  } else if (nkept > 0 && ascii.outputSimJob == OUTPUT_SIM_ONE_FILE_PER_REALIZATION) {
    addPerRealization(files, ascii.outputSimImageFileName[0], ascii.nrealization);
  }
  const signed char flags[] = {ascii.outputPathIndexFlag, ascii.outputErrorFlag,
                               ascii.outputTiGridNodeIndexFlag, ascii.outputTiIndexFlag};
  const char *prefixes[] = {ascii.outputPathIndexFileName, ascii.outputErrorFileName,
                            ascii.outputTiGridNodeIndexFileName, ascii.outputTiIndexFileName};
  for (int m = 0; m < 4; ++m) {
    if (flags[m]) addPerRealization(files, prefixes[m], ascii.nrealization);
  }
  if (ascii.outputReportFlag) files.emplace_back(ascii.outputReportFileName);
  return files;
}

std::string createOutputFolders(const std::vector<std::string> &files) {
  for (const std::string &file : files) {
    const fs::path folder = fs::path(file).parent_path();
    std::error_code error;
    if (!folder.empty()) fs::create_directories(folder, error);
    if (error) return file + ": cannot create its folder (" + error.message() + ")";
  }
  return "";
}

}  // namespace nuvo::runfile
