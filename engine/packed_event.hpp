// The everyday event of CodedEvent scanned on a training image of packed codes,
// two or four bits per node: the same errors and acceptance, with a code image
// four or two times smaller. A 3D image of a million nodes then fits in the
// second-level cache, where its byte codes did not, and the nodes of one row of
// the data event fit in one word even when they lie several bytes apart.
//
// Why each step is exact (B the bits of a field, P = 8 / B nodes per byte):
// - The packed image holds node i in bits B (i mod P) and up of byte i / P: the
//   codes 0 to 2^B - 2 as themselves and the missing code as 2^B - 1 (all ones),
//   so that two fields differ exactly when the byte codes do (an image is packed
//   only with at most 2^B - 1 categories). A node of the event with a foreign
//   code differs from every training-image node: it is counted once per
//   candidate, before any group is read, and holds no field.
// - The other nodes, sorted by offset, are cut into groups whose offsets lie
//   within kSpan of the first. A candidate at node c reads a group with one
//   little-endian 64-bit load from byte (c + first) / P, rounded down; its nodes
//   then sit at fields (c mod P) + offset - P (that byte - c / P), below 64 / B
//   for every c mod P. The event's fields and a mask of the fields' low bits are
//   therefore prepared once per node for each of the P values of c mod P.
// - word XOR event is non-zero in exactly the fields that differ; OR-ing each
//   field's bits into its low bit (shifts by 1, then 2) and masking the low bits
//   leaves 1 in each differing field and 0 elsewhere. Two groups are read as
//   the two 64-bit lanes of one vector (SSE2 on x86-64; a compiler vector), the
//   same steps applied to each lane. Adding the flags of two pairs gives fields
//   of at most 2; two-bit fields are then folded in pairs into 4-bit fields
//   (four-bit ones already are), of at most 4, then bytes of at most 8, and the
//   bytes of both lanes are added up (sumOfBytes, the byte groups' sum): an
//   exact count of the mismatches, with no population-count instruction, which
//   x86-64 lacks by default. Half the operations of a word at a time: about 20 % of the lens
//   case of the benchmark and 15 % with six facies.
// - The groups are ordered as CodedEvent orders its own (most costly first) and
//   the count is checked against the same limit: after the first two pairs,
//   read without a branch (most candidates end there; a small event is made up
//   with empty groups), then after every pair. A partial count is a lower bound
//   of the full one, so the order and the grouping cannot change the outcome,
//   only how soon a candidate is dropped.
// - The code images end with kPackedPadding spare bytes, so a load never leaves
//   them.
#pragma once

#include <array>
#include <cstdint>
#include <cstring>
#include <span>
#include <vector>

#include "engine/coded_event.hpp"

namespace nuvo {

// Spare bytes after the last node of a packed image.
inline constexpr int kPackedPadding = 8;

// The bits per field of the packed image of a variable of `ncategory` categories
// (the missing code takes the last field value), or 0 when its codes stay bytes.
constexpr int packedFieldBits(std::size_t ncategory) {
  return ncategory <= 3 ? 2 : ncategory <= 15 ? 4 : 0;
}

// The packed image, `bits` per field, of a code image (its codes without their
// padding).
std::vector<std::uint8_t> packCodes(std::span<const std::int8_t> codes, int bits);

template <int Bits>
class PackedEvent {
  static_assert(Bits == 2 || Bits == 4);

 public:
  static constexpr int kPerByte = 8 / Bits;  // nodes per byte: the phases of a candidate
  // A group's offsets lie within kSpan - 1 of its first, so that its last field,
  // at most kPerByte - 1 + kSpan - 1, is still in the word.
  static constexpr int kSpan = 64 / Bits - kPerByte + 1;
  static constexpr double floor = CodedEvent::floor;

  // Takes the event that `coded` has prepared, on the image `packed` of its
  // training image packed with Bits per field; `coded` keeps its bound (see bound).
  void prepare(CodedEvent &coded, const std::uint8_t *packed);

  // Sets the best error so far, the bound of the candidates that follow.
  void bound(double best) {
    coded_->bound(best);
    limit_ = coded_->limit() - fixed_;
  }

  // The candidate's error, or kAbandoned when it is not below the bound's best.
  double errorAt(int node, double /*best*/) const {
    const auto at = static_cast<unsigned>(node);  // a training-image node, never negative
    const Pair *p = phase_[at % kPerByte];
    const std::uint8_t *base = packed_ + at / kPerByte;
    int count = total(fields(p[0].mismatches(base) + p[1].mismatches(base)));
    if (count > limit_) return kAbandoned;
    for (const Pair *k = p + 2, *end = p + npair_; k < end; ++k) {
      count += total(fields(k->mismatches(base)));
      if (count > limit_) return kAbandoned;
    }
    return coded_->error(fixed_ + count);
  }

 private:
  // Two 64-bit words, the lanes of one vector operation (SSE2 on x86-64).
  using Words = std::uint64_t __attribute__((vector_size(16)));
  static constexpr Words broadcast(std::uint64_t w) { return Words{w, w}; }

  // Two groups, one per lane: an empty lane (no low bit) counts nothing.
  struct Pair {
    Words code{};               // the event's fields
    Words low{};                // the low bit of each of the group's fields
    std::array<int, 2> byte{};  // the byte read, from the candidate's byte
    // 1 in the low bit of each field that differs from the event, 0 elsewhere.
    Words mismatches(const std::uint8_t *base) const {
      std::uint64_t first, second;
      std::memcpy(&first, base + byte[0], sizeof first);
      std::memcpy(&second, base + byte[1], sizeof second);
      Words differ = Words{first, second} ^ code;
      for (int shift = 1; shift < Bits; shift *= 2) differ |= differ >> shift;
      return differ & low;
    }
  };
  // The fields of `flags` (each at most 3) as 4-bit fields: two-bit ones added up
  // in pairs.
  static Words fields(Words flags) {
    if constexpr (Bits == 4) return flags;
    const Words k3 = broadcast(0x3333333333333333ull);
    return (flags & k3) + ((flags >> 2) & k3);
  }
  // The sum of the 4-bit fields (at most 8 each) of both lanes.
  static int total(Words nibbles) {
    const Words bytes = (nibbles + (nibbles >> 4)) & broadcast(0x0f0f0f0f0f0f0f0full);
    return sumOfBytes(reinterpret_cast<ByteVector>(bytes));
  }
  struct Built {
    int first = 0, last = 0;  // its first and last node in the coded event's nodes
    long long cost = 0;       // its nodes' costs added up
  };

  CodedEvent *coded_ = nullptr;
  const std::uint8_t *packed_ = nullptr;
  std::size_t npair_ = 0;                          // pairs per phase, at least 2
  std::vector<Pair> pair_;                         // per phase, then per pair
  std::array<const Pair *, kPerByte> phase_ = {};  // each phase's first pair
  std::vector<Built> built_;                       // scratch of prepare
  int fixed_ = 0;                                  // foreign nodes: a mismatch at every candidate
  int limit_ = 0;  // the most mismatches still accepted, less fixed_
};

}  // namespace nuvo
