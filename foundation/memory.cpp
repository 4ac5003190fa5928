// Allocation helpers and contiguous multi-dimensional arrays.
//
// These keep the C allocator (malloc/realloc/free) because their blocks cross the
// C interface: records handed to callers are released with NUVOFree... functions.
#include <cstdint>
#include <cstdlib>
#include <initializer_list>

#include "nuvo_memory.h"

namespace nuvo {
namespace {

// n*size, or 0 when the product does not fit (reported as an allocation failure).
bool checkedProduct(std::size_t n, std::size_t size, std::size_t *bytes) {
  return !__builtin_mul_overflow(n, size, bytes);
}

void *allocate(std::size_t n, std::size_t size, int *err) {
  std::size_t bytes = 0;
  if (!checkedProduct(n, size, &bytes)) {
    *err = -1;
    return nullptr;
  }
  void *p = std::malloc(bytes);
  if (p == nullptr) *err = -1;
  return p;
}

// Codes of the array allocators, by number of dimensions.
struct ArrayCodes {
  int zeroDimension;
  int zeroSize;
};

bool checkArrayArgs(std::initializer_list<std::size_t> dims, std::size_t size, ArrayCodes codes,
                    std::size_t *count, int *err) {
  for (std::size_t d : dims) {
    if (d == 0) {
      *err = -codes.zeroDimension;
      return false;
    }
  }
  if (size == 0) {
    *err = -codes.zeroSize;
    return false;
  }
  std::size_t product = 1;
  for (std::size_t d : dims) {
    if (!checkedProduct(product, d, &product)) {
      *err = -1;
      return false;
    }
  }
  *count = product;
  return true;
}

}  // namespace
}  // namespace nuvo

extern "C" {

void *NUVOMalloc(size_t n, size_t size, int *err) {
  *err = 0;
  if (n == 0) {
    *err = -3;
    return nullptr;
  }
  if (size == 0) {
    *err = -4;
    return nullptr;
  }
  return nuvo::allocate(n, size, err);
}

void *NUVORealloc(void *ptr, size_t n, size_t size, int *err) {
  if (n == 0) {
    *err = -5;
    return ptr;
  }
  if (size == 0) {
    *err = -6;
    return ptr;
  }
  std::size_t bytes = 0;
  void *p = nuvo::checkedProduct(n, size, &bytes) ? std::realloc(ptr, bytes) : nullptr;
  if (p == nullptr) {
    *err = -2;
    return ptr;
  }
  return p;
}

void NUVOFree(void *ptr) {
  std::free(ptr);
}

void **NUVOMallocArray2D(size_t dim1, size_t dim2, size_t size, int *err) {
  *err = 0;
  std::size_t count = 0;
  if (!nuvo::checkArrayArgs({dim1, dim2}, size, {7, 8}, &count, err)) return nullptr;
  auto *data = static_cast<char *>(nuvo::allocate(count, size, err));
  if (data == nullptr) return nullptr;
  auto **rows = static_cast<void **>(nuvo::allocate(dim1, sizeof(void *), err));
  if (rows == nullptr) {
    std::free(data);
    return nullptr;
  }
  for (std::size_t i = 0; i < dim1; ++i) rows[i] = data + i * dim2 * size;
  return rows;
}

void NUVOFreeArray2D(void **p) {
  if (p == nullptr) return;
  std::free(p[0]);
  std::free(p);
}

void ***NUVOMallocArray3D(size_t dim1, size_t dim2, size_t dim3, size_t size, int *err) {
  *err = 0;
  std::size_t count = 0;
  if (!nuvo::checkArrayArgs({dim1, dim2, dim3}, size, {9, 10}, &count, err)) return nullptr;
  void **rows = NUVOMallocArray2D(dim1 * dim2, dim3, size, err);
  if (rows == nullptr) return nullptr;
  auto ***planes = static_cast<void ***>(nuvo::allocate(dim1, sizeof(void **), err));
  if (planes == nullptr) {
    NUVOFreeArray2D(rows);
    return nullptr;
  }
  for (std::size_t i = 0; i < dim1; ++i) planes[i] = rows + i * dim2;
  return planes;
}

void NUVOFreeArray3D(void ***p) {
  if (p == nullptr) return;
  NUVOFreeArray2D(p[0]);
  std::free(p);
}

void ****NUVOMallocArray4D(size_t dim1, size_t dim2, size_t dim3, size_t dim4, size_t size,
                           int *err) {
  *err = 0;
  std::size_t count = 0;
  if (!nuvo::checkArrayArgs({dim1, dim2, dim3, dim4}, size, {11, 12}, &count, err)) return nullptr;
  void ***planes = NUVOMallocArray3D(dim1 * dim2, dim3, dim4, size, err);
  if (planes == nullptr) return nullptr;
  auto ****cubes = static_cast<void ****>(nuvo::allocate(dim1, sizeof(void ***), err));
  if (cubes == nullptr) {
    NUVOFreeArray3D(planes);
    return nullptr;
  }
  for (std::size_t i = 0; i < dim1; ++i) cubes[i] = planes + i * dim2;
  return cubes;
}

void NUVOFreeArray4D(void ****p) {
  if (p == nullptr) return;
  NUVOFreeArray3D(p[0]);
  std::free(p);
}

}  // extern "C"
