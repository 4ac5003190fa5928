#include "data/text_write.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <limits>
#include <string>

#include "tests/support/temp_stream.hpp"

namespace {

using nuvo::test::TempStream;

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
