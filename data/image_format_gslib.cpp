// GSLIB image text format: a line "nx ny nz [sx sy sz [ox oy oz]]", the number of
// variables, one name per variable, then the values.
#include "data/image_text.hpp"
#include "foundation/check.hpp"
#include "nuvo_text.h"

namespace nuvo {

int readGslibHeader(FILE *stream, CharSource &source, ImageLayout &layout) {
  HeaderLine line;
  NUVO_TRY(readHeaderLine(stream, line, -721, -722));
  int counts[3] = {0, 0, 0};
  double geometry[6] = {1.0, 1.0, 1.0, 0.0, 0.0, 0.0};
  CharSource text(line.data());
  auto count = [&](int k) { return [&, k] { return scanInt(text, counts[k]); }; };
  auto real = [&](int k) { return [&, k] { return scanDouble(text, geometry[k]); }; };
  const int items = countMatched(count(0), count(1), count(2), real(0), real(1), real(2), real(3),
                                 real(4), real(5));
  NUVO_FAIL_IF(items != 3 && items != 6 && items != 9, -723);
  nuvo_grid &grid = layout.grid;
  NUVO_FAIL_IF(!setNodeCounts(grid, counts[0], counts[1], counts[2]), -723);
  grid.sx = geometry[0];
  grid.sy = geometry[1];
  grid.sz = geometry[2];
  grid.ox = geometry[3];
  grid.oy = geometry[4];
  grid.oz = geometry[5];

  NUVO_FAIL_IF(!scanInt(source, layout.nvar) || !fitsVariables(grid, layout.nvar), -724);
  std::string name;
  for (int iv = 0; iv < layout.nvar; ++iv) {
    const WordStatus status = scanWord(source, name, NUVO_VAR_NAME_MAX);
    NUVO_FAIL_IF(status == WordStatus::kMissing, -725);
    NUVO_FAIL_IF(status == WordStatus::kTooLong, -726);
    layout.names.push_back(name);
  }
  return 0;
}

void writeGslibHeader(TextSink &sink, const nuvo_image &image) {
  const nuvo_grid &g = *image.grid;
  sink.print("%d %d %d %f %f %f %f %f %f\n", g.nx, g.ny, g.nz, g.sx, g.sy, g.sz, g.ox, g.oy, g.oz);
  sink.print("%d\n", image.nvar);
  for (int iv = 0; iv < image.nvar; ++iv) {
    sink.put(image.varName[iv]);
    sink.put('\n');
  }
}

}  // namespace nuvo
