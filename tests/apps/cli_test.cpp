// Runs the built nuvosim program on small files: exit statuses, messages, the
// files it writes (read back with the library, pictures decoded with libpng).
#include <gtest/gtest.h>
#include <png.h>

#include <array>
#include <cstdio>
#include <filesystem>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "nuvo_imagefile.h"
#include "tests/apps/cli_fixture.hpp"
#include "tests/data/data_builders.hpp"

namespace {

using nuvo::test::Cli;
using nuvo::test::CliRun;
using nuvo::test::fileText;
using nuvo::test::holds;
using nuvo::test::Outcome;
namespace fs = std::filesystem;

// Two variables on a 3 x 2 grid: "a" holds its node index, "b" is 5 except one
// missing value at node (2, 1).
constexpr const char *kSmallImage =
    "3 2 1\n2\na\nb\n"
    "0 5\n1 5\n2 5\n"
    "3 5\n4 5\n5 -9999999\n";

// Exit status 1 for a wrong command line, 2 for an input that cannot be read, 3
// for an output that cannot be written; the message names the file, and nothing
// is left behind.
TEST_F(Cli, FailuresExitWithTheirStatusAndMessageAndWriteNothing) {
  writeFile("a.gslib", kSmallImage);
  writeFile("short.gslib", "2 2 1\n1\nfacies\n0 1 1\n");
  writeFile("over.pgm", "P2\n# grey\n2 1\n255\n12 300\n");
  writeFile("bad.ppm", "P3\n# colour\nwidth height\n255\n");
  writeFile("big.gslib", "2 1 1\n1\nv\n12\n300\n");
  struct Case {
    const char *arguments;
    int status;
    const char *message;
  };
  const Case cases[] = {
      {"", 1, "A subcommand is required"},
      {"convert only-one-file.gslib", 1, "OUT is required"},
      {"info x.gslib --no-such-option", 1, "--no-such-option"},
      {"convert a.gslib b.gslib --to jpeg", 1, "unknown format jpeg"},
      {"convert a.gslib b.gslib --format %s", 1, "not a number conversion: %s"},
      {"info a.xyz", 1, "a.xyz"},
      {"render a.gslib b.png --var nope", 1, "no variable named nope"},
      {"render a.gslib b.png --slice 1", 1, "no slice 1"},
      {"analyze a.gslib", 1, "REALIZATION is required"},
      {"analyze a.gslib a.gslib --var nope", 2, "a.gslib: no variable named nope"},
      {"render a.gslib b.jpg", 1, "b.jpg: only PNG pictures are written"},
      {"render a.gslib b.png --slice -1", 1, "-1 must be 0 or more"},
      {"sample a.gslib 0 b.txt", 1, "0 must be greater than 0"},
      {"generate channels b.gslib --proportion 1.5", 1, "--proportion"},
      {"info short.gslib", 2, "short.gslib: ERROR 00730"},
      {"convert missing.vtk b.gslib", 2, "missing.vtk: ERROR 00109"},
      {"info . --from gslib", 2, ".: ERROR 00109: a file (input) can not be opened (a folder, not"},
      {"convert a.gslib b.pgm", 3, "b.pgm: ERROR 01016"},  // two variables in a grey map
      {"convert a.gslib no-such-folder/b.vtk", 3, "ERROR 00110"},
      {"info over.pgm", 2, "over.pgm: variable pgmValue, node 1: value 300 outside 0..255"},
      {"info bad.ppm", 2, "bad.ppm: ERROR 00770: reading error, image PPM format (dimension"},
      {"convert big.gslib b.pgm", 3, "value 300 outside 0..255, the range of a written map"},
  };
  for (const Case &c : cases) {
    SCOPED_TRACE(c.arguments);
    const Outcome r = run(c.arguments);
    EXPECT_EQ(r.status, c.status);
    EXPECT_TRUE(holds(r.err, c.message));
  }
  for (const char *name : {"b.gslib", "b.png", "b.pgm", "b.pgm.tmp"})
    EXPECT_FALSE(fs::exists(path(name))) << name;
}

TEST_F(Cli, VersionAndHelpWorkEverywhere) {
  Outcome r = run("--version");
  EXPECT_EQ(r.status, 0);
  EXPECT_EQ(r.out.rfind("NUVO ", 0), 0u) << r.out;
  r = run("--help");
  EXPECT_EQ(r.status, 0);
  EXPECT_TRUE(holds(r.out, "Exit status"));
  for (const char *command :
       {"run", "check", "info", "convert", "render", "generate", "generate channels",
        "generate lenses", "generate field", "sample", "analyze"}) {
    r = run(std::string(command) + " --help");
    EXPECT_EQ(r.status, 0) << command;
    EXPECT_TRUE(holds(r.out, std::string("Usage: nuvosim ") + command));
  }
}

TEST_F(Cli, ConvertRoundTripsThroughEveryImageFormat) {
  ASSERT_EQ(run("generate lenses lenses.gslib --nx 12 --ny 9 --nz 3 --seed 4").status, 0);
  ASSERT_EQ(run("convert lenses.gslib lenses.bin").status, 0);
  ASSERT_EQ(run("convert lenses.bin lenses.vtk").status, 0);
  ASSERT_EQ(run("convert lenses.vtk lenses.data --to gslib").status, 0);
  ASSERT_EQ(run("convert lenses.data back.gslib --from 0").status, 0);
  EXPECT_EQ(fileText(path("back.gslib")), fileText(path("lenses.gslib")));

  ASSERT_EQ(run("generate lenses field.gslib --nx 5 --ny 4 --nz 1").status, 0);
  ASSERT_EQ(run("convert field.gslib field.pgm").status, 0);
  ASSERT_EQ(run("convert field.pgm field.txt --format %.3f").status, 0);
  nuvo::test::EmptyImage image;
  readImage("field.txt", NUVO_IMAGE_FORMAT_GSLIB, &image.image);
  ASSERT_EQ(image->nxyzv, 20);
  EXPECT_STREQ(image->varName[0], "pgmValue");

  const Outcome info = run("info lenses.vtk");
  EXPECT_EQ(info.status, 0);
  EXPECT_TRUE(holds(info.out, "Number of variables:   1"));
}

// The rows of an analysis CSV file: value by "statistic,category,lag" and source.
std::map<std::string, std::map<std::string, double>> readAnalysis(const fs::path &csv) {
  std::map<std::string, std::map<std::string, double>> rows;
  std::istringstream lines(fileText(csv));
  std::string line;
  std::getline(lines, line);
  EXPECT_EQ(line, "statistic,category,lag,source,value");
  while (std::getline(lines, line)) {
    std::vector<std::string> field;
    std::istringstream cells(line);
    for (std::string cell; std::getline(cells, cell, ',');) field.push_back(cell);
    EXPECT_EQ(field.size(), 5u) << line;
    if (field.size() == 5u)
      rows[field[0] + "," + field[1] + "," + field[2]][field[3]] = std::stod(field[4]);
  }
  return rows;
}

TEST_F(Cli, AnalyzeSeesNoDifferenceInTheTrainingImageAndTheLossOfAShuffledCopy) {
  ASSERT_EQ(run("generate channels ti.gslib --nx 60 --ny 50 --width 4 --seed 5").status, 0);
  Outcome r = run("analyze ti.gslib ti.gslib ti.gslib --lags 3 --csv same.csv");
  ASSERT_EQ(r.status, 0) << r.err;
  EXPECT_TRUE(holds(r.out, "categorical (2 categories)"));
  auto rows = readAnalysis(path("same.csv"));
  // Proportions, isolated shares, two axes of variograms and connectivity at three
  // lags, per category.
  EXPECT_EQ(rows.size(), 2u * (2 + 2 * 2 * 3) + 1);
  for (const auto &[key, sources] : rows) {
    if (key.starts_with("js_divergence")) {
      EXPECT_EQ(sources.at("realizations"), 0.0);
      continue;
    }
    for (const char *source : {"mean", "p05", "p95"})
      EXPECT_EQ(sources.at(source), sources.at("ti")) << key;
  }

  // The same values in another order: proportions kept, structure lost.
  nuvo::test::EmptyImage image;
  readImage("ti.gslib", NUVO_IMAGE_FORMAT_GSLIB, &image.image);
  const int n = image->grid->nxyz;
  std::vector<double> values(image->var, image->var + n);
  for (int i = 0; i < n; ++i) image->var[i] = values[(i * 7919L) % n];
  FILE *stream = std::fopen(path("shuffled.gslib").c_str(), "wb");
  ASSERT_EQ(NUVOWriteImage(&image.image, "%.0f", NUVO_IMAGE_FORMAT_GSLIB, stream), 0);
  std::fclose(stream);
  r = run("analyze ti.gslib shuffled.gslib --lags 3 --csv shuffled.csv");
  ASSERT_EQ(r.status, 0) << r.err;
  rows = readAnalysis(path("shuffled.csv"));
  EXPECT_EQ(rows.at("proportion,1,").at("mean"), rows.at("proportion,1,").at("ti"));
  EXPECT_GT(rows.at("variogram_x,1,1").at("mean"), 4.0 * rows.at("variogram_x,1,1").at("ti"));
  EXPECT_LT(rows.at("connectivity_y,1,3").at("mean"), 0.5 * rows.at("connectivity_y,1,3").at("ti"));
  EXPECT_GT(rows.at("js_divergence_3x3,,").at("realizations"), 0.2);
  EXPECT_LT(rows.at("isolated,1,").at("ti"), 0.01);
  EXPECT_GT(rows.at("isolated,1,").at("mean"), 0.1);

  ASSERT_EQ(run("generate field field.gslib --nx 30 --ny 20").status, 0);
  r = run("analyze field.gslib field.gslib --lags 2 --csv field.csv");
  ASSERT_EQ(r.status, 0) << r.err;
  EXPECT_TRUE(holds(r.out, "continuous"));
  rows = readAnalysis(path("field.csv"));
  EXPECT_EQ(rows.size(), 7u + 2 * 2);
  EXPECT_EQ(rows.at("median,,").at("mean"), rows.at("median,,").at("ti"));
}

// What is drawn is checked in the toolkit tests; here the file it is written to.
TEST_F(Cli, SampleWritesAReadablePointSet) {
  ASSERT_EQ(run("generate channels ti.gslib --nx 40 --ny 30 --width 4 --seed 9").status, 0);
  const Outcome r = run("sample ti.gslib 25 points.txt --seed 3");
  ASSERT_EQ(r.status, 0) << r.err;
  FILE *stream = std::fopen(path("points.txt").c_str(), "rb");
  ASSERT_NE(stream, nullptr);
  nuvo::test::EmptyPointSet points;
  EXPECT_EQ(NUVOReadPointSet(&points.ps, stream), 0);
  std::fclose(stream);
  EXPECT_EQ(points->npoint, 25);
  EXPECT_EQ(points->nvar, 1);
}

// Decodes an 8-bit RGB PNG; fails the test when it is not one.
std::vector<png_byte> decodePng(const fs::path &file, png_uint_32 &width, png_uint_32 &height) {
  png_image png{};
  png.version = PNG_IMAGE_VERSION;
  EXPECT_NE(png_image_begin_read_from_file(&png, file.c_str()), 0) << png.message;
  png.format = PNG_FORMAT_RGB;
  std::vector<png_byte> rgb(PNG_IMAGE_SIZE(png));
  EXPECT_NE(png_image_finish_read(&png, nullptr, rgb.data(), 0, nullptr), 0) << png.message;
  width = png.width;
  height = png.height;
  return rgb;
}

TEST_F(Cli, RenderDrawsPanelsSideBySideWithYUpAndMissingInGrey) {
  writeFile("a.gslib", kSmallImage);
  const Outcome r = run("render a.gslib a.png");
  ASSERT_EQ(r.status, 0) << r.err;

  // Cells of 240 pixels make the 2-row grid 480 pixels high; two panels of three
  // cells with an 8-pixel gap make 1448 pixels across.
  png_uint_32 width = 0, height = 0;
  const std::vector<png_byte> rgb = decodePng(path("a.png"), width, height);
  ASSERT_EQ(width, 1448u);
  ASSERT_EQ(height, 480u);
  const auto pixel = [&](int x, int y) {
    const std::size_t at = 3 * (std::size_t{1} * y * width + x);
    return std::array<int, 3>{rgb[at], rgb[at + 1], rgb[at + 2]};
  };
  // The printed legend gives the colour of each value of panel 1 ("a").
  const auto legend = [&](int value) {
    std::string key = " ";
    key += std::to_string(value);
    key += " #";
    const std::size_t at = r.out.find(key);
    EXPECT_NE(at, std::string::npos) << r.out;
    const unsigned long hex = std::stoul(r.out.substr(at + 4, 6), nullptr, 16);
    return std::array<int, 3>{static_cast<int>(hex >> 16), static_cast<int>((hex >> 8) & 255),
                              static_cast<int>(hex & 255)};
  };
  // y points up: the top cells show row y = 1 (nodes 3 to 5), the bottom ones y = 0.
  EXPECT_EQ(pixel(10, 10), legend(3));
  EXPECT_EQ(pixel(250, 10), legend(4));
  EXPECT_EQ(pixel(10, 470), legend(0));
  EXPECT_EQ(pixel(719, 479), legend(2));
  EXPECT_EQ(pixel(724, 240), (std::array<int, 3>{255, 255, 255}));  // the gap
  // Panel 2 ("b"): the missing value at node (2, 1), top right, is grey.
  const int panel2 = 3 * 240 + 8;
  EXPECT_EQ(pixel(panel2 + 2 * 240 + 5, 5), (std::array<int, 3>{150, 150, 150}));
  EXPECT_EQ(pixel(panel2 + 5, 5), pixel(panel2 + 2 * 240 + 5, 470));
  EXPECT_NE(pixel(panel2 + 5, 5), pixel(panel2 + 2 * 240 + 5, 5));
}

TEST_F(CliRun, RunTakesNamesFromTheParameterFilesFolderAndWritesTheRealization) {
  writeCase({});
  Outcome r = run("check case/tiny.in");
  EXPECT_EQ(r.status, 0) << r.err;
  EXPECT_TRUE(holds(r.out, "case/tiny.in: valid"));
  EXPECT_FALSE(fs::exists(path("case/out")));

  r = run("run case/tiny.in --quiet");
  ASSERT_EQ(r.status, 0) << r.err;
  EXPECT_EQ(r.err, "");
  EXPECT_TRUE(holds(r.out, "1 realization(s)"));
  EXPECT_TRUE(holds(r.out, "case/out/sim.gslib"));
  nuvo::test::EmptyImage image;
  readImage("case/out/sim.gslib", NUVO_IMAGE_FORMAT_GSLIB, &image.image);
  ASSERT_EQ(image->nxyzv, 30 * 30);
  EXPECT_STREQ(image->varName[0], "facies_real00000");
  int channel = 0;
  for (int k = 0; k < image->nxyzv; ++k) {
    ASSERT_TRUE(image->var[k] == 0.0 || image->var[k] == 1.0) << k;
    channel += image->var[k] == 1.0;
  }
  EXPECT_GT(channel, 0);
  EXPECT_LT(channel, image->nxyzv);
}

// template writes a parameter file that is complete (check accepts it as it
// stands, run simulates it) and follows the training image and grid given.
TEST_F(Cli, TemplateWritesAParameterFileThatRunsAsItStands) {
  Outcome r = run("template setup/plain.in");
  ASSERT_EQ(r.status, 0) << r.err;
  r = run("check setup/plain.in");
  EXPECT_EQ(r.status, 0) << r.err;
  EXPECT_TRUE(holds(r.out, "100 x 100 x 1 grid, 1 variable(s)"));
  EXPECT_EQ(run("template setup/plain.in").status, 3);  // never replaced unasked

  ASSERT_EQ(run("generate lenses lenses.vtk --nx 30 --ny 20 --nz 4 --seed 2").status, 0);
  r = run("template setup/lenses.in --ti lenses.vtk --grid 12 10 3");
  ASSERT_EQ(r.status, 0) << r.err;
  const std::string text = fileText(path("setup/lenses.in"));
  EXPECT_TRUE(holds(text, "/* DISTANCE TYPE FOR EACH VARIABLE"));
  r = run("run setup/lenses.in --quiet --nreal 2");
  ASSERT_EQ(r.status, 0) << r.err;
  EXPECT_TRUE(holds(r.out, "setup/lenses_real00001.gslib"));
  EXPECT_EQ(run("template setup/x.txt").status, 1);
}

}  // namespace
