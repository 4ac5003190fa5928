#include "data/image_text.hpp"

#include "data/stream_room.hpp"
#include "foundation/check.hpp"

namespace nuvo {

int readImageValues(FILE *stream, CharSource &source, const ImageLayout &layout,
                    nuvo_image *image) {
  const long long count = static_cast<long long>(layout.grid.nxyz) * layout.nvar;
  NUVO_FAIL_IF(!streamCanHold(stream, textBytesFor(count)), kBadImageValues);
  NUVO_TRY(allocateImage(layout, image));
  const std::size_t nxyz = static_cast<std::size_t>(layout.grid.nxyz);
  const std::size_t nvar = static_cast<std::size_t>(layout.nvar);
  for (std::size_t node = 0; node < nxyz; ++node)
    for (std::size_t iv = 0; iv < nvar; ++iv)
      NUVO_FAIL_IF(!scanDouble(source, image->var[iv * nxyz + node]), kBadImageValues);
  return 0;
}

void writeImageValues(TextSink &sink, const nuvo_image &image, const ColumnFormats &formats) {
  const std::size_t nxyz = static_cast<std::size_t>(image.grid->nxyz);
  for (std::size_t node = 0; node < nxyz; ++node) {
    for (int iv = 0; iv < image.nvar; ++iv) {
      if (iv > 0) sink.put(' ');
      sink.value(formats[iv], image.var[static_cast<std::size_t>(iv) * nxyz + node]);
    }
    sink.put('\n');
  }
}

}  // namespace nuvo
