// What check and run refuse or warn about before simulating, and how run treats
// its outputs: staged under temporary names, never replaced without --force,
// nothing truncated left behind by a failed or interrupted run.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include "tests/apps/cli_fixture.hpp"
#include "tests/data/data_builders.hpp"

namespace {

using nuvo::test::CliRun;
using nuvo::test::fileText;
using nuvo::test::holds;
using nuvo::test::Outcome;
namespace fs = std::filesystem;

class CliChecks : public CliRun {
 protected:
  // Files in case/out whose name starts with `start`.
  int countOutputs(const std::string &start) const {
    int n = 0;
    if (!fs::exists(path("case/out"))) return 0;
    for (const auto &entry : fs::directory_iterator(path("case/out")))
      n += entry.path().filename().string().rfind(start, 0) == 0;
    return n;
  }

  void expectRefused(const char *command, int status, const std::string &message) const {
    const Outcome r = run(std::string(command) + " case/tiny.in");
    EXPECT_EQ(r.status, status) << command << "\n" << r.err;
    EXPECT_TRUE(holds(r.err, message));
    EXPECT_EQ(countOutputs(""), 0);
  }
};

constexpr const char *kGridLine = "30 30 1  1.0 1.0 1.0";
constexpr const char *kNoData = "1 ti.gslib\n0\n0\n";

// Settings the library accepts but that give no or a useless result, format
// strings found bad only when writing, outputs on inputs and grids too large for
// memory are refused by check and run before anything is loaded or written.
// Values that are not finite are refused with the file, the variable and the
// place, whether in a training image or a point set.
TEST_F(CliChecks, ParametersThatLoseResultsAreRefusedNamingTheField) {
  std::string ti = fileText(path("case/ti.gslib"));
  ti.replace(ti.rfind('\n', ti.size() - 2) + 1, std::string::npos, "nan\n");
  writeFile("case/nan.gslib", ti);
  writeFile("case/points.txt", "2\n4\nx\ny\nz\nfacies\n1.5 2.5 0.5 1\n3.5 4.5 0.5 inf\n");
  const std::pair<std::pair<std::string, std::string>, std::string> cases[] = {
      {{"1 ti.gslib", "1 nan.gslib"},
       "nan.gslib: variable facies, node 1599: value nan is not a finite"},
      {{kNoData, "1 ti.gslib\n0\n1 points.txt\n"},
       "points.txt: variable facies, point 1: value inf is not a finite"},
      {{kGridLine, "30 30 1  0.0 1.0 1.0"}, "SIMULATION GRID, simGridSx = 0: the cell size"},
      {{kGridLine, "30 30 1  1.0 -2 1.0"}, "simGridSy = -2: the cell size must be positive"},
      {{"123 1\n1\nEND", "123 1\n0\nEND"}, "NUMBER OF REALIZATION(S), nrealization = 0"},
      {{"123 1\n1\nEND", "123 1\n-1\nEND"}, "nrealization = -1: at least 1 is needed"},
      {{"1 facies 1 %.0f", "1 facies 1 %s"}, "formatStringVar of facies = %s: not one printf"},
      {{"out/sim.gslib", "ti.gslib"}, "the output ti.gslib would overwrite the input ti.gslib"},
      {{"0 0 0 0\n0\n", "0 0 0 0\n1 ./out/sim.gslib\n"},
       "two outputs of the run are the same file: out/sim.gslib and ./out/sim.gslib"},
      {{kGridLine, "2147483647 1 1  1.0 1.0 1.0"},
       "the simulation needs about 120.3 GB of memory for a 2147483647 x 1 x 1 grid"},
      {{kGridLine, "2147483647 2 1  1.0 1.0 1.0"}, "more than the largest grid (2147483647)"},
      // What the library refuses names the field and the variable or image.
      {{"PATH_RANDOM\n0.05", "PATH_RANDOM\n2"},
       "case/tiny.in: DISTANCE THRESHOLD, variable facies: ERROR 00673"},
      {{"0 0 0\n0.2\n", "0 0 0\n0\n"},
       "case/tiny.in: MAXIMAL SCAN FRACTION, training image 0: ERROR 00674"},
  };
  for (const auto &[change, message] : cases) {
    SCOPED_TRACE(message);
    writeCase({change});
    expectRefused("check", 2, message);
    expectRefused("run", 2, message);
  }
#ifndef __SANITIZE_ADDRESS__  // the sanitizer's shadow memory needs no address-space limit
  writeCase({{kGridLine, "2000 2000 10  1.0 1.0 1.0"}});
  const Outcome r = run("check case/tiny.in", "ulimit -v 1000000;");
  EXPECT_EQ(r.status, 2);
  EXPECT_TRUE(holds(r.err,
                    "GB of memory for a 2000 x 2000 x 10 grid, more than the address-space "
                    "limit of the process (1.0 GB)"));
#endif
}

// check warns about all that run would: here a zero radius, a zero seed
// increment, a point outside the grid and an output that exists.
TEST_F(CliChecks, CheckWarnsAboutWhatRunWould) {
  writeFile("case/points.txt", "2\n4\nx\ny\nz\nfacies\n1.5 2.5 0.5 1\n35.5 4.5 0.5 0\n");
  writeCase({{"SEARCHNEIGHBORHOOD_RADIUS_LARGE_DEFAULT", "SEARCHNEIGHBORHOOD_RADIUS_MANUAL 0 0 0"},
             {"123 1\n1\nEND", "123 0\n2\nEND"},
             {kNoData, "1 ti.gslib\n0\n1 points.txt\n"}});
  fs::create_directories(path("case/out"));
  writeFile("case/out/sim.gslib", "");
  const Outcome r = run("check case/tiny.in");
  EXPECT_EQ(r.status, 0) << r.err;
  EXPECT_TRUE(
      holds(r.err, "SEARCH NEIGHBORHOOD PARAMETERS of facies: radius 0 in every direction"));
  EXPECT_TRUE(holds(r.err, "seedIncrement = 0, so the 2 realizations are identical"));
  EXPECT_TRUE(holds(r.err, "WARNING 00042"));
  EXPECT_TRUE(holds(r.err, "case/out/sim.gslib: warning: the output exists already"));
  EXPECT_TRUE(holds(r.out, "4 warning(s)"));
}

// An existing output is replaced only with --force; a full disk (here a file size
// limit) names the file and the system's reason and leaves no file at all.
TEST_F(CliChecks, OutputsAreStagedAndNeverReplacedUnasked) {
  writeCase({});
  ASSERT_EQ(run("run case/tiny.in --quiet").status, 0);
  const std::string first = fileText(path("case/out/sim.gslib"));
  Outcome r = run("run case/tiny.in --quiet");
  EXPECT_EQ(r.status, 3);
  EXPECT_TRUE(holds(r.err, "case/out/sim.gslib: the output exists already; --force"));
  EXPECT_EQ(fileText(path("case/out/sim.gslib")), first);
  r = run("run case/tiny.in --quiet --force");
  EXPECT_EQ(r.status, 0) << r.err;
  EXPECT_EQ(countOutputs(".nuvosim"), 0);
  fs::remove_all(path("case/out"));
  fs::create_directories(path("case/out/sim.gslib"));  // a folder where the file should go
  r = run("run case/tiny.in --quiet");
  EXPECT_EQ(r.status, 3);
  EXPECT_TRUE(holds(r.err, "case/out/sim.gslib: the output exists already"));

  fs::remove_all(path("case/out"));
  r = run("run case/tiny.in --quiet", "trap '' XFSZ; ulimit -f 1;");
  EXPECT_EQ(r.status, 3);
  EXPECT_TRUE(holds(r.err, "case/out/sim.gslib: cannot be written (File too large)"));
  EXPECT_EQ(countOutputs(""), 0);
}

// SIGTERM stops a run like Ctrl-C: the library's message, the complete
// realizations kept under their names, no temporary file, status 128 + 15.
TEST_F(CliChecks, TerminationKeepsCompleteOutputsAndExitsWith143) {
  writeCase(
      {{"OUTPUT_SIM_ALL_IN_ONE_FILE out/sim.gslib", "OUTPUT_SIM_ONE_FILE_PER_REALIZATION out/sim"},
       {"123 1\n1\nEND", "123 1\n5000\nEND"}});
  const std::string script = "cd '" + path("").string() +
                             "' && ('" NUVOSIM_BIN
                             "' run case/tiny.in --quiet 2>err.txt & pid=$!; n=0; "
                             "while ! ls case/out/.nuvosim-*sim_real00001.gslib >/dev/null 2>&1 && "
                             "[ $n -lt 600 ]; "
                             "do sleep 0.1; n=$((n+1)); done; "
                             "kill -TERM $pid; wait $pid; echo $? >status.txt)";
  ASSERT_EQ(std::system(script.c_str()), 0);
  EXPECT_EQ(fileText(path("status.txt")), "143\n");
  const std::string err = fileText(path("err.txt"));
  EXPECT_TRUE(holds(err, "ERROR 01000: aborted job (signal 15)"));
  EXPECT_EQ(countOutputs(".nuvosim"), 0);
  const int kept = countOutputs("sim_real");
  EXPECT_GT(kept, 0);
  nuvo::test::EmptyImage last;
  readImage("case/out/sim_real" + std::string(5 - std::to_string(kept - 1).size(), '0') +
                std::to_string(kept - 1) + ".gslib",
            NUVO_IMAGE_FORMAT_GSLIB, &last.image);
  EXPECT_EQ(last->nxyzv, 900);
}

// A word or an integer written as a real is refused at its own field, with its
// token; a file that cannot be loaded is named with the system's reason or its
// problem.
TEST_F(CliChecks, ErrorsNameTheFieldOrTheFileAndTheReason) {
  for (const char *neighbors : {"twelve", "1.0", "5e1", "1e308"}) {
    writeCase({{"12   // maximal", std::string(neighbors) + "   // maximal"}});
    for (const char *command : {"check", "run"})
      expectRefused(command, 2,
                    "case/tiny.in: line 15, at \"" + std::string(neighbors) +
                        "\": ERROR 00849: reading error, input ASCII (nneighboringNode)");
  }
  fs::create_directories(path("case/folder.gslib"));
  writeFile("case/empty.gslib", "");
  writeFile("case/short.gslib", "2 2 1\n1\nfacies\n0 1 1\n");
  writeFile("missing.gslib", "");  // names are taken from the parameter file's folder
  const std::pair<const char *, const char *> files[] = {
      {"folder.gslib", "folder.gslib (a folder, not a file)"},
      {"empty.gslib", "empty.gslib (empty file)"},
      {"short.gslib", "short.gslib (ERROR 00730: reading error, image: invalid number of entries)"},
      {"missing.gslib",
       "ERROR 00112: training image file can not be opened: missing.gslib (No such file or "
       "directory)"}};
  for (const auto &[name, message] : files) {
    writeCase({{"1 ti.gslib", std::string("1 ") + name}});
    expectRefused("run", 2, message);
  }
}

// The parameter file from a pipe (names from the current folder), its seed and
// number of realizations replaced, the outputs sent to another folder.
TEST_F(CliChecks, RunOptionsReplaceTheFilesSettings) {
  writeCase({{"1 ti.gslib", "1 case/ti.gslib"}});
  Outcome r = run("run - --quiet --nreal 2 --seed 9 --output-dir res < case/tiny.in");
  ASSERT_EQ(r.status, 0) << r.err;
  nuvo::test::EmptyImage image;
  readImage("res/sim.gslib", NUVO_IMAGE_FORMAT_GSLIB, &image.image);
  EXPECT_EQ(image->nvar, 2);
  r = run("run - --quiet --nreal 2 --output-dir res123 < case/tiny.in");
  ASSERT_EQ(r.status, 0) << r.err;
  EXPECT_NE(fileText(path("res/sim.gslib")), fileText(path("res123/sim.gslib")));
  EXPECT_EQ(run("check /dev/stdin < case/tiny.in").status, 0);
  r = run("check /dev/stdin", "cat case/tiny.in |");
  EXPECT_EQ(r.status, 0) << r.err;
}

// Training images in any format the library reads give the same realization as
// their GSLIB text; a standard grey map (no comment line) reads as a 2D image.
TEST_F(CliChecks, ImagesOfEveryFormatAreLoaded) {
  writeCase({});
  ASSERT_EQ(run("run case/tiny.in --quiet").status, 0);
  const std::string fromText = fileText(path("case/out/sim.gslib"));
  for (const char *format : {"vtk", "bin"}) {
    ASSERT_EQ(run(std::string("convert case/ti.gslib case/ti.") + format).status, 0);
    writeCase({{"1 ti.gslib", std::string("1 ti.") + format}});
    const Outcome r = run("run case/tiny.in --quiet --force");
    ASSERT_EQ(r.status, 0) << r.err;
    EXPECT_EQ(fileText(path("case/out/sim.gslib")), fromText) << format;
  }
  writeFile("plain.pgm", "P2\n3 2\n255\n0 1 2\n3 4 5\n");
  const Outcome r = run("info plain.pgm");
  EXPECT_EQ(r.status, 0) << r.err;
  EXPECT_TRUE(holds(r.out, "Number of variables:   1"));
}

}  // namespace
