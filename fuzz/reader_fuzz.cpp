// Fuzz target for one file reader, chosen at compile time by NUVO_FUZZ_READER:
// 0-3 the text image formats of that key, 4 the GSLIB binary image, 5 the
// point-set text format, 6 the block data file. Each input must be read without a
// crash; when it reads, the record is written back and must read again into an
// equal record (the binary writer must even reproduce the bytes that were read;
// block data, written with six decimals, must write the same text twice).
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "nuvo_blockdata.h"
#include "nuvo_imagefile.h"

#ifndef NUVO_FUZZ_READER
#error "NUVO_FUZZ_READER must name the reader to fuzz"
#endif

namespace {

constexpr int kBinaryReader = 4;
constexpr int kPointSetReader = 5;
constexpr int kBlockDataReader = 6;

void check(bool condition, const char *what) {
  if (condition) return;
  std::fprintf(stderr, "fuzz check failed: %s\n", what);
  std::abort();
}

// Equal numbers, or two NaNs of the same sign (text keeps no NaN payload).
bool sameNumber(double a, double b) {
  if (std::isnan(a) || std::isnan(b))
    return std::isnan(a) && std::isnan(b) && std::signbit(a) == std::signbit(b);
  return std::memcmp(&a, &b, sizeof a) == 0;
}

bool sameNumbers(const double *a, const double *b, long long n) {
  for (long long i = 0; i < n; ++i)
    if (!sameNumber(a[i], b[i])) return false;
  return true;
}

// Bytes written through a stream, to read back from.
class Written {
 public:
  Written() : stream_(open_memstream(&data_, &size_)) {}
  ~Written() { std::free(data_); }
  Written(const Written &) = delete;
  Written &operator=(const Written &) = delete;
  FILE *stream() const { return stream_; }
  // Closes the writing stream; the bytes stay available.
  std::string close() {
    std::fclose(stream_);
    return std::string(data_, size_);
  }

 private:
  char *data_ = nullptr;
  std::size_t size_ = 0;
  FILE *stream_;
};

FILE *openBytes(const void *data, std::size_t size) {
  static const char kEmpty[1] = {0};
  return fmemopen(const_cast<void *>(size != 0 ? data : kEmpty), size, "rb");
}

void checkTextImage(const std::uint8_t *data, std::size_t size) {
  const int key = NUVO_FUZZ_READER;
  nuvo_image image;
  NUVOInitImage(&image);
  FILE *in = openBytes(data, size);
  const int rc = NUVOReadImage(&image, key, in);
  std::fclose(in);
  bool emptyName = false;
  for (int iv = 0; rc == 0 && iv < image.nvar; ++iv) emptyName |= image.varName[iv][0] == '\0';
  // A GSLIB name made empty by a zero byte cannot be written back as a word.
  if (rc == 0 && !(key == 0 && emptyName)) {
    // The header prints spacing and origin with "%f": keep them exact.
    image.grid->sx = image.grid->sy = image.grid->sz = 1.0;
    image.grid->ox = image.grid->oy = image.grid->oz = 0.0;
    Written out;
    check(NUVOWriteImage(&image, "%.17g", key, out.stream()) == 0, "write image");
    const std::string text = out.close();
    nuvo_image copy;
    NUVOInitImage(&copy);
    FILE *back = openBytes(text.data(), text.size());
    const int again = NUVOReadImage(&copy, key, back);
    std::fclose(back);
    // Names joined by '/' may not fit on one VTK header line again.
    check(again == 0 || (key == 1 && again == -757), "read back image");
    if (again == 0) {
      check(copy.grid->nxyz == image.grid->nxyz && copy.grid->nx == image.grid->nx &&
                copy.grid->ny == image.grid->ny && copy.nvar == image.nvar,
            "same sizes");
      for (int iv = 0; iv < image.nvar; ++iv)
        check(std::strcmp(copy.varName[iv], image.varName[iv]) == 0, "same names");
      check(sameNumbers(copy.var, image.var, image.nxyzv), "same values");
    }
    NUVOFreeImage(&copy);
  }
  NUVOFreeImage(&image);
}

void checkBinaryImage(const std::uint8_t *data, std::size_t size) {
  nuvo_image image;
  NUVOInitImage(&image);
  FILE *in = openBytes(data, size);
  const int rc = NUVOReadImageGslibBinary(&image, in);
  const long consumed = std::ftell(in);
  std::fclose(in);
  if (rc == 0) {
    Written out;
    check(NUVOWriteImageGslibBinary(&image, out.stream()) == 0, "write binary");
    const std::string bytes = out.close();
    // The two size bytes are not checked when reading and always written as 4 and 8.
    check(static_cast<long>(bytes.size()) == consumed &&
              std::memcmp(bytes.data() + 2, data + 2, bytes.size() - 2) == 0,
          "binary bytes reproduced");
  }
  NUVOFreeImage(&image);
}

void checkPointSet(const std::uint8_t *data, std::size_t size) {
  nuvo_pointSet ps;
  NUVOInitPointSet(&ps);
  FILE *in = openBytes(data, size);
  const int rc = NUVOReadPointSet(&ps, in);
  std::fclose(in);
  bool emptyName = false;
  for (int iv = 0; rc == 0 && iv < ps.nvar; ++iv) emptyName |= ps.varName[iv][0] == '\0';
  if (rc == 0 && !emptyName) {
    Written out;
    check(NUVOWritePointSet(&ps, "%.17g", "%.17g", out.stream()) == 0, "write point set");
    const std::string text = out.close();
    nuvo_pointSet copy;
    NUVOInitPointSet(&copy);
    FILE *back = openBytes(text.data(), text.size());
    check(NUVOReadPointSet(&copy, back) == 0, "read back point set");
    std::fclose(back);
    check(copy.npoint == ps.npoint && copy.nvar == ps.nvar, "same sizes");
    for (int iv = 0; iv < ps.nvar; ++iv)
      check(std::strcmp(copy.varName[iv], ps.varName[iv]) == 0, "same names");
    check(sameNumbers(copy.x, ps.x, ps.npoint) && sameNumbers(copy.y, ps.y, ps.npoint) &&
              sameNumbers(copy.z, ps.z, ps.npoint) &&
              sameNumbers(copy.val, ps.val, static_cast<long long>(ps.npoint) * ps.nvar),
          "same numbers");
    NUVOFreePointSet(&copy);
  }
  NUVOFreePointSet(&ps);
}

// The text a block data record read from `data` is written as; empty when it
// does not read, or, with `validated`, does not pass the validator.
std::string blockDataText(const void *data, std::size_t size, bool validated) {
  nuvo_blockData bd;
  NUVOInitBlockData(&bd);
  FILE *in = openBytes(data, size);
  int error = NUVOReadBlockData(&bd, in);
  std::fclose(in);
  bd.blockDataUsage = NUVO_BLOCK_DATA_MEAN;
  if (error == 0 && validated) NUVOValidateBlockData(&bd, nullptr, nullptr, &error);
  std::string text;
  if (error == 0) {
    Written out;
    check(NUVOWriteBlockData(&bd, out.stream()) == 0, "write block data");
    text = out.close();
  }
  NUVOFreeBlockData(&bd);
  return text;
}

// A valid record written, read back and written again gives the same text (the
// six decimals of the format may round a value, to zero even, only once).
void checkBlockData(const std::uint8_t *data, std::size_t size) {
  const std::string text = blockDataText(data, size, true);
  if (text.empty()) return;
  check(blockDataText(text.data(), text.size(), false) == text, "block data written again the same");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  if (NUVO_FUZZ_READER == kBinaryReader)
    checkBinaryImage(data, size);
  else if (NUVO_FUZZ_READER == kPointSetReader)
    checkPointSet(data, size);
  else if (NUVO_FUZZ_READER == kBlockDataReader)
    checkBlockData(data, size);
  else
    checkTextImage(data, size);
  return 0;
}
