#include "engine/packed_event.hpp"

#include <algorithm>

#include "engine/realization.hpp"

namespace nuvo {

namespace {

// A code's field: the missing code is all ones.
std::uint8_t fieldOf(std::int8_t code, int bits) {
  return code < 0 ? static_cast<std::uint8_t>((1 << bits) - 1) : static_cast<std::uint8_t>(code);
}

// a / b rounded toward minus infinity (an offset may be negative).
int floorDivide(int a, int b) {
  return a >= 0 ? a / b : -((-a + b - 1) / b);
}

bool foreign(const CodeGroups::Node &node) {
  return static_cast<std::int8_t>(node.code) == kForeignCode;
}

}  // namespace

std::vector<std::uint8_t> packCodes(std::span<const std::int8_t> codes, int bits) {
  const std::size_t n = codes.size(), perByte = static_cast<std::size_t>(8 / bits);
  std::vector<std::uint8_t> packed((n + perByte - 1) / perByte + kPackedPadding, 0);
  for (std::size_t i = 0; i < n; ++i)
    packed[i / perByte] = static_cast<std::uint8_t>(
        packed[i / perByte] | fieldOf(codes[i], bits) << (bits * (i % perByte)));
  return packed;
}

template <int Bits>
void PackedEvent<Bits>::prepare(CodedEvent &coded, const std::uint8_t *packed) {
  coded_ = &coded;
  packed_ = packed;
  const std::span<const CodeGroups::Node> node = coded.groups().nodes();
  // The groups: the nodes by offset (foreign ones aside), cut where the span
  // would be exceeded or a node repeats (as no data event has: it counts twice).
  // A group holds the nodes between its first and last that are not foreign.
  fixed_ = 0;
  built_.clear();
  for (std::size_t i = 0; i < node.size(); ++i) {
    const CodeGroups::Node &nd = node[i];
    if (foreign(nd)) {
      ++fixed_;
      continue;
    }
    const int at = static_cast<int>(i);
    if (built_.empty() ||
        nd.offset - node[static_cast<std::size_t>(built_.back().first)].offset >= kSpan ||
        nd.offset == node[static_cast<std::size_t>(built_.back().last)].offset)
      built_.push_back({at, at, 0});
    built_.back().last = at;
    built_.back().cost += nd.cost;
  }
  // Most costly first, equal costs in offset order (as CodeGroups::group).
  std::sort(built_.begin(), built_.end(), [](const Built &a, const Built &b) {
    return a.cost != b.cost ? a.cost > b.cost : a.first < b.first;
  });
  // Groups k and k + 1 (k even) share a pair, and empty groups make up at least
  // the two pairs that every candidate reads.
  npair_ = std::max<std::size_t>(2, (built_.size() + 1) / 2);
  pair_.assign(kPerByte * npair_, {});
  for (int phase = 0; phase < kPerByte; ++phase) {
    Pair *first = pair_.data() + static_cast<std::size_t>(phase) * npair_;
    phase_[static_cast<std::size_t>(phase)] = first;
    for (std::size_t k = 0; k < built_.size(); ++k) {
      const Built &b = built_[k];
      Pair &pair = first[k / 2];
      const std::size_t lane = k % 2;
      const int byte =
          floorDivide(phase + node[static_cast<std::size_t>(b.first)].offset, kPerByte);
      pair.byte[lane] = byte;
      for (int i = b.first; i <= b.last; ++i) {
        const CodeGroups::Node &nd = node[static_cast<std::size_t>(i)];
        if (foreign(nd)) continue;
        const int at = Bits * (phase + nd.offset - kPerByte * byte);
        pair.code[lane] |=
            static_cast<std::uint64_t>(fieldOf(static_cast<std::int8_t>(nd.code), Bits)) << at;
        pair.low[lane] |= std::uint64_t{1} << at;
      }
    }
  }
}

template class PackedEvent<2>;
template class PackedEvent<4>;

}  // namespace nuvo
