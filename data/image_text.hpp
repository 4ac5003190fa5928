// The four text image formats (GSLIB, VTK, PGM, PPM). Each format reads its header
// into an ImageLayout and writes its own header lines; the value block is the
// same in all of them: node after node (x fastest), and at each node the values
// of every variable in order, separated by white space.
#pragma once

#include <cstdio>

#include "data/image_layout.hpp"
#include "data/text_read.hpp"
#include "data/text_write.hpp"
#include "nuvo_image.h"

namespace nuvo {

inline constexpr int kBadImageValues = -730;

int readGslibHeader(FILE *stream, CharSource &source, ImageLayout &layout);
int readVtkHeader(FILE *stream, ImageLayout &layout);
// PGM (key 2) or PPM (key 3).
int readPnmHeader(FILE *stream, int key, ImageLayout &layout);

// Allocates the image for `layout` and reads its values. A value that cannot be
// read, or a stream too short to hold them all (found before allocating), gives
// -730; a failed allocation -1.
int readImageValues(FILE *stream, CharSource &source, const ImageLayout &layout, nuvo_image *image);

// 0 when a PGM (key 2) or PPM (key 3) file can hold the image, else the code for
// its number of variables or its nz.
int checkPnmWritable(int key, const nuvo_image &image);

void writeGslibHeader(TextSink &sink, const nuvo_image &image);
void writeVtkHeader(TextSink &sink, const nuvo_image &image);
void writePnmHeader(TextSink &sink, int key, const nuvo_image &image);
// One line per node with the values of every variable, each printed with its
// column's format and separated by one blank.
void writeImageValues(TextSink &sink, const nuvo_image &image, const ColumnFormats &formats);

}  // namespace nuvo
