#include "run_files.hpp"

#include <cctype>
#include <cstring>
#include <memory>
#include <system_error>

#include "nuvo_text.h"

namespace nuvo::runfile {

namespace {

namespace fs = std::filesystem;

constexpr std::size_t kShownLength = 40;

struct FileCloser {
  void operator()(std::FILE *stream) const { std::fclose(stream); }
};

bool blank(int c) {
  return std::isspace(static_cast<unsigned char>(c)) != 0;
}

// `word`, cut after kShownLength characters.
std::string shorten(const std::string &word) {
  return word.size() > kShownLength ? word.substr(0, kShownLength) + "..." : word;
}

// The input files of `ascii` that the loading code `rc` may be about.
std::vector<const char *> namesOfCode(const nuvo_simInputASCII &ascii, int rc) {
  const auto list = [](char **names, int n) { return std::vector<const char *>(names, names + n); };
  switch (-rc) {
    case 111:
      return list(ascii.dataImageFileName, ascii.ndataImageFile);
    case 112:
      return list(ascii.trainImageFileName, ascii.ntrainImage);
    case 113:
      return {ascii.homothetyXRatioImageFileName};
    case 114:
      return {ascii.homothetyYRatioImageFileName};
    case 115:
      return {ascii.homothetyZRatioImageFileName};
    case 116:
      return {ascii.rotationAzimuthImageFileName};
    case 117:
      return {ascii.rotationDipImageFileName};
    case 118:
      return {ascii.rotationPlungeImageFileName};
    case 119:
      return {ascii.pdfTrainImageFileName};
    case 123:
      return list(ascii.dataPointSetFileName, ascii.ndataPointSetFile);
    case 125:
      return {ascii.maskImageFileName};
    default:
      return {};
  }
}

void addPerRealization(std::vector<std::string> &files, const char *prefix, int nrealization) {
  for (int r = 0; r < nrealization; ++r) {
    char digits[6];
    NUVOIntToString(r, digits, 5);
    files.push_back(std::string(prefix) + "_real" + digits + ".gslib");
  }
}

}  // namespace

FolderChange::FolderChange(const fs::path &folder) {
  if (folder.empty()) return;
  std::error_code error;
  previous_ = fs::current_path(error);
  if (!error) fs::current_path(folder, error);
  if (error) {
    failure_ = folder.string() + ": cannot enter the folder (" + error.message() + ")";
    previous_.clear();
  }
}

FolderChange::~FolderChange() {
  std::error_code ignored;
  if (!previous_.empty()) fs::current_path(previous_, ignored);
}

fs::path parameterFolder(const std::string &path) {
  return fs::path(path).parent_path();
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

std::string unopenedInput(const nuvo_simInputASCII &ascii, int rc) {
  for (const char *name : namesOfCode(ascii, rc)) {
    if (name == nullptr || std::strcmp(name, NUVO_SIM_GRID_AS_TI_NAME) == 0) continue;
    const std::unique_ptr<std::FILE, FileCloser> stream{std::fopen(name, "rb")};
    if (!stream) return std::string(": ") + name;
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
