// Entry points of the text image formats: the key picks the header reader or
// writer; the value block is shared.
#include "data/image_text.hpp"
#include "foundation/check.hpp"
#include "nuvo_imagefile.h"

namespace nuvo {
namespace {

bool isTextFormat(int key) {
  return key >= NUVO_IMAGE_FORMAT_GSLIB && key <= NUVO_IMAGE_FORMAT_PPM;
}

int readTextImage(nuvo_image *image, int key, FILE *stream) {
  NUVO_FAIL_IF(!isTextFormat(key), -720);
  CharSource source(stream);
  ImageLayout layout;
  switch (key) {
    case NUVO_IMAGE_FORMAT_GSLIB:
      NUVO_TRY(readGslibHeader(stream, source, layout));
      break;
    case NUVO_IMAGE_FORMAT_VTK:
      NUVO_TRY(readVtkHeader(stream, layout));
      break;
    default:
      NUVO_TRY(readPnmHeader(stream, key, layout));
  }
  return readImageValues(stream, source, layout, image);
}

int writeTextImage(const nuvo_image *image, const char *formatString, int key, FILE *stream) {
  ColumnFormats formats;
  NUVO_TRY(formats.parse(formatString, image->nvar));
  NUVO_FAIL_IF(!isTextFormat(key), -1020);
  if (key == NUVO_IMAGE_FORMAT_PGM || key == NUVO_IMAGE_FORMAT_PPM)
    NUVO_TRY(checkPnmWritable(key, *image));
  TextSink sink(stream);
  switch (key) {
    case NUVO_IMAGE_FORMAT_GSLIB:
      writeGslibHeader(sink, *image);
      break;
    case NUVO_IMAGE_FORMAT_VTK:
      writeVtkHeader(sink, *image);
      break;
    default:
      writePnmHeader(sink, key, *image);
  }
  writeImageValues(sink, *image, formats);
  return sink.finish();
}

}  // namespace
}  // namespace nuvo

extern "C" {

int NUVOReadImage(nuvo_image *image, int key, FILE *stream) {
  return nuvo::guardedCall([&] { return nuvo::readTextImage(image, key, stream); });
}

int NUVOWriteImage(const nuvo_image *image, const char *formatString, int key, FILE *stream) {
  return nuvo::guardedCall([&] { return nuvo::writeTextImage(image, formatString, key, stream); });
}

}  // extern "C"
