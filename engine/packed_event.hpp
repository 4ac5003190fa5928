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
//   leaves 1 in each differing field and 0 elsewhere. Adding the flags of two
//   groups gives fields of at most 2; two-bit fields are then folded in pairs
//   into 4-bit fields (four-bit ones already are), of at most 4 (two groups)
//   or 8 (four groups), then bytes of at most 16, and a multiplication adds up
//   the bytes (at most 128 in the top byte): an exact count of the mismatches,
//   with no population-count instruction, which x86-64 lacks by default.
// - The groups are ordered as CodedEvent orders its own (most costly first) and
//   the count is checked against the same limit: after the first four groups,
//   read without a branch (most candidates end there), then after every two.
//   A partial count is a lower bound of the full one, so the order and the
//   grouping cannot change the outcome, only how soon a candidate is dropped.
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
    const std::size_t ng = ngroup_;
    const Group *g = phase_[static_cast<std::size_t>(node % kPerByte)];
    const std::uint8_t *base = packed_ + node / kPerByte;
    std::size_t k;
    int count;
    if (ng >= 4) {
      count = total(pair(g, base) + pair(g + 2, base));
      k = 4;
    } else {
      std::uint64_t flags = 0;
      for (k = 0; k < ng; ++k) flags += g[k].mismatches(base);
      count = total(fields(flags));
    }
    if (count > limit_) return kAbandoned;
    for (; k + 1 < ng; k += 2) {
      count += total(pair(g + k, base));
      if (count > limit_) return kAbandoned;
    }
    if (k < ng) {
      count += total(fields(g[k].mismatches(base)));
      if (count > limit_) return kAbandoned;
    }
    return coded_->error(fixed_ + count);
  }

 private:
  struct Group {
    std::uint64_t code = 0;  // the event's fields
    std::uint64_t low = 0;   // the low bit of each of the group's fields
    int byte = 0;            // the byte read, from the candidate's byte
    // 1 in the low bit of each field that differs from the event, 0 elsewhere.
    std::uint64_t mismatches(const std::uint8_t *base) const {
      std::uint64_t word;
      std::memcpy(&word, base + byte, sizeof word);
      std::uint64_t differ = word ^ code;
      for (int shift = 1; shift < Bits; shift *= 2) differ |= differ >> shift;
      return differ & low;
    }
  };
  // The mismatches of groups g[0] and g[1] in 4-bit fields of at most 4.
  static std::uint64_t pair(const Group *g, const std::uint8_t *base) {
    return fields(g[0].mismatches(base) + g[1].mismatches(base));
  }
  // The fields of `flags` (each at most 3) as 4-bit fields: two-bit ones added up
  // in pairs.
  static std::uint64_t fields(std::uint64_t flags) {
    if constexpr (Bits == 4) return flags;
    constexpr std::uint64_t k3 = 0x3333333333333333ull;
    return (flags & k3) + ((flags >> 2) & k3);
  }
  // The sum of 4-bit fields of at most 8 each.
  static int total(std::uint64_t nibbles) {
    constexpr std::uint64_t k0f = 0x0f0f0f0f0f0f0f0full, kOnes = 0x0101010101010101ull;
    const std::uint64_t bytes = (nibbles + (nibbles >> 4)) & k0f;
    return static_cast<int>((bytes * kOnes) >> 56);
  }
  struct Built {
    int first = 0, last = 0;  // its first and last node in the coded event's nodes
    long long cost = 0;       // its nodes' costs added up
  };

  CodedEvent *coded_ = nullptr;
  const std::uint8_t *packed_ = nullptr;
  std::size_t ngroup_ = 0;
  std::vector<Group> group_;                        // per phase, then per group
  std::array<const Group *, kPerByte> phase_ = {};  // each phase's first group
  std::vector<Built> built_;                        // scratch of prepare
  int fixed_ = 0;                                   // foreign nodes: a mismatch at every candidate
  int limit_ = 0;  // the most mismatches still accepted, less fixed_
};

}  // namespace nuvo
