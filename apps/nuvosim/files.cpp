#include "files.hpp"

#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <system_error>

#include "commands.hpp"
#include "nuvo_error.h"

namespace nuvo::cli {

namespace {

constexpr int kInputNotOpened = 109;
constexpr int kOutputNotOpened = 110;

}  // namespace

ScratchFolder::ScratchFolder() {
  std::string name = (std::filesystem::temp_directory_path() / "nuvosim-XXXXXX").string();
  if (::mkdtemp(name.data()) != nullptr) path_ = name;
}

ScratchFolder::~ScratchFolder() {
  std::error_code ignored;
  if (!path_.empty()) std::filesystem::remove_all(path_, ignored);
}

void reportFailure(const std::string &path, const std::string &message) {
  std::fprintf(stderr, "nuvosim: %s: %s\n", path.c_str(), message.c_str());
}

File openInput(const std::string &path) {
  std::string reason;
  File stream = openReadable(path, reason);
  if (!stream) reportFailure(path, libraryMessage(-kInputNotOpened) + " (" + reason + ")");
  return stream;
}

int writeOutput(const std::string &path, const std::function<std::string(std::FILE *)> &write) {
  const std::string temporary = path + ".tmp";
  std::FILE *stream = std::fopen(temporary.c_str(), "wb");
  if (stream == nullptr) {
    reportFailure(path, libraryMessage(-kOutputNotOpened) + " (" + temporary + ": " +
                            std::strerror(errno) + ")");
    return kOutputError;
  }
  std::string failure = write(stream);
  const bool streamFailed = std::ferror(stream) != 0;
  const bool closeFailed = std::fclose(stream) != 0;
  if (failure.empty() && (streamFailed || closeFailed)) {
    failure = std::string("write failed (") + std::strerror(errno) + ")";
  }
  if (failure.empty() && std::rename(temporary.c_str(), path.c_str()) != 0) {
    failure = "cannot rename " + temporary + ": " + std::strerror(errno);
  }
  if (failure.empty()) return kSuccess;
  reportFailure(path, failure + "; nothing written");
  if (std::remove(temporary.c_str()) != 0) {
    std::fprintf(stderr, "nuvosim: the partial file %s could not be removed\n", temporary.c_str());
  }
  return kOutputError;
}

}  // namespace nuvo::cli
