// The text layer under every reader and writer: numbers scanned as scanf and
// printed as printf do in the C locale, whatever the locale of the process.
#include <gtest/gtest.h>
#include <locale.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <limits>
#include <string>
#include <vector>

#include "data/text_read.hpp"
#include "data/text_write.hpp"
#include "tests/support/temp_stream.hpp"

namespace {

using nuvo::CharSource;
using nuvo::test::TempStream;

std::string rest(CharSource &source) {
  std::string text;
  for (int c = source.get(); c != EOF; c = source.get()) text += static_cast<char>(c);
  return text;
}

// scanf itself, in the C locale, as the reference for the number syntax.
struct ScanfResult {
  bool read = false;
  double value = 0.0;
  std::string rest;
};

ScanfResult scanfReference(const std::string &text) {
  locale_t c = newlocale(LC_ALL_MASK, "C", nullptr);
  locale_t previous = uselocale(c);
  ScanfResult result;
  int used = 0;
  result.read = std::sscanf(text.c_str(), "%lf%n", &result.value, &used) == 1;
  if (result.read) result.rest = text.substr(static_cast<std::size_t>(used));
  uselocale(previous);
  freelocale(c);
  return result;
}

void expectSameAsScanf(const std::string &text) {
  SCOPED_TRACE("input '" + text + "'");
  const ScanfResult expected = scanfReference(text);
  // Once from text and once from a stream, which pushes back through ungetc.
  CharSource fromText(text.c_str());
  TempStream file(text);
  CharSource fromStream(file.get());
  for (CharSource *source : {&fromText, &fromStream}) {
    double value = -1.0;
    ASSERT_EQ(nuvo::scanDouble(*source, value), expected.read);
    if (!expected.read) continue;
    if (std::isnan(expected.value)) {
      EXPECT_TRUE(std::isnan(value));
      EXPECT_EQ(std::signbit(value), std::signbit(expected.value));
    } else {
      EXPECT_EQ(std::bit_cast<std::uint64_t>(value), std::bit_cast<std::uint64_t>(expected.value));
    }
    EXPECT_EQ(rest(*source), expected.rest);
  }
}

TEST(ScanDouble, AcceptsAndRefusesWhatScanfDoes) {
  for (const char *text :
       {// decimal forms and blanks before the number
        "0", "-0", "1.", ".5", "+.5", "-9999999", "  \t\n 42 next", "\v\f7", "00012", "0.1",
        "0.30000000000000004", "123456789012345678901234567890",
        // exponents, complete or not
        "1e5", "1E-2", "1.e1", "1e", "1e+", "1ex", "1e+5x",
        // what follows the number stays
        "1.5abc", "1.5.3", "3,5",
        // hexadecimal
        "0x1.8p1", "0X1P-2", "0x.8", "0x1p", "0x1.8e3",
        // infinities and NaNs
        "inf", "-INF", "infinity", "-inFInity", "infx", "nan", "-nan", "nanx", "nan(12)",
        // limits: subnormals, overflow and underflow
        "2.2250738585072014e-308", "4.9406564584124654e-324", "1.7976931348623157e308", "1e400",
        "-1e400", "1e-400", "0.000001e-320", "0x1p99999",
        "100000000000000000000000000000000000e300",
        // not numbers
        "", "   ", "-", "+-1", "--1", ".", ".e1", "e5", "abc", "infin", "0x", "0xg", "(.5)"}) {
    expectSameAsScanf(text);
  }
}

TEST(ScanInt, ReadsSignedDecimalsThatFitAnIntAndNothingElse) {
  CharSource text(" 12 -7 +3 2147483647 -2147483648 1.5");
  int values[6] = {};
  for (int &v : values) ASSERT_TRUE(nuvo::scanInt(text, v));
  EXPECT_EQ(std::vector<int>(values, values + 6),
            (std::vector<int>{12, -7, 3, 2147483647, -2147483647 - 1, 1}));
  EXPECT_EQ(rest(text), ".5");

  int value = 0;
  for (const char *bad : {"2147483648", "-2147483649", "99999999999999999999", "", "-", "x1"}) {
    CharSource source(bad);
    EXPECT_FALSE(nuvo::scanInt(source, value)) << bad;
  }
}

TEST(ReadHeaderLine, NeedsALineFeedWithin256Bytes) {
  nuvo::HeaderLine line;
  const std::string longest(254, 'a');
  TempStream fits(longest + "\n" + longest + "b\nlast");
  EXPECT_EQ(nuvo::readHeaderLine(fits.get(), line, -1, -2), 0);
  EXPECT_EQ(std::string(line.data()), longest + "\n");
  EXPECT_EQ(nuvo::readHeaderLine(fits.get(), line, -1, -2), -2);

  TempStream unterminated("last");
  EXPECT_EQ(nuvo::readHeaderLine(unterminated.get(), line, -1, -2), -2);
  TempStream empty("");
  EXPECT_EQ(nuvo::readHeaderLine(empty.get(), line, -1, -2), -1);
}

// ---- writing ----------------------------------------------------------------

std::string printed(const char *piece, double value) {
  nuvo::ColumnFormats formats;
  EXPECT_EQ(formats.parse(piece, 1), 0) << piece;
  TempStream file;
  {
    nuvo::TextSink sink(file.get());
    sink.value(formats[0], value);
    EXPECT_EQ(sink.finish(), 0);
  }
  return file.contents();
}

// What printf gives in the C locale, the reference for every piece.
std::string reference(const char *piece, double value, bool integer) {
  char text[2048];
  if (integer)
    std::snprintf(text, sizeof text, piece, static_cast<int>(value));
  else
    std::snprintf(text, sizeof text, piece, value);
  return text;
}

TEST(TextSink, PrintsEveryPieceAsPrintfDoes) {
  constexpr double kInf = std::numeric_limits<double>::infinity();
  constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
  const double values[] = {0.0, -0.0, 1.0, -2.5, 0.1, 1.0 / 3, 123456.789, -9999999,
                           // extremes, subnormal included
                           1e-300, 4.9e-324, 1.7976931348623157e308, 1e21, 5e-5,
                           // ties for rounding, infinities and NaNs
                           0.5, 1.5, 2.5, kInf, -kInf, kNan, -kNan};
  for (const char *piece :
       {"%g",    "%.17g", "%.10g",  "%.0g",     "%.g", "%f", "%.3f", "%.0f", "%.999f", "%e",
        "%.12e", "%.0e",  "%10.4f", "%-12.5e|", "%+g", "%G", "%E",   "%lf",  "%a",     "% .2f"}) {
    for (double value : values)
      EXPECT_EQ(printed(piece, value), reference(piece, value, false)) << piece << " " << value;
  }
  for (const char *piece : {"%d", "%5d", "%-3i", "%+d", "n=%d"}) {
    for (double value : {0.0, 7.9, -7.9, -9999999.0, 2147483647.0, -2147483648.0})
      EXPECT_EQ(printed(piece, value), reference(piece, value, true)) << piece << " " << value;
  }
}

TEST(TextSink, IntegerPiecesClamp) {
  EXPECT_EQ(printed("%d", 1e300), "2147483647");
  EXPECT_EQ(printed("%i", -1e300), "-2147483648");
  EXPECT_EQ(printed("%d", std::nan("")), "0");
}

TEST(TextSink, LongOutputIsWrittenWhole) {
  nuvo::ColumnFormats formats;
  ASSERT_EQ(formats.parse("%.999f;%.3e", 2), 0);
  TempStream file;
  std::string expected;
  {
    nuvo::TextSink sink(file.get());
    for (int i = 0; i < 200; ++i) {
      sink.value(formats[i], i * 1e300);
      sink.put(std::string(300, 'x'));
      expected +=
          reference(i % 2 == 0 ? "%.999f" : "%.3e", i * 1e300, false) + std::string(300, 'x');
    }
    ASSERT_EQ(sink.finish(), 0);
  }
  EXPECT_EQ(file.contents(), expected);
}

}  // namespace
