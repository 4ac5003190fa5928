// GSLIB binary image format, native byte order: the sizes of int and double (one
// byte each), nx ny nz, sx sy sz, ox oy oz, nvar, the zero-terminated names, then
// the values in memory order (variable after variable, unlike the text formats).
#include <cstring>
#include <string>

#include "data/image_layout.hpp"
#include "data/stream_room.hpp"
#include "foundation/check.hpp"
#include "nuvo_imagefile.h"
#include "nuvo_text.h"

namespace nuvo {
namespace {

static_assert(sizeof(int) == 4 && sizeof(double) == 8, "the binary format has 4-byte ints");

template <typename T>
bool readField(FILE *stream, T &value) {
  return std::fread(&value, sizeof value, 1, stream) == 1;
}

template <typename T>
bool writeField(FILE *stream, const T &value) {
  return std::fwrite(&value, sizeof value, 1, stream) == 1;
}

// A name ends at its zero byte; 127 characters at most.
int readName(FILE *stream, std::string &name) {
  name.clear();
  for (int c = std::getc(stream); c != 0; c = std::getc(stream)) {
    NUVO_FAIL_IF(c == EOF, -1058);
    NUVO_FAIL_IF(name.size() == NUVO_VAR_NAME_MAX, -726);
    name += static_cast<char>(c);
  }
  return 0;
}

// Node counts below 1 are refused with the code of their field, and a product
// that does not fit in an int with the code of nz.
int readHeader(FILE *stream, ImageLayout &layout) {
  unsigned char sizeOf = 0;
  NUVO_FAIL_IF(!readField(stream, sizeOf), -1045);
  NUVO_FAIL_IF(!readField(stream, sizeOf), -1046);
  int counts[3] = {0, 0, 0};
  for (int k = 0; k < 3; ++k)
    NUVO_FAIL_IF(!readField(stream, counts[k]) || counts[k] < 1, -1048 - k);
  nuvo_grid &grid = layout.grid;
  NUVO_FAIL_IF(!setNodeCounts(grid, counts[0], counts[1], counts[2]), -1050);
  double *reals[6] = {&grid.sx, &grid.sy, &grid.sz, &grid.ox, &grid.oy, &grid.oz};
  for (int k = 0; k < 6; ++k) NUVO_FAIL_IF(!readField(stream, *reals[k]), -1051 - k);
  NUVO_FAIL_IF(!readField(stream, layout.nvar) || !fitsVariables(grid, layout.nvar), -1057);
  std::string name;
  for (int iv = 0; iv < layout.nvar; ++iv) {
    NUVO_TRY(readName(stream, name));
    layout.names.push_back(name);
  }
  return 0;
}

int readBinaryImage(nuvo_image *image, FILE *stream) {
  ImageLayout layout;
  NUVO_TRY(readHeader(stream, layout));
  const std::size_t count = static_cast<std::size_t>(layout.grid.nxyz) * layout.nvar;
  NUVO_FAIL_IF(!streamCanHold(stream, static_cast<long long>(count * sizeof(double))), -1059);
  NUVO_TRY(allocateImage(layout, image));
  NUVO_FAIL_IF(std::fread(image->var, sizeof(double), count, stream) != count, -1059);
  return 0;
}

int writeBinaryImage(const nuvo_image *image, FILE *stream) {
  const unsigned char sizeOfInt = sizeof(int);
  const unsigned char sizeOfReal = sizeof(double);
  NUVO_FAIL_IF(!writeField(stream, sizeOfInt), -1025);
  NUVO_FAIL_IF(!writeField(stream, sizeOfReal), -1026);
  const nuvo_grid &g = *image->grid;
  const int counts[3] = {g.nx, g.ny, g.nz};
  for (int k = 0; k < 3; ++k) NUVO_FAIL_IF(!writeField(stream, counts[k]), -1028 - k);
  const double reals[6] = {g.sx, g.sy, g.sz, g.ox, g.oy, g.oz};
  for (int k = 0; k < 6; ++k) NUVO_FAIL_IF(!writeField(stream, reals[k]), -1031 - k);
  NUVO_FAIL_IF(!writeField(stream, image->nvar), -1037);
  for (int iv = 0; iv < image->nvar; ++iv) {
    const std::size_t bytes = std::strlen(image->varName[iv]) + 1;
    NUVO_FAIL_IF(std::fwrite(image->varName[iv], 1, bytes, stream) != bytes, -1038);
  }
  const std::size_t count = static_cast<std::size_t>(image->nxyzv);
  NUVO_FAIL_IF(std::fwrite(image->var, sizeof(double), count, stream) != count, -1039);
  return 0;
}

}  // namespace
}  // namespace nuvo

extern "C" {

int NUVOReadImageGslibBinary(nuvo_image *image, FILE *stream) {
  return nuvo::guardedCall([&] { return nuvo::readBinaryImage(image, stream); });
}

int NUVOWriteImageGslibBinary(const nuvo_image *image, FILE *stream) {
  return nuvo::writeBinaryImage(image, stream);
}

}  // extern "C"
