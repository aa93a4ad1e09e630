/// @file
/// What a conversion lost, as a test compares it.
#pragma once

#include <cstdint>
#include <tuple>

#include "vf/Losses.h"

namespace support {

/// Replaced, left out, the first.
using Losses = std::tuple<std::int64_t, std::int64_t, std::int64_t>;

inline Losses NumbersOf(const vf::Losses& losses) { return {losses.replaced, losses.leftOut, losses.first}; }

}  // namespace support
