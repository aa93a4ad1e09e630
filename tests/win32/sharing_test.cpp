#include <gtest/gtest.h>

#include "support/HostFiles.h"

namespace {

using support::HostFiles;

constexpr std::uint32_t kDelete = 0x10000;
constexpr std::uint32_t kAccesses[] = {0, host::GENERIC_READ, host::GENERIC_WRITE, support::kReadWrite, kDelete};

/// What the access needs others to share.
constexpr std::uint32_t Needed(std::uint32_t access) {
  return ((access & host::GENERIC_READ) != 0 ? FILE_SHARE_READ : 0) |
         ((access & host::GENERIC_WRITE) != 0 ? FILE_SHARE_WRITE : 0) |
         ((access & kDelete) != 0 ? FILE_SHARE_DELETE : 0);
}

// Each has to share what the other needs, unless one of them needs nothing.
TEST_F(HostFiles, ShareByWhatEachOpenNeedsAndShares) {
  Put("file", "abc");
  constexpr std::uint32_t kOpenings = 5 * 8;
  for (std::uint32_t i = 0; i < kOpenings * kOpenings; ++i) {
    const std::uint32_t access[] = {kAccesses[i % 5], kAccesses[i / kOpenings % 5]};
    const std::uint32_t share[] = {i / 5 % 8, i / 5 / kOpenings};
    const HANDLE held = Opened("file", access[0], share[0], host::OPEN_EXISTING);
    const HANDLE other = Opened("file", access[1], share[1], host::OPEN_EXISTING);
    const std::uint32_t error = support::ErrorOf(other != INVALID_HANDLE_VALUE);
    const std::uint32_t needed[] = {Needed(access[0]), Needed(access[1])};
    const bool fit = ((needed[0] & ~share[1]) | (needed[1] & ~share[0])) == 0;
    EXPECT_EQ(error, fit || needed[0] == 0 || needed[1] == 0 ? 0u : 32u)
        << std::hex << access[0] << '/' << share[0] << " then " << access[1] << '/' << share[1];
    if (error == 0) host::CloseHandle(other);
    EXPECT_TRUE(host::CloseHandle(held));
  }
}

}  // namespace
