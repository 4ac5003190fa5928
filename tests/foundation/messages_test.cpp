#include <gtest/gtest.h>

#include <cstdio>
#include <string>

#include "nuvo_error.h"

namespace {

struct Row {
  int code;
  const char *text;
};

// A sample of the texts that callers match on, one per family of the table and
// the spellings kept as they always were, written out in full so that a slip in
// the table (a typo fixed, a code shifted) shows up here.
constexpr Row kErrorSamples[] = {
    {1, "ERROR 00001: memory allocation (malloc)\n"},
    {554,
     "ERROR 00554: invalid data value in simulation grid: not in any training image (categorical "
     "variable (with pyramid cateogorical to continuous))\n"},
    {595, "ERROR 00595: invalid ouputPathIndexFileName (too long)\n"},
    {648, "ERROR 00648: invalid formatStringVar (invalid fomat)\n"},
    {726, "ERROR 00726: reading error, image GSLIB format (variable name too long)\n"},
    {999, "ERROR 00999: reading error, an additional entry was expected\n"},
    {1000, "ERROR 01000: aborted job\n"},
    {1933, "ERROR 01933: probability constraint: invalid global pdf (sum not equal to 1.0)\n"},
    {2953, "ERROR 02953: block data: activatePropMin less than activatePropMax in one block\n"},
    {3509,
     "ERROR 03509: gaussian pyramid reduction: minimal weight on filter nodes to define output "
     "value too small\n"},
    {4041, "ERROR 04041: class of values: invalid number of class(es) (too small)\n"},
    {7101, "ERROR 07101: invalid prefix for file name (character '/', '\\' forbidden)\n"},
};

// A sample of the warning table; the size of the whole table is checked below.
constexpr Row kWarningSamples[] = {
    {1,
     "WARNING 00001: a conditioning data value (categorical variable) does not belong to the set "
     "of training image values\n"},
    // 26 and 27 return each other's rows, numbers included.
    {26, "WARNING 00027: search neighborhood: radius in z-direction has been reduced\n"},
    {27, "WARNING 00026: search neighborhood: radius in y-direction has been reduced\n"},
    {20,
     "WARNING 00020: a node is chosen (in the training image) randomly, ignoring neighborhood "
     "information\n"},
    {36,
     "WARNING 00036: search neighborhood: large in xyz-volume (could imply small or empty search "
     "window during the simulation)\n"},
    {45,
     "WARNING 00045: conditioning variable(s) has(have) been ignored from data image (more than "
     "one datum in the same simulation grid node!)\n"},
    {100,
     "WARNING 00100: reproducibility is not guaranteed when using multiple threads and simulation "
     "grid is used as training image\n"},
    {120,
     "WARNING 00120: use of local probability constraint: deactivation distance greater or equal "
     "to support radius for local pdf\n"},
    {5044,
     "WARNING 05044: conditioning variable(s) has(have) been ignored from \"ugrid data image\" "
     "(not a simulation variable!)\n"},
    {8001, "WARNING 08001: CUDA device is in emulation mode.\n"},
};
constexpr int kErrorCount = 618;
constexpr int kWarningCount = 42;

// Walks the whole table behind `lookup`: every row must be prefix + the code in
// five digits (`shownCode` of it) + ": " + a one-line message + one line feed.
// Returns the number of rows.
template <typename Lookup, typename Shown>
int checkTableShape(Lookup lookup, const std::string &prefix, Shown shownCode) {
  const std::string unknown = std::string(lookup(0));
  int rows = 0;
  for (int code = 1; code <= 99999; ++code) {
    const std::string text = lookup(code);
    if (text == unknown) continue;
    ++rows;
    char head[32];
    std::snprintf(head, sizeof head, "%s%05d: ", prefix.c_str(), shownCode(code));
    EXPECT_EQ(text.rfind(head, 0), 0u) << text;
    EXPECT_GT(text.size(), std::string(head).size() + 1) << "empty message: " << text;
    EXPECT_EQ(text.find('\n'), text.size() - 1) << "one line feed, at the end: " << text;
  }
  return rows;
}

TEST(Messages, UnknownCodesGiveTheUnknownText) {
  for (int code : {0, -1, -627, 13, 99997, 100000, 2147483647, -2147483647 - 1})
    EXPECT_STREQ(NUVOGetErrorMessage(code), "ERROR: unknown\n") << code;
  for (int code : {0, -26, 28, 99999})
    EXPECT_STREQ(NUVOGetWarningMessage(code), "WARNING: unknown\n") << code;
}

TEST(ErrorMessages, TableHasItsSizeShapeAndTexts) {
  EXPECT_EQ(checkTableShape(NUVOGetErrorMessage, "ERROR ", [](int code) { return code; }),
            kErrorCount);
  for (const Row &row : kErrorSamples) EXPECT_STREQ(NUVOGetErrorMessage(row.code), row.text);
}

TEST(WarningMessages, TableHasItsSizeShapeAndTexts) {
  const auto shown = [](int code) { return code == 26 ? 27 : code == 27 ? 26 : code; };
  EXPECT_EQ(checkTableShape(NUVOGetWarningMessage, "WARNING ", shown), kWarningCount);
  for (const Row &row : kWarningSamples) EXPECT_STREQ(NUVOGetWarningMessage(row.code), row.text);
}

}  // namespace
