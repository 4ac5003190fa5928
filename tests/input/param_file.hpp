// A complete parameter file for the reader and exporter tests, kept as a list of
// tokens, each with the code the reader gives when that token is missing or
// malformed: truncating the file after any token, or spoiling any token, has a
// known expected code.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "nuvo_siminput.h"
#include "test_files.hpp"
#include "tests/support/temp_stream.hpp"

namespace nuvo_test {

struct Token {
  std::string text;
  int code;             // the reader's code for this field
  int tooLongCode = 0;  // non-zero for names: any word is read, a too long one fails
  std::string comment;  // written on the line before the token
};

// Writes the data files that the parameter file names into folder and returns
// its tokens: two variables (facies written with its own format, poro not
// written), output per variable, two maps and a report, the simulation grid and
// an image as training images with their pdf, a data image, a point set, a mask,
// homothety with tolerance and rotation (images and values), every kind of search
// neighborhood mode, rescaling and distance, a unilateral path, global and local
// probability constraints, both connectivity families, block data, a
// hierarchical pyramid, manual post-processing.
inline std::vector<Token> parameterFileTokens(const TempFolder &folder) {
  const std::string ti = folder.write("ti.gslib", gslibImage(2));
  const std::string one = folder.write("one.gslib", gslibImage(1));
  const std::string pointSet = folder.write("ps.txt", kPointSet);
  const std::string block = folder.write("block.dat", "1\n2 0.5 0.1 0.0 1.0\n0 0 0\n1 0 0\n");
  const std::string prefix = folder.file("");
  std::vector<Token> t;
  auto add = [&t](std::string text, int code, std::string comment = {}) {
    t.push_back({std::move(text), code, 0, std::move(comment)});
  };
  auto name = [&t](std::string text, int code, int tooLongCode, std::string comment = {}) {
    t.push_back({std::move(text), code, tooLongCode, std::move(comment)});
  };
  auto addAll = [&add](std::initializer_list<const char *> texts, int code) {
    for (const char *text : texts) add(text, code);
  };
  auto classes = [&add](std::initializer_list<std::initializer_list<const char *>> bounds) {
    add(std::to_string(bounds.size()), -4035, "// classes of values");
    for (const auto &cls : bounds) {
      add(std::to_string(cls.size() / 2), -4036);
      int k = 0;
      for (const char *b : cls) add(b, k++ % 2 == 0 ? -4037 : -4038);
    }
  };

  add("4", -778, "/* SIMULATION GRID (SG) */");
  add("3", -779);
  add("1", -780);
  add("1.0", -781, "// cell size");
  add("1.0", -782);
  add("1.0", -783);
  add("10.0", -784, "// origin");
  add("0.0", -785);
  add("0.0", -786);
  add("2", -787, "/* SIMULATION VARIABLES */");
  name("facies", -788, -789);
  add("1", -790);
  name("%.3f", -872, -873);
  name("poro", -788, -789);
  add("0", -790);
  add("OUTPUT_SIM_ONE_FILE_PER_VARIABLE", -791, "/* OUTPUT SETTINGS FOR SIMULATION */");
  name(prefix + "out_facies.gslib", -792, -793);
  add("1", -904, "/* OUTPUT: ADDITIONAL MAPS */");
  name(prefix + "path", -905, -906);
  add("0", -908);
  add("0", -912);
  add("1", -916);
  name(prefix + "tiIndex", -917, -918);
  add("1", -900, "/* OUTPUT REPORT */");
  name(prefix + "report.txt", -901, -902);
  add("2", -794, "/* TRAINING IMAGE */");
  name("_DATA_", -795, -796);
  name(ti, -795, -796);
  name(ti, -797, -798, "// pdf of the training images");
  add("1", -799, "/* DATA IMAGE FILE FOR SG */");
  name(ti, -800, -801);
  add("1", -802, "/* DATA POINT SET FILE FOR SG */");
  name(pointSet, -803, -804);
  add("1", -805, "/* MASK IMAGE */");
  name(one, -806, -807);
  add("2", -810, "/* HOMOTHETY */");
  add("1", -811);
  name(ti, -812, -813);
  add("0", -815);
  addAll({"0.5", "2.0"}, -818);
  add("0", -819);
  addAll({"1.0", "1.0"}, -822);
  add("1", -830, "/* ROTATION */");
  add("0", -831);
  add("30.0", -834);
  add("1", -835);
  name(one, -836, -837);
  add("0", -839);
  add("-10.5", -842);
  add("-1.0", -845, "/* CONSISTENCY OF CONDITIONING DATA */");
  add("NORMALIZING_UNIFORM", -846, "/* NORMALIZATION TYPE */");
  add("SEARCHNEIGHBORHOOD_RADIUS_MANUAL", -875, "/* SEARCH NEIGHBORHOOD PARAMETERS */");
  add("10", -876);
  add("8.5", -877);
  add("0", -878);
  add("SEARCHNEIGHBORHOOD_ANISOTROPY_RATIO_RADIUS", -880);
  add("SEARCHNEIGHBORHOOD_ROTATION_ON", -885);
  add("45", -886);
  add("0", -887);
  add("0", -888);
  add("1.0", -889);
  add("SEARCHNEIGHBORHOOD_RADIUS_TI_RANGE", -875);
  add("SEARCHNEIGHBORHOOD_ANISOTROPY_RATIO_MANUAL", -880);
  add("2", -881);
  add("2", -882);
  add("1", -883);
  add("SEARCHNEIGHBORHOOD_ROTATION_OFF", -885);
  add("0.0", -889);
  addAll({"24", "12"}, -849);
  addAll({"1.0", "0.5"}, -850);
  add("RESCALING_MIN_MAX", -2120, "/* RESCALING MODE */");
  add("0", -2121);
  add("4", -2122);
  add("RESCALING_MEAN_LENGTH", -2120);
  add("0.2", -2123);
  add("0.1", -2124);
  addAll({"0", "1"}, -851);
  add("0", -852, "/* DISTANCE TYPE */");
  add("3", -852);
  add("2.5", -853);
  addAll({"1.0", "2.0"}, -854);
  add("SIM_ONE_BY_ONE", -890, "/* SIMULATION TYPE */");
  add("PATH_UNILATERAL", -891, "/* SIMULATION PATH */");
  addAll({"1", "2", "0", "-3"}, -892);
  addAll({"0.05", "0.1"}, -857);
  add("1", -920, "/* PROBABILITY CONSTRAINTS FOR VARIABLE #0 */");
  classes({{"0", "0.5"}, {"0.5", "1", "1", "2"}});
  addAll({"0.3", "0.7"}, -930);
  add("0", -955);
  add("0.0", -960);
  add("0", -965);
  add("0.1", -966);
  add("2", -920, "/* PROBABILITY CONSTRAINTS FOR VARIABLE #1 */");
  classes({{"0", "10"}});
  name(ti, -935, -936);
  add("3.0", -940);
  add("1", -945);
  add("1", -955);
  add("0.5", -960);
  add("1", -965);
  addAll({"1", "5", "10", "0.5", "0.2", "0.1", "1"}, -967);
  add("3", -2110, "/* CONNECTIVITY CONSTRAINTS FOR VARIABLE #0 */");
  add("CONNECT_FACE", -2111);
  classes({{"0", "1"}});
  name("label", -2112, -2113);
  add("0.5", -2118);
  add("0.01", -2119);
  add("1", -2110, "/* CONNECTIVITY CONSTRAINTS FOR VARIABLE #1 */");
  add("CONNECT_FACE_EDGE", -2111);
  classes({{"0.5", "1.5"}});
  name("label", -2112, -2113);
  name(ti, -2114, -2115);
  name("v1", -2116, -2117);
  add("0", -3001, "/* BLOCK DATA */");
  add("1", -3001);
  name(block, -3006, -3006);
  addAll({"0.5", "0.25"}, -858);
  add("1", -3600, "/* PYRAMID GENERAL PARAMETERS */");
  add("2", -3602);
  add("2", -3603);
  add("1", -3604);
  add("PYRAMID_SIM_HIERARCHICAL", -3601);
  add("PYRAMID_NNEIGHBOR_ADAPTING_FACTOR_DEFAULT", -3590);
  add("PYRAMID_THRESHOLD_ADAPTING_FACTOR_MANUAL", -3591);
  addAll({"1", "1", "0.5", "1", "1"}, -3596);
  add("PYRAMID_MAX_SCAN_FRACTION_ADAPTING_FACTOR_DEFAULT", -3592);
  add("1", -3610, "/* PYRAMID PARAMETERS FOR VARIABLE #0 */");
  add("PYRAMID_CATEGORICAL_AUTO", -3611);
  add("1", -3610);
  add("PYRAMID_CONTINUOUS", -3611);
  add("0.25", -859, "/* TOLERANCE */");
  add("2", -860, "/* POST-PROCESSING */");
  add("POST_PROCESSING_PARAMETERS_MANUAL", -861);
  addAll({"8", "6"}, -862);
  addAll({"1.0", "1.0"}, -863);
  addAll({"0.02", "0.01"}, -864);
  addAll({"0.2", "0.1"}, -865);
  add("0.0", -866);
  add("444", -867, "/* SEED NUMBER AND SEED INCREMENT */");
  add("1", -868);
  add("3", -869, "/* NUMBER OF REALIZATION(S) */");
  add("END", -870);
  return t;
}

// The text of the first n tokens, one per line, each after its comment line.
inline std::string parameterFileText(const std::vector<Token> &tokens, std::size_t n) {
  std::string text;
  for (std::size_t k = 0; k < n && k < tokens.size(); ++k) {
    if (!tokens[k].comment.empty()) text += tokens[k].comment + "\n";
    text += tokens[k].text + "\n";
  }
  return text;
}

inline std::string parameterFileText(const std::vector<Token> &tokens) {
  return parameterFileText(tokens, tokens.size());
}

// The complete parameter file (its data files in folder_) read into ascii_;
// convert() builds input_ from it.
class ParameterFileTest : public ::testing::Test {
 protected:
  void SetUp() override {
    NUVOInitSimInputASCII(&ascii_);
    NUVOInitSimInput(&input_);
    nuvo::test::TempStream file(parameterFileText(parameterFileTokens(folder_)));
    ASSERT_EQ(NUVOReadSimInputASCII(&ascii_, file.get()), 0);
  }
  void TearDown() override {
    NUVOFreeSimInputASCII(&ascii_);
    NUVOFreeSimInput(&input_);
  }

  int convert() {
    NUVOFreeSimInput(&input_);
    return NUVOSimInputASCIIToSimInput(&ascii_, &input_);
  }

  TempFolder folder_;
  nuvo_simInputASCII ascii_;
  nuvo_simInput input_;
};

}  // namespace nuvo_test
