/// @file
/// Addition of 32-bit positions that wraps, as the positions of the interface do, without overflow of a signed type.
#pragma once

#include <cstdint>

namespace hsys {

constexpr std::int32_t WrapAdd(std::int32_t a, std::int32_t b) {
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(a) + static_cast<std::uint32_t>(b));
}

}  // namespace hsys
