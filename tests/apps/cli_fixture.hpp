// The fixtures of the command-line tests: a scratch folder per test where the
// built nuvosim program runs, and a small simulation case in it.
#pragma once

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include "nuvo_imagefile.h"
#include "tests/support/temp_folder.hpp"

namespace nuvo::test {

namespace fs = std::filesystem;

struct Outcome {
  int status;
  std::string out;
  std::string err;
};

using nuvo_test::fileText;

// Whether `text` (a program's output, a file) holds `part`; the failure shows both.
inline ::testing::AssertionResult holds(const std::string &text, const std::string &part) {
  if (text.find(part) != std::string::npos) return ::testing::AssertionSuccess();
  return ::testing::AssertionFailure() << "no \"" << part << "\" in:\n" << text;
}

// A scratch folder per test, where the program runs and writes its files.
class Cli : public ::testing::Test {
 protected:
  fs::path path(const std::string &name) const { return dir_.file(name); }

  void writeFile(const std::string &name, const std::string &content) const {
    dir_.write(name, content);
  }

  // Runs "nuvosim <arguments>" in the scratch folder, after the shell commands
  // of `setting` (limits, signal dispositions).
  Outcome run(const std::string &arguments, const std::string &setting = "") const {
    const std::string command = "cd '" + dir_.path() + "' && " + setting + " '" NUVOSIM_BIN "' " +
                                arguments + " >stdout.txt 2>stderr.txt";
    const int raw = std::system(command.c_str());
    return {WIFEXITED(raw) ? WEXITSTATUS(raw) : -1, fileText(path("stdout.txt")),
            fileText(path("stderr.txt"))};
  }

  // Reads an image file with the library; fails the test on error.
  void readImage(const std::string &name, int key, nuvo_image *image) const {
    FILE *stream = std::fopen(path(name).c_str(), "rb");
    ASSERT_NE(stream, nullptr) << name;
    EXPECT_EQ(NUVOReadImage(image, key, stream), 0) << name;
    std::fclose(stream);
  }

 private:
  nuvo_test::TempFolder dir_;
};

// A 30 x 30 channel simulation from a 40 x 40 training image, one realization in
// one file; NEIGHBORS is replaced by the number of neighbors.
inline constexpr const char *kTinyParameterFile = R"(/* tiny */
30 30 1  1.0 1.0 1.0  0.0 0.0 0.0
1 facies 1 %.0f
OUTPUT_SIM_ALL_IN_ONE_FILE out/sim.gslib
0 0 0 0
0
1 ti.gslib
0
0
0 0 0
0.0
NORMALIZING_LINEAR
SEARCHNEIGHBORHOOD_RADIUS_LARGE_DEFAULT SEARCHNEIGHBORHOOD_ANISOTROPY_RATIO_ONE
SEARCHNEIGHBORHOOD_ROTATION_OFF 0.0
NEIGHBORS   // maximal number of neighbors
1.0
RESCALING_NONE
0
0
1.0
SIM_VARIABLE_VECTOR PATH_RANDOM
0.05
0 0 0
0.2
0
0.0
0
123 1
1
END
)";

// Runs and checks parameter files in case/, from the scratch folder above it.
class CliRun : public Cli {
 protected:
  void SetUp() override {
    Cli::SetUp();
    fs::create_directories(path("case"));
    ASSERT_EQ(run("generate channels case/ti.gslib --nx 40 --ny 40 --width 4 --seed 5").status, 0);
  }

  // Writes case/tiny.in: the small parameter file with 12 neighbors and each
  // (text, replacement) applied once.
  void writeCase(const std::vector<std::pair<std::string, std::string>> &changes) const {
    std::string text = kTinyParameterFile;
    text.replace(text.find("NEIGHBORS"), 9, "12");
    for (const auto &[from, to] : changes) {
      const std::size_t at = text.find(from);
      ASSERT_NE(at, std::string::npos) << from;
      text.replace(at, from.size(), to);
    }
    writeFile("case/tiny.in", text);
  }
};

}  // namespace nuvo::test
