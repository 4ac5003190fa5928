// Every code that the pyramid parameter records return has a message of its own.
#include <gtest/gtest.h>

#include <string>

#include "nuvo_error.h"

namespace {

TEST(PyramidCodesTest, EveryCodeHasAMessage) {
  const int ranges[][2] = {{3590, 3592}, {3595, 3597}, {3600, 3604},
                           {3610, 3633}, {3635, 3635}, {3640, 3652}};
  for (const auto &range : ranges) {
    for (int code = range[0]; code <= range[1]; ++code) {
      const std::string text = NUVOGetErrorMessage(code);
      EXPECT_NE(text, "ERROR: unknown\n") << code;
    }
  }
}

}  // namespace
