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

std::string vtkFile(const std::string &scalars, const std::string &values,
                    const std::string &dimensions = "DIMENSIONS 2 1 1",
                    const std::string &pointData = "POINT_DATA 2") {
  return "# vtk DataFile Version 3.4\nImage\nASCII\nDATASET STRUCTURED_POINTS\n" + dimensions +
         "\nORIGIN 1 2 3\nSPACING 0.5 0.25 4\n" + pointData + "\n" + scalars +
         "\nLOOKUP_TABLE default\n" + values;
}

// ---- reading ------------------------------------------------------------------

// GSLIB headers of 3, 6 or 9 items set the size, then the spacing, then the origin;
// names are words and values node after node whatever the line breaks. VTK names
// are cut at each slash up to the count; grey and colour maps name their variables.
TEST(ImageFile, ReadsEachFormat) {
  struct Case {
    int key;
    std::string content;
    nuvo_grid grid;
    std::vector<std::string> names;
    std::vector<double> values;
  };
  const Case cases[] = {
      {0,
       "3 1 1\n2\nfacies\tporo 1 10 2\n20\n\n3 -9999999",
       {3, 1, 1, 1, 1, 1, 0, 0, 0, 3, 3},
       {"facies", "poro"},
       {1, 2, 3, 10, 20, kMissing}},
      {0,
       "1 2 1 0.5 2 3 -4 5e1 .25 extra\n1\nv\n7 8",
       {1, 2, 1, 0.5, 2, 3, -4, 50, 0.25, 2, 2},
       {"v"},
       {7, 8}},
      {1,
       vtkFile("SCALARS facies/x float", "1\n2\n"),
       {2, 1, 1, 0.5, 0.25, 4, 1, 2, 3, 2, 2},
       {"facies/x"},
       {1, 2}},
      {1,
       vtkFile("SCALARS a/b/c float 3", "1 2 3 4 5 6\n"),
       {2, 1, 1, 0.5, 0.25, 4, 1, 2, 3, 2, 2},
       {"a", "b", "c"},
       {1, 4, 2, 5, 3, 6}},
      {2,
       "P2\n# comment\n3 1\n255\n0 1 300\n",
       {3, 1, 1, 1, 1, 1, 0, 0, 0, 3, 3},
       {"pgmValue"},
       {0, 1, 300}},
      {3,
       "P3\n#\n2 1\n255\n1 2 3 4 5 6\n",
       {2, 1, 1, 1, 1, 1, 0, 0, 0, 2, 2},
       {"ppmR", "ppmG", "ppmB"},
       {1, 4, 2, 5, 3, 6}},
  };
  for (const Case &c : cases) {
    SCOPED_TRACE(c.content.substr(0, 30));
    Image image;
    ASSERT_EQ(readText(image, c.content, c.key), 0);
    EXPECT_EQ(NUVOCmpGrid(image->grid, &c.grid), 0);
    ASSERT_EQ(image->nvar, static_cast<int>(c.names.size()));
    for (int iv = 0; iv < image->nvar; ++iv) EXPECT_EQ(image->varName[iv], c.names[iv]);
    EXPECT_EQ(nuvo::test::imageValues(image.image), c.values);
  }
}

// Each failure has its code; sizes are refused before anything is allocated.
TEST(ImageFile, EachReadingFailureHasItsCode) {
  struct Case {
    int key;
    std::string content;
    int code;
    bool beforeAllocating = false;
  };
  const std::string longName(128, 'n');
  std::vector<Case> cases = {
      {4, "1 1 1\n1\nv\n1\n", -720},
      // GSLIB
      {0, "", -721},
      {0, std::string(300, '1') + "\n1\nv\n1\n", -722},
      {0, "1 1 1\n", -724},
      {0, "1 1 1\n0\n", -724},
      {0, "1000 1000 1000\n3\na b c\n", -724},
      {0, "2 1 1\n2\nonly\n", -725},
      {0, "1 1 1\n1\n" + longName + "\n1\n", -726},
      {0, "1000 1000 1000\n1\nv\n1 2 3\n", -730, true},  // too short for its values
      {0, "4 1 1\n1\nv\n1 2 3", -730},
      {0, "4 1 1\n1\nv\n1 2 1.5abc 4", -730},
      // VTK
      {1, vtkFile("SCALARS v float", "1 2\n", "DIMENSIONS 2 1"), -745},
      {1, vtkFile("SCALARS v float", "1 2\n", "DIMENSIONS 65536 65536 1"), -745},
      {1, vtkFile("SCALARS v float", "1 2\n", "DIMENSIONS 2 1 1", "POINT_DATA"), -754},
      {1, vtkFile("SCALARS v float", "1 2\n", "DIMENSIONS 2 1 1", "POINT_DATA 3"), -755},
      {1, vtkFile("SCALARS v float", "1 x\n"), -730},
      {1, vtkFile("SCALARS a float 1073741824", "1 2\n"), -758},
      {1, vtkFile("SCALARS a/b float 3", "1 2\n"), -759},
      {1, vtkFile("SCALARS a/" + longName + " float 2", "1 2\n"), -760},
      // PGM and PPM
      {2, "", -763},
      {2, "P2\n#\n2 1\n", -763},
      {2, "P2\n" + std::string(300, '#') + "\n2 1\n255\n1 2\n", -764},
      {2, "P5\n#\n2 1\n255\n1 2\n", -765},
      {2, "P2\r\n#\n2 1\n255\n1 2\n", -765},
      {2, "P2\n#\n0 1\n255\n1 2\n", -766},
      {2, "P2\n#\n2 1\n255\n1\n", -730},
      {3, "", -767},
      {3, "P3\n#\n" + std::string(300, '2') + "\n255\n", -768},
      {3, "P2\n#\n2 1\n255\n1 2\n", -769},
      {3, "P3\n#\n2 x\n255\n1 2 3 4 5 6\n", -710},
      {3, "P3\n#\n40000 20000\n255\n1\n", -710},
  };
  // GSLIB item counts other than 3, 6 or 9, and node counts that are not positive
  // or do not fit an int.
  for (const char *line : {"10 10 1 1\n", "10 10 1.5\n", "0 10 1\n", "99999999999 1 1\n",
                           "2000 2000 1000\n", "65536 65536 1\n"})
    cases.push_back({0, std::string(line) + "1\nv\n1\n", -723, true});
  // A VTK file cut before line k, or with line k too long, gives that line's codes.
  const std::string good = vtkFile("SCALARS v float", "1 2\n");
  const int missing[] = {-741, -741, -741, -741, -743, -746, -749, -752, -756, -761};
  std::size_t at = 0;
  for (int code : missing) {
    cases.push_back({1, good.substr(0, at), code});
    cases.push_back({1, good.substr(0, at) + std::string(300, 'x') + "\n", code - 1});
    at = good.find('\n', at) + 1;
  }
  std::string badOrigin = good;
  cases.push_back({1, badOrigin.replace(badOrigin.find("ORIGIN"), 12, "ORIGIN 1 2 z"), -748});
  std::string badSpacing = good;
  cases.push_back({1, badSpacing.replace(badSpacing.find("SPACING"), 7, "SPACING_ONLY\n"), -751});
  for (const Case &c : cases) {
    SCOPED_TRACE(c.content.substr(0, 120));
    Image image;
    EXPECT_EQ(readText(image, c.content, c.key), c.code);
    if (c.beforeAllocating) {
      EXPECT_EQ(image->var, nullptr);
    }
  }
}

// ---- writing: headers, format strings, refusals -------------------------------

TEST(ImageFile, EachFormatWritesItsHeader) {
  const std::pair<int, std::string> cases[] = {
      {0,
       "2 1 1 0.500000 2.000000 1.000000 -100.250000 3.000000 0.125000\n2\na\nb\n"
       "1.5 3\n-1e+07 4\n"},
      {1,
       "# vtk DataFile Version 3.4\nImage\nASCII\nDATASET STRUCTURED_POINTS\n"
       "DIMENSIONS 2 1 1\nORIGIN -100.250000 3.000000 0.125000\n"
       "SPACING 0.500000 2.000000 1.000000\nPOINT_DATA 2\nSCALARS a/b float 2\n"
       "LOOKUP_TABLE default\n1.5 3\n-1e+07 4\n"},
      {3,
       "P3\n# PPM: 2 1 1 0.500000 2.000000 1.000000 -100.250000 3.000000 0.125000\n"
       "2 1\n255\n1 3 1\n-9999999 4 -9999999\n"},
  };
  for (const auto &[key, text] : cases) {
    Image image;
    makeImage(
        image.image, 2, 1, 1,
        key == 3 ? std::vector<std::string>{"a", "b", "c"} : std::vector<std::string>{"a", "b"},
        {1.5, kMissing, 3, 4});
    int rc = 0;
    EXPECT_EQ(writeText(image.image, key == 3 ? "%d" : "%g", key, &rc), text);
    EXPECT_EQ(rc, 0);
  }
}

// Extra pieces are ignored, literal text is kept and a piece may be 127 characters
// long (the point-set writer's test shows pieces repeating and empty ones skipped).
TEST(FormatString, PiecesApplyToTheVariablesInTurn) {
  struct Case {
    std::vector<std::string> names;
    std::vector<double> values;
    std::string format;
    std::string rows;
  };
  const std::string underscores(123, '_');
  const Case cases[] = {
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
  Image image;
  makeImage(image.image, 2, 2, 1, {"a"});
  FullStream full(10);
  EXPECT_EQ(NUVOWriteImage(&image.image, "%g", 0, full.get()), -110);
}

// ---- round trips ----------------------------------------------------------------

// Every format keeps every value bit for bit (missing values, subnormals, NaN and
// infinities in the binary one) with its names and its grid.
TEST(RoundTrip, EveryFormatKeepsEveryValue) {
  const std::vector<double> awkward = {kMissing, 0.1, -2.5,    1e-300, 1e300,   0.0,
                                       -0.0,     255, 1.0 / 3, -7,     4.9e-324};
  for (int key = 0; key <= 4; ++key) {  // 4: GSLIB binary, which allows an empty name
    SCOPED_TRACE("key " + std::to_string(key));
    const bool map = key == 2 || key == 3;
    const std::vector<std::string> names =
        key == 2   ? std::vector<std::string>{"pgmValue"}
        : key == 3 ? std::vector<std::string>{"ppmR", "ppmG", "ppmB"}
                   : std::vector<std::string>{"facies", std::string(127, 'p'), key == 4 ? "" : "x"};
    Image original;
    makeImage(original.image, 4, 3, map ? 1 : 2, names, awkward);
    if (map) *original->grid = nuvo_grid{4, 3, 1, 1, 1, 1, 0, 0, 0, 12, 12};
    if (key == 4) {
      original->var[5] = std::numeric_limits<double>::quiet_NaN();
      original->var[6] = -HUGE_VAL;
    }
    TempStream file;
    ASSERT_EQ(key == 4 ? NUVOWriteImageGslibBinary(&original.image, file.get())
                       : NUVOWriteImage(&original.image, "%.17g", key, file.get()),
              0);
    std::rewind(file.get());
    Image copy;
    ASSERT_EQ(key == 4 ? NUVOReadImageGslibBinary(&copy.image, file.get())
                       : NUVOReadImage(&copy.image, key, file.get()),
              0);
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
      {patched({{66 + 124, 0x6e6e6e6e}}), -726},  // "nnnn" over the name's last zero
  };
  for (const Case &c : cases) {
    Image image;
    TempStream file(c.content);
    EXPECT_EQ(NUVOReadImageGslibBinary(&image.image, file.get()), c.code);
    EXPECT_EQ(image->var, nullptr);
  }
}

}  // namespace
