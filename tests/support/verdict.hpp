// The verdict of a validator: the code it leaves in its last argument (12345 if it
// leaves none), the validation itself having to succeed.
#pragma once

#include <gtest/gtest.h>

namespace nuvo_test {

template <typename Validate, typename... Args>
int verdictOf(Validate validate, Args... args) {
  int verdict = 12345;
  EXPECT_EQ(validate(args..., &verdict), 0);
  return verdict;
}

}  // namespace nuvo_test
