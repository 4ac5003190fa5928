#include <gtest/gtest.h>

#include <cstdio>
#include <iterator>
#include <string>

#include "nuvo_error.h"

namespace {

struct Row {
  int code;
  const char *text;
};

// Texts that callers match on, one or more per range of the table, written out in
// full so that a slip in the table (a typo fixed, a code shifted) shows up here.
constexpr Row kErrorSamples[] = {
    {1, "ERROR 00001: memory allocation (malloc)\n"},
    {12,
     "ERROR 00012: try to allocate memory for a 4D array having elements of size less or equal to "
     "zero\n"},
    {25, "ERROR 00025: reading error (2D array: nrow)!\n"},
    {26, "ERROR 00026: reading error (2D array: ncol)!\n"},
    {27, "ERROR 00027: reading error (2D array: element)!\n"},
    {52, "ERROR 00052: number of variable not equal to one\n"},
    {99, "ERROR 00099: invalid number of threads (less or equal to zero)\n"},
    {100, "ERROR 00100: program launched incorrectly\n"},
    {130, "ERROR 00130: a file (output / binary format) can not be opened\n"},
    {137,
     "ERROR 00137: connectivity: reference variable name does not appear in reference connectivity "
     "image\n"},
    {186,
     "ERROR 00186: connectivity constraint: classes inconsistent with label (same label with "
     "different classes)\n"},
    {500, "ERROR 00500: invalid proportion (not in [0,1])\n"},
    {554,
     "ERROR 00554: invalid data value in simulation grid: not in any training image (categorical "
     "variable (with pyramid cateogorical to continuous))\n"},
    {556,
     "ERROR 00556: invalid data in simulation grid: too far beyond the range covered by all the "
     "training image(s) (continuous variable)\n"},
    {595, "ERROR 00595: invalid ouputPathIndexFileName (too long)\n"},
    {597, "ERROR 00597: invalid ouputTiGridNodeIndexFileName (too long)\n"},
    {610, "ERROR 00610: invalid grid (nxyz too large)\n"},
    {627, "ERROR 00627: invalid image (NaN encountered)\n"},
    {628, "ERROR 00628: invalid image (Inf encountered)\n"},
    {644, "ERROR 00644: invalid point set (variable names are not unique)\n"},
    {648, "ERROR 00648: invalid formatStringVar (invalid fomat)\n"},
    {689,
     "ERROR 00689: invalid search neighborhood parameters (radiusMode set to *_TI_RANGE* not "
     "possible if SG is used as TI)\n"},
    {708, "ERROR 00708: invalid simulation and path parameters (strength must be in [0,1])\n"},
    {710, "ERROR 00710: invalid distance type for relative distance\n"},
    {719, "ERROR 00719: reading error, grid (oz)\n"},
    {726, "ERROR 00726: reading error, image GSLIB format (variable name too long)\n"},
    {735,
     "ERROR 00735: invalid maximal scan fraction (with variable transformation) (maxScanFraction "
     "too large)\n"},
    {740, "ERROR 00740: conversion not available!\n"},
    {762, "ERROR 00762: reading error, image VTK format (line 10: too long)\n"},
    {777, "ERROR 00777: reading error, point set GSLIB format (variable name too long)\n"},
    {778, "ERROR 00778: reading error, input ASCII (simGridNx)\n"},
    {799, "ERROR 00799: reading error, input ASCII (ndataImageFile)\n"},
    {876, "ERROR 00876: reading error, search neighborhood parameters (rx)\n"},
    {920, "ERROR 00920: reading error, soft probability ASCII (probabilityConstraintUsage)\n"},
    {936, "ERROR 00936: reading error, soft probability ASCII (localPdfImageFileName too long)\n"},
    {970,
     "ERROR 00970: reading error, soft probability ASCII (probabilityConstraintThresholdType "
     "unknown selection)\n"},
    {999, "ERROR 00999: reading error, an additional entry was expected\n"},
    {1000, "ERROR 01000: aborted job\n"},
    {1021, "ERROR 01021: writing error, no specified format\n"},
    {1039, "ERROR 01039: error while writing image (gslib) in binary format (var)\n"},
    {1059, "ERROR 01059: error while reading image (gslib) in binary format (var)\n"},
    {1061, "ERROR 01061: computation of TI variogram ranges: not applicable\n"},
    {1100, "ERROR 01100: index of variable out of range\n"},
    {1151,
     "ERROR 01151: invalid maximal extension for training values range "
     "(trainValueRangeExtensionMax too large)\n"},
    {1155, "ERROR 01155: invalid normalizingType\n"},
    {1661,
     "ERROR 01661: invalid number for maximal number of post-processing path(s) "
     "(npostProcessingPathMax less than 0)\n"},
    {1662,
     "ERROR 01662: invalid number for maximal number of post-processing path(s) "
     "(npostProcessingPathMax too large)\n"},
    {1928, "ERROR 01928: probability constraint: classes inconsistent with training image\n"},
    {1933, "ERROR 01933: probability constraint: invalid global pdf (sum not equal to 1.0)\n"},
    {1985, "ERROR 01985: probability constraint: invalid parameters for dynamic threshold\n"},
    {2001, "ERROR 02001: invalid range index (for ix)\n"},
    {2011, "ERROR 02011: invalid lag\n"},
    {2105,
     "ERROR 02105: connectivity constraint: invalid varName (same as a simulated variable)\n"},
    {2108, "ERROR 02108: connectivity constraint can not be used with multiple training images\n"},
    {2110, "ERROR 02110: reading error, connectivity ASCII (connectivityConstraintUsage)\n"},
    {2200, "ERROR 02200: connectivity: cannot find path in geobody (6-neighbors)\n"},
    {2205, "ERROR 02205: connectivity: cannot find path (broken geobody)\n"},
    {2207, "ERROR 02207: connectivity: cannot join two half paths\n"},
    {2953, "ERROR 02953: block data: activatePropMin less than activatePropMax in one block\n"},
    {2954, "ERROR 02954: block data: tolerance too small in one block\n"},
    {2960, "ERROR 02960: block data: block data file can not be opened\n"},
    {2980, "ERROR 02980: reading error, block data file: invalid number of entries\n"},
    {3001, "ERROR 03001: reading error, block data ASCII (blockDataUsage)\n"},
    {3061, "ERROR 03061: block data: invalid x index for a block (negative)\n"},
    {3502, "ERROR 03502: gaussian pyramid reduction: invalid step for x-direction\n"},
    {3505, "ERROR 03505: gaussian pyramid reduction: input dimension too small\n"},
    {3506, "ERROR 03506: gaussian pyramid reduction: input dimension in x-direction too small\n"},
    {3509,
     "ERROR 03509: gaussian pyramid reduction: minimal weight on filter nodes to define output "
     "value too small\n"},
    {3512, "ERROR 03512: gaussian pyramid expansion: invalid step for x-direction\n"},
    {3515, "ERROR 03515: gaussian pyramid expansion: input dimension too small\n"},
    {3516, "ERROR 03516: gaussian pyramid expansion: input dimension in x-direction too small\n"},
    {3519,
     "ERROR 03519: gaussian pyramid expansion: minimal weight on filter nodes to define output "
     "value too small\n"},
    {3601,
     "ERROR 03601: pyramid general parameters: reading error, simulation mode "
     "(pyramidSimulationMode)\n"},
    {3655,
     "ERROR 03655: pyramid: max number of level(s) over each variable is not equal to the number "
     "of levels in pyramid general parameters\n"},
    {3665, "ERROR 03665: pyramid: use of probability constraint is not allowed\n"},
    {3670, "ERROR 03670: pyramid: number of variable in a level equal to zero\n"},
    {3999, "ERROR 03999: image file can not be opened\n"},
    {4041, "ERROR 04041: class of values: invalid number of class(es) (too small)\n"},
    {7100, "ERROR 07100: a file (for export) can not be opened\n"},
    {7101, "ERROR 07101: invalid prefix for file name (character '/', '\\' forbidden)\n"},
};

// The complete warning table, each text under its own number.
constexpr Row kWarnings[] = {
    {1,
     "WARNING 00001: a conditioning data value (categorical variable) does not belong to the set "
     "of training image values\n"},
    {2,
     "WARNING 00002: a conditioning data value (continuous variable) is not in the range of "
     "training image values\n"},
    {3,
     "WARNING 00003: training image values of a variable have been rescaled (linearly) to cover "
     "the range of conditioning data values\n"},
    {10, "WARNING 00010: a variable in a training image is not exhaustively informed\n"},
    {20,
     "WARNING 00020: a node is chosen (in the training image) randomly, ignoring neighborhood "
     "information\n"},
    {21,
     "WARNING 00021: a node is chosen (in the training image) randomly, ignoring neighborhood "
     "information (post-processing)\n"},
    {25, "WARNING 00025: search neighborhood: radius in x-direction has been reduced\n"},
    {26, "WARNING 00026: search neighborhood: radius in y-direction has been reduced\n"},
    {27, "WARNING 00027: search neighborhood: radius in z-direction has been reduced\n"},
    {30,
     "WARNING 00030: search neighborhood: large in x-direction (could imply small or empty search "
     "window during the simulation)\n"},
    {31,
     "WARNING 00031: search neighborhood: large in y-direction (could imply small or empty search "
     "window during the simulation)\n"},
    {32,
     "WARNING 00032: search neighborhood: large in z-direction (could imply small or empty search "
     "window during the simulation)\n"},
    {33,
     "WARNING 00033: search neighborhood: large in xy-section (could imply small or empty search "
     "window during the simulation)\n"},
    {34,
     "WARNING 00034: search neighborhood: large in xz-section (could imply small or empty search "
     "window during the simulation)\n"},
    {35,
     "WARNING 00035: search neighborhood: large in yz-section (could imply small or empty search "
     "window during the simulation)\n"},
    {36,
     "WARNING 00036: search neighborhood: large in xyz-volume (could imply small or empty search "
     "window during the simulation)\n"},
    {38, "WARNING 00038: empty search window, a node is randomly chosen in the training image\n"},
    {39,
     "WARNING 00039: empty search window, a node is randomly chosen in the training image "
     "(post-processing)\n"},
    {40,
     "WARNING 00040: conditioning value(s) has(have) been removed (in the non-simulated part of "
     "the mask!)\n"},
    {41,
     "WARNING 00041: conditioning value(s) has(have) been ignored from data point set (more than "
     "one datum in the same simulation grid node!)\n"},
    {42,
     "WARNING 00042: conditioning location(s) has(have) been ignored from data point set (out of "
     "the simulation grid!)\n"},
    {43,
     "WARNING 00043: conditioning variable(s) has(have) been ignored from data point set (not a "
     "simulated variable!)\n"},
    {44,
     "WARNING 00044: conditioning variable(s) has(have) been ignored from data image (not a "
     "simulated variable!)\n"},
    {45,
     "WARNING 00045: conditioning variable(s) has(have) been ignored from data image (more than "
     "one datum in the same simulation grid node!)\n"},
    {46,
     "WARNING 00046: conditioning value(s) (connected component label) has(have) been removed (in "
     "the non-simulated part of the mask!)\n"},
    {49, "WARNING 00049: fail to find connection for one edge\n"},
    {50,
     "WARNING 00050: fail to connect a group of nodes with same label (connectivityConstraintUsage "
     "= 1)\n"},
    {51,
     "WARNING 00051: fail to connect a group of nodes with same label (connectivityConstraintUsage "
     "= 2)\n"},
    {55,
     "WARNING 00055: connectivity constraint set for a variable but no connectivity data found "
     "(connectivityConstraintUsage has been modified)\n"},
    {80, "WARNING 00080: computation of TI(s) variogram ranges for large number of categories\n"},
    {100,
     "WARNING 00100: reproducibility is not guaranteed when using multiple threads and simulation "
     "grid is used as training image\n"},
    {111,
     "WARNING 00111: reproducibility guaranteed when using multiple threads and global probability "
     "constraint (performance possibly limited), but results differ from the serial version\n"},
    {115,
     "WARNING 00115: reproducibility is not guaranteed when using multiple threads and block data "
     "conditioning\n"},
    {120,
     "WARNING 00120: use of local probability constraint: deactivation distance greater or equal "
     "to support radius for local pdf\n"},
    {150,
     "WARNING 00150: use of block data for variable with distance type 0 (non-matching node "
     "(cat.))\n"},
    {160,
     "WARNING 00160: target value for a block data could be far from block mean values in the "
     "training image\n"},
    {5044,
     "WARNING 05044: conditioning variable(s) has(have) been ignored from \"ugrid data image\" "
     "(not a simulation variable!)\n"},
    {5045,
     "WARNING 05045: conditioning variable(s) has(have) been ignored from \"ugrid data image\" "
     "(more than one datum in the same simulation grid element!)\n"},
    {5100,
     "WARNING 05100: size in x direction has been enlarged for computing moving (box) average in "
     "in a training image\n"},
    {5101,
     "WARNING 05101: size in y direction has been enlarged for computing moving (box) average in "
     "in a training image\n"},
    {5102,
     "WARNING 05102: size in z direction has been enlarged for computing moving (box) average in "
     "in a training image\n"},
    {8001, "WARNING 08001: CUDA device is in emulation mode.\n"},
};

// Checks that `text` is prefix + the code in five digits + ": " + a one-line message
// + exactly one line feed.
void expectRowShape(const std::string &text, const std::string &prefix, int code) {
  char head[32];
  std::snprintf(head, sizeof head, "%s%05d: ", prefix.c_str(), code);
  EXPECT_EQ(text.rfind(head, 0), 0u) << text;
  EXPECT_GT(text.size(), std::string(head).size() + 1) << "empty message: " << text;
  EXPECT_EQ(text.find('\n'), text.size() - 1) << "one line feed, at the end: " << text;
}

TEST(ErrorMessages, UnknownCodesGiveTheUnknownText) {
  for (int code : {0, -1, -627, 13, 99997, 100000, 2147483647, -2147483647 - 1})
    EXPECT_STREQ(NUVOGetErrorMessage(code), "ERROR: unknown\n") << code;
}

TEST(ErrorMessages, QuotedTextsAreExact) {
  for (const Row &row : kErrorSamples) EXPECT_STREQ(NUVOGetErrorMessage(row.code), row.text);
}

TEST(ErrorMessages, EveryRowHasTheFixedShape) {
  int rows = 0;
  for (int code = 1; code <= 99999; ++code) {
    const std::string text = NUVOGetErrorMessage(code);
    if (text == "ERROR: unknown\n") continue;
    ++rows;
    expectRowShape(text, "ERROR ", code);
  }
  EXPECT_GE(rows, static_cast<int>(std::size(kErrorSamples)));
}

TEST(WarningMessages, TableIsCompleteAndExact) {
  int rows = 0;
  for (int code = 1; code <= 99999; ++code) {
    const std::string text = NUVOGetWarningMessage(code);
    if (text == "WARNING: unknown\n") continue;
    ++rows;
    // 26 and 27 return each other's rows, numbers included.
    expectRowShape(text, "WARNING ", code == 26 ? 27 : code == 27 ? 26 : code);
  }
  EXPECT_EQ(rows, static_cast<int>(std::size(kWarnings)));
  for (const Row &row : kWarnings) {
    if (row.code == 26 || row.code == 27) continue;  // crossed, checked below
    EXPECT_STREQ(NUVOGetWarningMessage(row.code), row.text);
  }
}

TEST(WarningMessages, TwentySixAndTwentySevenAreCrossed) {
  EXPECT_STREQ(NUVOGetWarningMessage(26),
               "WARNING 00027: search neighborhood: radius in z-direction has been reduced\n");
  EXPECT_STREQ(NUVOGetWarningMessage(27),
               "WARNING 00026: search neighborhood: radius in y-direction has been reduced\n");
  for (int code : {0, -26, 28, 99999})
    EXPECT_STREQ(NUVOGetWarningMessage(code), "WARNING: unknown\n");
}

}  // namespace
