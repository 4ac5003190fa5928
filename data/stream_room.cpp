#include "data/stream_room.hpp"

#include <sys/types.h>

namespace nuvo {

bool streamCanHold(FILE *stream, long long bytes) {
  const off_t here = ftello(stream);
  if (here < 0 || fseeko(stream, 0, SEEK_END) != 0) return true;
  const off_t end = ftello(stream);
  fseeko(stream, here, SEEK_SET);
  return end - here >= bytes;
}

}  // namespace nuvo
