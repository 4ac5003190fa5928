#include "staged_outputs.hpp"

#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <set>
#include <system_error>

#include "commands.hpp"
#include "files.hpp"
#include "nuvo_text.h"
#include "parameter_file.hpp"

namespace nuvo::cli {

namespace {

namespace fs = std::filesystem;

// The temporary twin of an output name (a file or a prefix the library appends
// to): the same folder, a hidden name holding the process number, so that
// "<twin of prefix><suffix>" is the twin of "<prefix><suffix>".
std::string temporaryName(const std::string &name) {
  const fs::path path(name);
  const std::string hidden =
      ".nuvosim-" + std::to_string(::getpid()) + "-" + path.filename().string();
  return (path.parent_path() / hidden).string();
}

// Replaces the name in the owned buffer `slot` by its temporary twin; false when
// the twin does not fit the buffer.
bool renameSlot(char *slot) {
  const std::string twin = temporaryName(slot);
  if (twin.size() > NUVO_FILE_NAME_MAX) {
    reportFailure(slot, "name too long for its temporary twin " + twin);
    return false;
  }
  std::memcpy(slot, twin.c_str(), twin.size() + 1);
  return true;
}

// Moves `from` to `to`; without `replace`, an existing `to` is an error (EEXIST),
// also when another program creates it meanwhile.
bool moveFile(const std::string &from, const std::string &to, bool replace) {
  if (replace) return std::rename(from.c_str(), to.c_str()) == 0;
  if (::link(from.c_str(), to.c_str()) != 0) return false;
  return ::unlink(from.c_str()) == 0;
}

}  // namespace

StagedOutputs::StagedOutputs(const nuvo_simInputASCII &ascii, std::vector<std::string> shown,
                             bool replace)
    : finals_(outputFiles(ascii)), shown_(std::move(shown)), replace_(replace) {
  for (const std::string &name : finals_) temporaries_.push_back(temporaryName(name));
}

StagedOutputs::~StagedOutputs() {
  for (const std::string &name : temporaries_) std::remove(name.c_str());
}

int StagedOutputs::checkExisting() const {
  if (replace_) return kSuccess;
  for (std::size_t k = 0; k < finals_.size(); ++k) {
    std::error_code error;
    if (!fs::exists(fs::symlink_status(finals_[k], error))) continue;
    reportFailure(shown_[k], "the output exists already; --force replaces it");
    return kOutputError;
  }
  return kSuccess;
}

int StagedOutputs::stage(nuvo_simInput &input) {
  std::set<fs::path> folders;
  for (std::size_t k = 0; k < finals_.size(); ++k) {
    const fs::path folder = fs::path(finals_[k]).parent_path();
    if (!folders.insert(folder).second) continue;  // one probe per folder
    std::error_code error;
    if (!folder.empty()) fs::create_directories(folder, error);
    if (error) {
      reportFailure(shown_[k], "cannot create its folder (" + error.message() + ")");
      return kOutputError;
    }
    // Created and removed again: only the files the library writes may be renamed.
    std::FILE *probe = std::fopen(temporaries_[k].c_str(), "w");
    if (probe == nullptr) {
      reportFailure(shown_[k], std::string("cannot be written (") + std::strerror(errno) + ")");
      return kOutputError;
    }
    std::fclose(probe);
    std::remove(temporaries_[k].c_str());
  }
  bool fits = true;
  for (char *slot : outputNameSlots(input, input.nvar)) fits = fits && renameSlot(slot);
  return fits ? kSuccess : kOutputError;
}

int StagedOutputs::commit() {
  for (std::size_t k = 0; k < finals_.size(); ++k) {
    std::error_code error;
    if (!fs::exists(temporaries_[k], error)) continue;
    if (!moveFile(temporaries_[k], finals_[k], replace_)) {
      const int reason = errno;
      reportFailure(shown_[k],
                    std::string("cannot be given its name (") + std::strerror(reason) +
                        (reason == EEXIST ? "; written meanwhile by another program" : "") + ")");
      return kOutputError;
    }
    committed_.push_back(shown_[k]);
  }
  return kSuccess;
}

void StagedOutputs::reportWriteFailure(const std::string &reason) const {
  std::size_t last = 0;
  fs::file_time_type lastTime = fs::file_time_type::min();
  for (std::size_t k = 0; k < temporaries_.size(); ++k) {
    std::error_code error;
    const fs::file_time_type time = fs::last_write_time(temporaries_[k], error);
    if (!error && time >= lastTime) {
      lastTime = time;
      last = k;
    }
  }
  if (!shown_.empty()) reportFailure(shown_[last], "cannot be written (" + reason + ")");
}

}  // namespace nuvo::cli
