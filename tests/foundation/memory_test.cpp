#include <gtest/gtest.h>

#include <cstdint>

#include "nuvo_memory.h"

namespace {

TEST(Realloc, KeepsTheBlockOnRefusalAndLeavesErrOnSuccess) {
  int err = 0;
  auto *p = static_cast<int *>(NUVOMalloc(2, sizeof(int), &err));
  ASSERT_NE(p, nullptr);
  p[0] = 11;
  EXPECT_EQ(NUVORealloc(p, 0, 8, &err), p);
  EXPECT_EQ(err, -5);
  EXPECT_EQ(NUVORealloc(p, 2, 0, &err), p);
  EXPECT_EQ(err, -6);
  err = 123;
  p = static_cast<int *>(NUVORealloc(p, 1000, sizeof(int), &err));
  EXPECT_EQ(err, 123);
  EXPECT_EQ(p[0], 11);
  NUVOFree(p);
  NUVOFree(nullptr);
}

// Elements reached through the row pointers sit in one row-major block.
TEST(Arrays, AreContiguousRowMajorBlocks) {
  int err = 1;
  auto **a2 = reinterpret_cast<int **>(NUVOMallocArray2D(3, 4, sizeof(int), &err));
  ASSERT_EQ(err, 0);
  a2[2][3] = 23;
  a2[1][0] = 10;
  EXPECT_EQ(a2[0][2 * 4 + 3], 23);
  EXPECT_EQ(a2[0][4], 10);
  NUVOFreeArray2D(reinterpret_cast<void **>(a2));

  auto ***a3 = reinterpret_cast<int ***>(NUVOMallocArray3D(2, 3, 4, sizeof(int), &err));
  ASSERT_EQ(err, 0);
  a3[1][2][3] = 123;
  EXPECT_EQ(a3[0][0][(1 * 3 + 2) * 4 + 3], 123);
  NUVOFreeArray3D(reinterpret_cast<void ***>(a3));

  auto ****a4 = reinterpret_cast<double ****>(NUVOMallocArray4D(2, 2, 3, 5, sizeof(double), &err));
  ASSERT_EQ(err, 0);
  a4[1][1][2][4] = 7.5;
  EXPECT_EQ(a4[0][0][0][2 * 2 * 3 * 5 - 1], 7.5);
  NUVOFreeArray4D(reinterpret_cast<void ****>(a4));
  NUVOFreeArray4D(nullptr);
}

TEST(Allocations, ReportTheirOwnCodes) {
  int err = 0;
  // The code an allocation that must be refused leaves in err.
  const auto code = [&err](void *p) {
    EXPECT_EQ(p, nullptr);
    return err;
  };
  EXPECT_EQ(code(NUVOMalloc(0, 8, &err)), -3);
  EXPECT_EQ(code(NUVOMalloc(4, 0, &err)), -4);
  EXPECT_EQ(code(NUVOMalloc(SIZE_MAX / 2, 4, &err)), -1);
  EXPECT_EQ(code(NUVOMallocArray2D(0, 4, 8, &err)), -7);
  EXPECT_EQ(code(NUVOMallocArray2D(3, 4, 0, &err)), -8);
  EXPECT_EQ(code(NUVOMallocArray3D(3, 0, 4, 8, &err)), -9);
  EXPECT_EQ(code(NUVOMallocArray3D(3, 2, 4, 0, &err)), -10);
  EXPECT_EQ(code(NUVOMallocArray4D(1, 1, 1, 0, 8, &err)), -11);
  EXPECT_EQ(code(NUVOMallocArray4D(1, 1, 1, 1, 0, &err)), -12);
  EXPECT_EQ(code(NUVOMallocArray2D(SIZE_MAX / 4, 8, 8, &err)), -1);
}

}  // namespace
