// GSLIB point-set text format: the number of points, the number of columns, one
// name per column (the first three name the x, y and z coordinates), then one row
// per point: x, y, z and the values of the variables.
#include <climits>
#include <string>
#include <vector>

#include "data/names.hpp"
#include "data/stream_room.hpp"
#include "data/text_read.hpp"
#include "data/text_write.hpp"
#include "foundation/check.hpp"
#include "nuvo_imagefile.h"
#include "nuvo_text.h"

namespace nuvo {
namespace {

constexpr int kBadPointValues = -731;

struct CoordinateColumn {
  char upper;
  char lower;
  int missingCode;
  int wrongNameCode;
};

constexpr CoordinateColumn kCoordinates[3] = {
    {'X', 'x', -773, -631}, {'Y', 'y', -774, -632}, {'Z', 'z', -775, -633}};

// Only the first letter of a coordinate name matters; its length does not.
int readColumnNames(CharSource &source, int nvar, std::vector<std::string> &names) {
  std::string name;
  for (const CoordinateColumn &column : kCoordinates) {
    NUVO_FAIL_IF(scanWord(source, name, NUVO_VAR_NAME_MAX) == WordStatus::kMissing,
                 column.missingCode);
    NUVO_FAIL_IF(name[0] != column.upper && name[0] != column.lower, column.wrongNameCode);
  }
  for (int iv = 0; iv < nvar; ++iv) {
    const WordStatus status = scanWord(source, name, NUVO_VAR_NAME_MAX);
    NUVO_FAIL_IF(status == WordStatus::kMissing, -776);
    NUVO_FAIL_IF(status == WordStatus::kTooLong, -777);
    names.push_back(name);
  }
  return 0;
}

// An empty point set is refused with -3, as NUVOMallocPointSet does, and a table
// whose size does not fit in an int with the code of the column count.
int readPointSet(nuvo_pointSet *ps, FILE *stream) {
  CharSource source(stream);
  int npoint = 0;
  int ncol = 0;
  NUVO_FAIL_IF(!scanInt(source, npoint), -771);
  NUVO_FAIL_IF(!scanInt(source, ncol), -772);
  NUVO_FAIL_IF(ncol < 3, -630);
  NUVO_FAIL_IF(npoint < 1, -3);
  const long long count = static_cast<long long>(npoint) * ncol;
  NUVO_FAIL_IF(count > INT_MAX, -772);
  const int nvar = ncol - 3;
  std::vector<std::string> names;
  NUVO_TRY(readColumnNames(source, nvar, names));

  NUVO_FAIL_IF(!streamCanHold(stream, textBytesFor(count)), kBadPointValues);
  NUVO_TRY(NUVOMallocPointSet(ps, npoint, nvar));
  for (int iv = 0; iv < nvar; ++iv)
    names[static_cast<std::size_t>(iv)].copy(ps->varName[iv], kNameSlot - 1);
  const std::size_t n = static_cast<std::size_t>(npoint);
  for (std::size_t k = 0; k < n; ++k) {
    NUVO_FAIL_IF(!scanDouble(source, ps->x[k]) || !scanDouble(source, ps->y[k]) ||
                     !scanDouble(source, ps->z[k]),
                 kBadPointValues);
    for (std::size_t iv = 0; iv < static_cast<std::size_t>(nvar); ++iv)
      NUVO_FAIL_IF(!scanDouble(source, ps->val[iv * n + k]), kBadPointValues);
  }
  return 0;
}

int writePointSet(const nuvo_pointSet *ps, const char *coordFormat, const char *varFormat,
                  FILE *stream) {
  ColumnFormats coordinates;
  ColumnFormats values;
  NUVO_TRY(coordinates.parse(coordFormat, 3));
  NUVO_TRY(values.parse(varFormat, ps->nvar));
  TextSink sink(stream);
  sink.print("%d\n%d\nx\ny\nz\n", ps->npoint, ps->nvar + 3);
  for (int iv = 0; iv < ps->nvar; ++iv) {
    sink.put(ps->varName[iv]);
    sink.put('\n');
  }
  const std::size_t n = static_cast<std::size_t>(ps->npoint);
  for (std::size_t k = 0; k < n; ++k) {
    sink.value(coordinates[0], ps->x[k]);
    sink.put(' ');
    sink.value(coordinates[1], ps->y[k]);
    sink.put(' ');
    sink.value(coordinates[2], ps->z[k]);
    for (int iv = 0; iv < ps->nvar; ++iv) {
      sink.put(' ');
      sink.value(values[iv], ps->val[static_cast<std::size_t>(iv) * n + k]);
    }
    sink.put('\n');
  }
  return sink.finish();
}

}  // namespace
}  // namespace nuvo

extern "C" {

int NUVOReadPointSet(nuvo_pointSet *ps, FILE *stream) {
  return nuvo::guardedCall([&] { return nuvo::readPointSet(ps, stream); });
}

int NUVOWritePointSet(const nuvo_pointSet *ps, const char *coordFormat, const char *varFormat,
                      FILE *stream) {
  return nuvo::guardedCall([&] { return nuvo::writePointSet(ps, coordFormat, varFormat, stream); });
}

}  // extern "C"
