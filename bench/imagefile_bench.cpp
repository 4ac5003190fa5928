// Reading and writing a 200 x 200 x 200 single-variable image (8 million values)
// in the GSLIB text format (lossless "%.17g") and in the GSLIB binary format.
#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdio>

#include "nuvo_imagefile.h"

namespace {

constexpr int kSide = 200;
constexpr const char *kFormat = "%.17g";

// A continuous field with a missing value every 97 nodes.
class BigImage {
 public:
  BigImage() {
    NUVOInitImage(&image_);
    const int nxyz = kSide * kSide * kSide;
    NUVOMallocImage(&image_, nxyz, 1);
    *image_.grid =
        nuvo_grid{kSide, kSide, kSide, 1.0, 1.0, 1.0, 0.0, 0.0, 0.0, kSide * kSide, nxyz};
    image_.nvar = 1;
    image_.nxyzv = nxyz;
    image_.varName[0][0] = 'v';
    for (int i = 0; i < nxyz; ++i)
      image_.var[i] = i % 97 == 0 ? NUVO_MISSING_VALUE : 100.0 * std::sin(i * 0.001);
  }
  ~BigImage() { NUVOFreeImage(&image_); }
  const nuvo_image &get() const { return image_; }

 private:
  nuvo_image image_;
};

const nuvo_image &bigImage() {
  static const BigImage image;
  return image.get();
}

enum class Format { kGslibText, kBinary };

int write(const nuvo_image &image, Format format, FILE *file) {
  return format == Format::kGslibText ? NUVOWriteImage(&image, kFormat, 0, file)
                                      : NUVOWriteImageGslibBinary(&image, file);
}

int read(nuvo_image &image, Format format, FILE *file) {
  return format == Format::kGslibText ? NUVOReadImage(&image, 0, file)
                                      : NUVOReadImageGslibBinary(&image, file);
}

void BM_WriteImage(benchmark::State &state, Format format) {
  const nuvo_image &image = bigImage();
  FILE *file = std::tmpfile();
  for (auto _ : state) {
    std::rewind(file);
    if (write(image, format, file) != 0) state.SkipWithError("write failed");
    std::fflush(file);
  }
  state.SetItemsProcessed(state.iterations() * image.nxyzv);
  std::fclose(file);
}

void BM_ReadImage(benchmark::State &state, Format format) {
  FILE *file = std::tmpfile();
  if (write(bigImage(), format, file) != 0) state.SkipWithError("write failed");
  for (auto _ : state) {
    std::rewind(file);
    nuvo_image image;
    NUVOInitImage(&image);
    if (read(image, format, file) != 0) state.SkipWithError("read failed");
    NUVOFreeImage(&image);
  }
  state.SetItemsProcessed(state.iterations() * bigImage().nxyzv);
  std::fclose(file);
}

BENCHMARK_CAPTURE(BM_WriteImage, gslib_text, Format::kGslibText)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_ReadImage, gslib_text, Format::kGslibText)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_WriteImage, gslib_binary, Format::kBinary)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_ReadImage, gslib_binary, Format::kBinary)->Unit(benchmark::kMillisecond);

}  // namespace
