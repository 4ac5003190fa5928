#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <string>
#include <vector>

#include "nuvo_imagefile.h"
#include "tests/data/data_builders.hpp"

namespace {

using nuvo::test::FullStream;
using nuvo::test::kMissing;
using nuvo::test::TempStream;
using Image = nuvo::test::EmptyImage;

// An image of spacing (0.5, 2, 1) and origin (-100.25, 3, 0.125) with the given
// names, its values set from `values` in turn.
void makeImage(nuvo_image &image, int nx, int ny, int nz, const std::vector<std::string> &names,
               const std::vector<double> &values = {1.0}) {
  ASSERT_EQ(nuvo_test::makeImage(&image, nx, ny, nz, names, [](int, int, int, int) { return 0.0; }),
            0);
  *image.grid = nuvo_grid{nx, ny, nz, 0.5, 2.0, 1.0, -100.25, 3.0, 0.125, nx * ny, nx * ny * nz};
  for (int i = 0; i < image.nxyzv; ++i) image.var[i] = values[i % values.size()];
}

int readText(Image &image, const std::string &content, int key) {
  TempStream file(content);
  return NUVOReadImage(&image.image, key, file.get());
}

std::string writeText(const nuvo_image &image, const char *format, int key, int *rc) {
  TempStream file;
  *rc = NUVOWriteImage(&image, format, key, file.get());
  return file.contents();
}

// ---- GSLIB text -------------------------------------------------------------

TEST(GslibText, ThreeSixOrNineItemsSetSizeThenSpacingThenOrigin) {
  struct Case {
    const char *line;
    nuvo_grid grid;
  };
  const Case cases[] = {
      {"2 3 1\n", {2, 3, 1, 1.0, 1.0, 1.0, 0.0, 0.0, 0.0, 6, 6}},
      {"2 3 1 0.5 2 3 -4 5e1 .25 extra\n", {2, 3, 1, 0.5, 2.0, 3.0, -4.0, 50.0, 0.25, 6, 6}},
  };
  for (const Case &c : cases) {
    Image image;
    ASSERT_EQ(readText(image, std::string(c.line) + "1\nv\n7 7 7 7 7 7\n", 0), 0) << c.line;
    EXPECT_EQ(NUVOCmpGrid(image->grid, &c.grid), 0);
  }
}

// Each failure has its code; sizes are refused before anything is allocated.
TEST(GslibText, EachReadingFailureHasItsCode) {
  struct Case {
    std::string content;
    int code;
    bool beforeAllocating = false;
  };
  std::vector<Case> cases = {
      {"", -721},
      {std::string(300, '1') + "\n1\nv\n1\n", -722},
      {"1 1 1\n", -724},
      {"1 1 1\n0\n", -724},
      {"1000 1000 1000\n3\na b c\n", -724},
      {"2 1 1\n2\nonly\n", -725},
      {"1 1 1\n1\n" + std::string(128, 'n') + "\n1\n", -726},
      {"1000 1000 1000\n1\nv\n1 2 3\n", -730, true},  // too short for its values
      {"4 1 1\n1\nv\n1 2 3", -730},
      {"4 1 1\n1\nv\n1 2 1.5abc 4", -730},
  };
  // Item counts other than 3, 6 or 9, and node counts that are not positive or
  // do not fit an int.
  for (const char *line : {"10 10 1 1\n", "10 10 1.5\n", "0 10 1\n", "99999999999 1 1\n",
                           "2000 2000 1000\n", "65536 65536 1\n"})
    cases.push_back({std::string(line) + "1\nv\n1\n", -723, true});
  for (const Case &c : cases) {
    SCOPED_TRACE(c.content.substr(0, 40));
    Image image;
    EXPECT_EQ(readText(image, c.content, 0), c.code);
    if (c.beforeAllocating) {
      EXPECT_EQ(image->var, nullptr);
    }
  }
}

TEST(GslibText, NamesAreWordsAndValuesAreNodeMajorWhateverTheLineBreaks) {
  Image image;
  ASSERT_EQ(readText(image, "3 1 1\n2\nfacies\tporo 1 10 2\n20\n\n3 -9999999", 0), 0);
  EXPECT_STREQ(image->varName[1], "poro");
  const double expected[] = {1, 2, 3, 10, 20, kMissing};
  for (int i = 0; i < 6; ++i) EXPECT_EQ(image->var[i], expected[i]);
}

// ---- writing: headers, format strings, refusals -------------------------------

TEST(ImageFile, EachFormatWritesItsHeader) {
  struct Case {
    int key;
    std::vector<std::string> names;
    const char *format;
    std::string text;
  };
  const Case cases[] = {
      {0,
       {"a", "b"},
       "%g",
       "2 1 1 0.500000 2.000000 1.000000 -100.250000 3.000000 0.125000\n2\na\nb\n"
       "1.5 3\n-1e+07 4\n"},
      {1,
       {"a", "b"},
       "%g",
       "# vtk DataFile Version 3.4\nImage\nASCII\nDATASET STRUCTURED_POINTS\n"
       "DIMENSIONS 2 1 1\nORIGIN -100.250000 3.000000 0.125000\n"
       "SPACING 0.500000 2.000000 1.000000\nPOINT_DATA 2\nSCALARS a/b float 2\n"
       "LOOKUP_TABLE default\n1.5 3\n-1e+07 4\n"},
      {3,
       {"r", "g", "b"},
       "%d",
       "P3\n# PPM: 2 1 1 0.500000 2.000000 1.000000 -100.250000 3.000000 0.125000\n"
       "2 1\n255\n1 3 1\n-9999999 4 -9999999\n"},
  };
  for (const Case &c : cases) {
    Image image;
    makeImage(image.image, 2, 1, 1, c.names, {1.5, kMissing, 3, 4});
    int rc = 0;
    EXPECT_EQ(writeText(image.image, c.format, c.key, &rc), c.text);
    EXPECT_EQ(rc, 0);
  }
}

// Pieces repeat cyclically over the variables, extra pieces are ignored, literal
// text is kept, integer pieces truncate, and a piece may be 127 characters long.
TEST(FormatString, PiecesApplyToTheVariablesInTurn) {
  struct Case {
    std::vector<std::string> names;
    std::vector<double> values;
    std::string format;
    std::string rows;
  };
  const std::string underscores(123, '_');
  const Case cases[] = {
      {{"a", "b", "c"},
       {2.7, -2.7, 1.25, 0.5, 2.7, -2.7},
       ";;%d;;;%f;",
       "2 1.250000 2\n-2 0.500000 -2\n"},
      {{"a", "b"}, {3.0, 7.0}, "<%+05.1f%%>;%i;%s;%n", "<+03.0%> 7\n"},
      {{"a"}, {1.0}, "%.1f" + underscores, "1.0" + underscores + "\n"},
  };
  for (const Case &c : cases) {
    Image image;
    const int nxyz = static_cast<int>(c.values.size() / c.names.size());
    makeImage(image.image, nxyz, 1, 1, c.names, c.values);
    SCOPED_TRACE(c.format);
    int rc = 0;
    const std::string text = writeText(image.image, c.format.c_str(), 0, &rc);
    EXPECT_EQ(rc, 0);
    EXPECT_EQ(text.substr(text.size() - c.rows.size()), c.rows);
  }
}

TEST(FormatString, NoUsableFormatGives1021AndWritesNothing) {
  Image image;
  makeImage(image.image, 1, 1, 1, {"a", "b"});
  const std::string tooLong = "%f" + std::string(126, ' ');
  for (const char *format : {"", ";;;", "%s", "%f;%s", "%d %d", "value", "%lld", "%*d", "%1000f",
                             "%f %", "%Lf", tooLong.c_str(), static_cast<const char *>(nullptr)}) {
    int rc = 0;
    EXPECT_EQ(writeText(image.image, format, 0, &rc), "") << (format ? format : "null");
    EXPECT_EQ(rc, -1021) << (format ? format : "null");
  }
}

// Unknown keys, grey and colour maps without their variable count or with more
// than one layer, and a stream that refuses text.
TEST(ImageFile, WritingRefusals) {
  struct Case {
    int nz, nvar, key, code;
  };
  for (const Case &c : {Case{1, 1, 4, -1020}, Case{1, 1, -1, -1020}, Case{1, 2, 2, -1016},
                        Case{2, 1, 2, -1018}, Case{1, 1, 3, -1017}, Case{2, 3, 3, -1019}}) {
    Image image;
    makeImage(image.image, 2, 2, c.nz, std::vector<std::string>(c.nvar, "v"));
    int rc = 0;
    EXPECT_EQ(writeText(image.image, "%g", c.key, &rc), "");
    EXPECT_EQ(rc, c.code);
  }
  Image unknown;
  EXPECT_EQ(readText(unknown, "1 1 1\n1\nv\n1\n", 4), -720);
  Image image;
  makeImage(image.image, 2, 2, 1, {"a"});
  FullStream full(10);
  EXPECT_EQ(NUVOWriteImage(&image.image, "%g", 0, full.get()), -110);
}

// ---- VTK ----------------------------------------------------------------------

std::string vtkFile(const std::string &scalars, const std::string &values,
                    const std::string &dimensions = "DIMENSIONS 2 1 1",
                    const std::string &pointData = "POINT_DATA 2") {
  return "# vtk DataFile Version 3.4\nImage\nASCII\nDATASET STRUCTURED_POINTS\n" + dimensions +
         "\nORIGIN 1 2 3\nSPACING 0.5 0.25 4\n" + pointData + "\n" + scalars +
         "\nLOOKUP_TABLE default\n" + values;
}

TEST(Vtk, ScalarsNamesAreCutAtEachSlashUpToTheCount) {
  Image one;
  ASSERT_EQ(readText(one, vtkFile("SCALARS facies/x float", "1\n2\n"), 1), 0);
  const nuvo_grid grid{2, 1, 1, 0.5, 0.25, 4.0, 1.0, 2.0, 3.0, 2, 2};
  EXPECT_EQ(NUVOCmpGrid(one->grid, &grid), 0);
  ASSERT_EQ(one->nvar, 1);
  EXPECT_STREQ(one->varName[0], "facies/x");

  Image three;
  ASSERT_EQ(readText(three, vtkFile("SCALARS a/b/c float 3", "1 2 3 4 5 6\n"), 1), 0);
  ASSERT_EQ(three->nvar, 3);
  EXPECT_STREQ(three->varName[2], "c");
  const double expected[] = {1, 4, 2, 5, 3, 6};
  for (int i = 0; i < 6; ++i) EXPECT_EQ(three->var[i], expected[i]);
}

TEST(Vtk, EachHeaderLineHasItsCodes) {
  const std::string good = vtkFile("SCALARS v float", "1 2\n");
  // A file cut before line k gives that line's "fgets" code.
  const int missing[] = {-741, -741, -741, -741, -743, -746, -749, -752, -756, -761};
  std::size_t at = 0;
  for (int k = 0; k < 10; ++k) {
    Image image;
    EXPECT_EQ(readText(image, good.substr(0, at), 1), missing[k]) << "line " << k + 1;
    Image tooLong;
    const std::string longLine = good.substr(0, at) + std::string(300, 'x') + "\n";
    EXPECT_EQ(readText(tooLong, longLine, 1), missing[k] - 1) << "line " << k + 1;
    at = good.find('\n', at) + 1;
  }
  const std::string longName(128, 'n');
  struct Case {
    std::string content;
    int code;
  };
  const Case cases[] = {
      {vtkFile("SCALARS v float", "1 2\n", "DIMENSIONS 2 1"), -745},
      {vtkFile("SCALARS v float", "1 2\n", "DIMENSIONS 65536 65536 1"), -745},
      {vtkFile("SCALARS v float", "1 2\n", "DIMENSIONS 2 1 1", "POINT_DATA"), -754},
      {vtkFile("SCALARS v float", "1 2\n", "DIMENSIONS 2 1 1", "POINT_DATA 3"), -755},
      {vtkFile("SCALARS v float", "1 x\n"), -730},
      {vtkFile("SCALARS a float 1073741824", "1 2\n"), -758},
      {vtkFile("SCALARS a/b float 3", "1 2\n"), -759},
      {vtkFile("SCALARS a/" + longName + " float 2", "1 2\n"), -760},
  };
  for (const Case &c : cases) {
    Image image;
    EXPECT_EQ(readText(image, c.content, 1), c.code) << c.content.substr(60, 60);
  }
  std::string badOrigin = good;
  badOrigin.replace(badOrigin.find("ORIGIN 1 2 3"), 12, "ORIGIN 1 2 z");
  Image origin;
  EXPECT_EQ(readText(origin, badOrigin, 1), -748);
  std::string badSpacing = good;
  badSpacing.replace(badSpacing.find("SPACING"), 7, "SPACING_ONLY\n");
  Image spacing;
  EXPECT_EQ(readText(spacing, badSpacing, 1), -751);
}

// ---- PGM and PPM --------------------------------------------------------------

TEST(Pnm, ReadsPlainGreyAndColourMaps) {
  Image grey;
  ASSERT_EQ(readText(grey, "P2\n# comment\n3 2\n255\n0 1 2\n3 4 300\n", 2), 0);
  const nuvo_grid grid{3, 2, 1, 1.0, 1.0, 1.0, 0.0, 0.0, 0.0, 6, 6};
  EXPECT_EQ(NUVOCmpGrid(grey->grid, &grid), 0);
  EXPECT_STREQ(grey->varName[0], "pgmValue");
  EXPECT_EQ(grey->var[5], 300.0);

  Image colour;
  ASSERT_EQ(readText(colour, "P3\n#\n2 1\n255\n1 2 3 4 5 6\n", 3), 0);
  ASSERT_EQ(colour->nvar, 3);
  EXPECT_STREQ(colour->varName[2], "ppmB");
  const double expected[] = {1, 4, 2, 5, 3, 6};
  for (int i = 0; i < 6; ++i) EXPECT_EQ(colour->var[i], expected[i]);
}

TEST(Pnm, HeaderFailures) {
  struct Case {
    std::string content;
    int key;
    int code;
  };
  const Case cases[] = {
      {"", 2, -763},
      {"P2\n#\n2 1\n", 2, -763},
      {"P2\n" + std::string(300, '#') + "\n2 1\n255\n1 2\n", 2, -764},
      {"P5\n#\n2 1\n255\n1 2\n", 2, -765},
      {"P2\r\n#\n2 1\n255\n1 2\n", 2, -765},
      {"P2\n#\n0 1\n255\n1 2\n", 2, -766},
      {"P2\n#\n2 1\n255\n1\n", 2, -730},
      {"", 3, -767},
      {"P3\n#\n" + std::string(300, '2') + "\n255\n", 3, -768},
      {"P2\n#\n2 1\n255\n1 2\n", 3, -769},
      {"P3\n#\n2 x\n255\n1 2 3 4 5 6\n", 3, -710},
      {"P3\n#\n40000 20000\n255\n1\n", 3, -710},
  };
  for (const Case &c : cases) {
    Image image;
    EXPECT_EQ(readText(image, c.content, c.key), c.code) << c.content.substr(0, 30);
  }
}

// ---- round trips ----------------------------------------------------------------

// Every format keeps every value bit for bit (missing values, subnormals, NaN and
// infinities in the binary one) with its names and its grid.
TEST(RoundTrip, EveryFormatKeepsEveryValue) {
  const std::vector<double> awkward = {kMissing, 0.1, -2.5,    1e-300, 1e300,   0.0,
                                       -0.0,     255, 1.0 / 3, -7,     4.9e-324};
  for (int key = 0; key <= 4; ++key) {
    SCOPED_TRACE("key " + std::to_string(key));
    const std::vector<std::string> names =
        key == 2   ? std::vector<std::string>{"pgmValue"}
        : key == 3 ? std::vector<std::string>{"ppmR", "ppmG", "ppmB"}
                   : std::vector<std::string>{"facies", std::string(127, 'p'), ""};
    Image original;
    makeImage(original.image, 4, 3, key == 2 || key == 3 ? 1 : 2, names, awkward);
    if (key == 2 || key == 3) *original->grid = nuvo_grid{4, 3, 1, 1, 1, 1, 0, 0, 0, 12, 12};
    if (key == 4) {
      original->var[5] = std::numeric_limits<double>::quiet_NaN();
      original->var[6] = -HUGE_VAL;
    }
    TempStream file;
    Image copy;
    if (key == 4) {
      ASSERT_EQ(NUVOWriteImageGslibBinary(&original.image, file.get()), 0);
      std::rewind(file.get());
      ASSERT_EQ(NUVOReadImageGslibBinary(&copy.image, file.get()), 0);
    } else {
      if (key != 2 && key != 3) original->varName[2][0] = 'x';  // text names are words
      ASSERT_EQ(NUVOWriteImage(&original.image, "%.17g", key, file.get()), 0);
      std::rewind(file.get());
      ASSERT_EQ(NUVOReadImage(&copy.image, key, file.get()), 0);
    }
    EXPECT_EQ(NUVOCmpGrid(original->grid, copy->grid), 0);
    ASSERT_EQ(original->nvar, copy->nvar);
    for (int iv = 0; iv < copy->nvar; ++iv) EXPECT_STREQ(original->varName[iv], copy->varName[iv]);
    ASSERT_EQ(original->nxyzv, copy->nxyzv);
    for (int i = 0; i < copy->nxyzv; ++i)
      ASSERT_EQ(std::bit_cast<std::uint64_t>(original->var[i]),
                std::bit_cast<std::uint64_t>(copy->var[i]))
          << "value " << i;
  }
}

// ---- GSLIB binary -------------------------------------------------------------

std::string binaryFile(const nuvo_image &image) {
  TempStream file;
  EXPECT_EQ(NUVOWriteImageGslibBinary(&image, file.get()), 0);
  return file.contents();
}

TEST(Binary, EveryTruncationHasTheCodeOfItsField) {
  Image original;
  makeImage(original.image, 2, 1, 1, {"ab", "c"});
  const std::string bytes = binaryFile(original.image);
  ASSERT_EQ(bytes.size(), 103u);
  EXPECT_EQ(bytes.substr(0, 2), std::string("\4\10"));
  // Field boundaries: sizes, nx ny nz, six reals, nvar, names "ab\0c\0", 4 values.
  struct Field {
    std::size_t end;
    int code;
  };
  const Field fields[] = {{1, -1045},  {2, -1046},  {6, -1048},  {10, -1049}, {14, -1050},
                          {22, -1051}, {30, -1052}, {38, -1053}, {46, -1054}, {54, -1055},
                          {62, -1056}, {66, -1057}, {71, -1058}, {103, -1059}};
  std::size_t start = 0;
  for (const Field &field : fields) {
    for (std::size_t cut = start; cut < field.end; ++cut) {
      Image image;
      TempStream file(bytes.substr(0, cut));
      EXPECT_EQ(NUVOReadImageGslibBinary(&image.image, file.get()), field.code) << cut;
    }
    start = field.end;
    // A stream one byte too short for the field: the writer's code is 20 above.
    FullStream full(field.end - 1);
    EXPECT_EQ(NUVOWriteImageGslibBinary(&original.image, full.get()), field.code + 20);
  }
}

// Sizes that cannot be held are refused before allocating; a name needs its zero
// within 128 bytes.
TEST(Binary, RefusesSizesThatCannotBeHeldAndUnterminatedNames) {
  Image original;
  makeImage(original.image, 2, 1, 1, {std::string(127, 'n')});
  const std::string bytes = binaryFile(original.image);
  // Overwrites ints at byte offsets: nx at 2, ny at 6, nz at 10, nvar at 62.
  auto patched = [&](std::initializer_list<std::pair<std::size_t, int>> changes) {
    std::string copy = bytes;
    for (auto [offset, value] : changes) std::memcpy(copy.data() + offset, &value, sizeof value);
    return copy;
  };
  struct Case {
    std::string content;
    int code;
  };
  const Case cases[] = {
      {patched({{2, 0}}), -1048},
      {patched({{2, 65536}, {6, 65536}}), -1050},
      {patched({{62, 1 << 30}}), -1057},
      {patched({{10, 1 << 20}}), -1059},
  };
  for (const Case &c : cases) {
    Image image;
    TempStream file(c.content);
    EXPECT_EQ(NUVOReadImageGslibBinary(&image.image, file.get()), c.code);
    EXPECT_EQ(image->var, nullptr);
  }
  std::string unterminated = bytes;
  unterminated[66 + 127] = 'n';
  Image image;
  TempStream bad(unterminated);
  EXPECT_EQ(NUVOReadImageGslibBinary(&image.image, bad.get()), -726);
}

}  // namespace
