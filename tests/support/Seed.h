/// @file
/// The seed of a random test.
#pragma once

#include <cstdio>
#include <cstdlib>
#include <random>

namespace support {

/// That of the environment's "VFILE_SEED", else a new one. It stands on standard error first, where a crash cannot lose it.
inline unsigned Seed() {
  const char* given = std::getenv("VFILE_SEED");
  const auto seed = given != nullptr ? static_cast<unsigned>(std::atoll(given)) : std::random_device()();
  std::fprintf(stderr, "VFILE_SEED=%u\n", seed);
  return seed;
}

}  // namespace support
