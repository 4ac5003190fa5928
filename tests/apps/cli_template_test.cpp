// nuvosim template: the parameter file it writes is complete (check accepts it as
// it stands, run simulates it) and follows the training image and grid given.
#include <gtest/gtest.h>

#include <string>

#include "tests/apps/cli_fixture.hpp"

namespace {

using nuvo::test::Cli;
using nuvo::test::fileText;
using nuvo::test::Outcome;

TEST_F(Cli, TemplateWritesAParameterFileThatRunsAsItStands) {
  Outcome r = run("template setup/plain.in");
  ASSERT_EQ(r.status, 0) << r.err;
  r = run("check setup/plain.in");
  EXPECT_EQ(r.status, 0) << r.err;
  EXPECT_NE(r.out.find("100 x 100 x 1 grid, 1 variable(s)"), std::string::npos) << r.out;
  EXPECT_EQ(run("template setup/plain.in").status, 3);  // never replaced unasked

  ASSERT_EQ(run("generate lenses lenses.vtk --nx 30 --ny 20 --nz 4 --seed 2").status, 0);
  r = run("template setup/lenses.in --ti lenses.vtk --grid 12 10 3");
  ASSERT_EQ(r.status, 0) << r.err;
  const std::string text = fileText(path("setup/lenses.in"));
  EXPECT_NE(text.find("/* DISTANCE TYPE FOR EACH VARIABLE"), std::string::npos);
  r = run("run setup/lenses.in --quiet --nreal 2");
  ASSERT_EQ(r.status, 0) << r.err;
  EXPECT_NE(r.out.find("setup/lenses_real00001.gslib"), std::string::npos) << r.out;
  EXPECT_EQ(run("template setup/x.txt").status, 1);
}

}  // namespace
