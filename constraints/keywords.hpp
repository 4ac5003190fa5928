// Keyword tables of the constraint enumerations, indexed by value: the one
// spelling shared by the readers, the printers and the parameter-file writer.
#pragma once

#include <array>

namespace nuvo {

inline constexpr std::array<const char *, 3> kConnectivityTypeKeywords{
    "CONNECT_FACE", "CONNECT_FACE_EDGE", "CONNECT_FACE_EDGE_CORNER"};

}  // namespace nuvo
