#include "engine/packed_event.hpp"

#include <algorithm>

#include "engine/realization.hpp"

namespace nuvo {

namespace {

constexpr std::uint8_t kPackedMissing = 3;

std::uint8_t fieldOf(std::int8_t code) {
  return code < 0 ? kPackedMissing : static_cast<std::uint8_t>(code);
}

bool foreign(const CodeGroups::Node &node) {
  return static_cast<std::int8_t>(node.code) == kForeignCode;
}

}  // namespace

std::vector<std::uint8_t> packCodes(std::span<const std::int8_t> codes) {
  const std::size_t n = codes.size();
  std::vector<std::uint8_t> packed((n + 3) / 4 + kPackedPadding, 0);
  for (std::size_t i = 0; i < n; ++i)
    packed[i / 4] = static_cast<std::uint8_t>(packed[i / 4] | fieldOf(codes[i]) << (2 * (i % 4)));
  return packed;
}

void PackedEvent::prepare(CodedEvent &coded, const std::uint8_t *packed) {
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
  std::stable_sort(built_.begin(), built_.end(),
                   [](const Built &a, const Built &b) { return a.cost > b.cost; });
  ngroup_ = built_.size();
  group_.assign(4 * ngroup_, {});
  for (std::size_t phase = 0; phase < 4; ++phase) {
    phase_[phase] = group_.data() + phase * ngroup_;
    for (std::size_t k = 0; k < ngroup_; ++k) {
      const Built &b = built_[k];
      Group &g = group_[phase * ngroup_ + k];
      const int a = static_cast<int>(phase);
      g.byte = (a + node[static_cast<std::size_t>(b.first)].offset) >> 2;
      for (int i = b.first; i <= b.last; ++i) {
        const CodeGroups::Node &nd = node[static_cast<std::size_t>(i)];
        if (foreign(nd)) continue;
        const int at = 2 * (a + nd.offset - 4 * g.byte);
        g.code |= static_cast<std::uint64_t>(fieldOf(static_cast<std::int8_t>(nd.code))) << at;
        g.low |= std::uint64_t{1} << at;
      }
    }
  }
}

}  // namespace nuvo
