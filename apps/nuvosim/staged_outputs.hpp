// The files a run writes, staged: the library writes each under a temporary name
// beside its final one, and the names are changed only once the run has
// succeeded, so that a failed or interrupted run leaves no truncated file, two runs
// writing the same outputs cannot mix their realizations, and an existing file is
// replaced only when asked for.
#pragma once

#include <string>
#include <vector>

#include "nuvo_siminput.h"

namespace nuvo::cli {

class StagedOutputs {
 public:
  // `ascii` gives the outputs (names from the working directory); `shown` holds
  // the same names as the user should read them; `replace` allows existing
  // outputs to be replaced.
  StagedOutputs(const nuvo_simInputASCII &ascii, std::vector<std::string> shown, bool replace);
  // Removes the temporary files that were not renamed.
  ~StagedOutputs();
  StagedOutputs(const StagedOutputs &) = delete;
  StagedOutputs &operator=(const StagedOutputs &) = delete;

  // Refuses an output that exists already (unless replacing). Returns kSuccess or
  // kOutputError after naming it.
  int checkExisting() const;

  // Creates the missing folders, makes sure every temporary file can be created
  // and gives `input` the temporary names. Returns kSuccess or kOutputError after
  // reporting the file and the system's reason.
  int stage(nuvo_simInput &input);

  // Gives the temporary files written their final names: all of them after a
  // successful run, those complete so far after an interruption. Returns
  // kSuccess or kOutputError after reporting.
  int commit();

  // After the library failed to write: the file it was writing (the temporary
  // file written last) and `reason`, reported on stderr.
  void reportWriteFailure(const std::string &reason) const;

  // The outputs renamed by commit, as shown to the user.
  const std::vector<std::string> &committed() const { return committed_; }

 private:
  std::vector<std::string> finals_;
  std::vector<std::string> temporaries_;
  std::vector<std::string> shown_;
  std::vector<std::string> committed_;
  bool replace_;
};

}  // namespace nuvo::cli
