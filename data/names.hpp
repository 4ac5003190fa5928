// Variable-name slots shared by images and point sets: one block of n slots of
// 128 characters plus an array of n pointers into it, released by freeNames.
#pragma once

namespace nuvo {

inline constexpr int kNameSlot = 128;

// Allocates n empty name slots; null on failure (or n <= 0).
char **allocateNames(int n);
// Releases slots from allocateNames; null is accepted.
void freeNames(char **names);

}  // namespace nuvo
