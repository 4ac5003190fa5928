// How much a stream still holds, so that a reader refuses a header whose sizes the
// rest of the file cannot fill before it allocates for them.
#pragma once

#include <cstdio>

namespace nuvo {

// False when `stream` is seekable and fewer than `bytes` bytes lie between its
// position and its end; true otherwise (a pipe gives no bound). The position is
// kept.
bool streamCanHold(FILE *stream, long long bytes);

// Fewest bytes that hold `count` numbers as text: one character each and a blank
// between two.
inline long long textBytesFor(long long count) {
  return 2 * count - 1;
}

}  // namespace nuvo
