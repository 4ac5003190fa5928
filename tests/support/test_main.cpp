// Entry point of every test program. A non-C locale is set on purpose, so that a
// reader or writer that depends on the locale's decimal separator shows up.
#include <gtest/gtest.h>

#include <clocale>

int main(int argc, char **argv) {
  std::setlocale(LC_ALL, "");
  ::testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}
