#include <gtest/gtest.h>

#include "support/HostFiles.h"

namespace {

using support::HostFiles;
using support::kReadWrite;

constexpr std::uint32_t kDelete = 0x10000;
constexpr std::uint32_t kAccesses[] = {0, host::GENERIC_READ, host::GENERIC_WRITE, kReadWrite, kDelete};
constexpr std::uint32_t kShares = 8;

/// What the access needs others to share.
constexpr std::uint32_t Needed(std::uint32_t access) {
  return ((access & host::GENERIC_READ) != 0 ? FILE_SHARE_READ : 0) |
         ((access & host::GENERIC_WRITE) != 0 ? FILE_SHARE_WRITE : 0) |
         ((access & kDelete) != 0 ? FILE_SHARE_DELETE : 0);
}

struct Opening {
  std::uint32_t access;
  std::uint32_t share;
};

/// Whether the two go together: each has to share what the other needs, unless one of them needs nothing.
constexpr bool Fit(const Opening& first, const Opening& second) {
  const std::uint32_t needed[] = {Needed(first.access), Needed(second.access)};
  if (needed[0] == 0 || needed[1] == 0) return true;
  return (needed[0] & ~second.share) == 0 && (needed[1] & ~first.share) == 0;
}

struct Sharing : HostFiles {
  HANDLE Opened(const Opening& opening) const {
    return HostFiles::Opened("file", opening.access, opening.share, host::OPEN_EXISTING);
  }
};

TEST_F(Sharing, IsByWhatEachOpenNeedsAndShares) {
  Put("file", "abc");
  std::vector<Opening> openings;
  for (const std::uint32_t access : kAccesses) {
    for (std::uint32_t share = 0; share < kShares; ++share) openings.push_back({access, share});
  }
  int tried = 0;
  for (const Opening& first : openings) {
    const HANDLE held = Opened(first);
    ASSERT_NE(held, INVALID_HANDLE_VALUE);
    for (const Opening& second : openings) {
      const HANDLE other = Opened(second);
      const std::uint32_t error = other != INVALID_HANDLE_VALUE ? 0 : host::GetLastError();
      EXPECT_EQ(error, Fit(first, second) ? 0u : 32u)
          << std::hex << first.access << '/' << first.share << " then " << second.access << '/' << second.share;
      if (error == 0) host::CloseHandle(other);
      ++tried;
    }
    host::CloseHandle(held);
  }
  EXPECT_EQ(tried, 1600);
}

TEST_F(Sharing, HoldsAgainstEachOpenUntilItIsClosed) {
  Put("file", "abc");
  const HANDLE strict = Opened({host::GENERIC_READ, FILE_SHARE_READ});
  const HANDLE lax = Opened({host::GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE});
  const Opening writing = {host::GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE};
  EXPECT_EQ(Opened(writing), INVALID_HANDLE_VALUE);
  host::CloseHandle(strict);
  const HANDLE writer = Opened(writing);
  EXPECT_NE(writer, INVALID_HANDLE_VALUE);
  host::CloseHandle(writer);
  host::CloseHandle(lax);
}

TEST_F(Sharing, ARefusedOpenLeavesTheFile) {
  Put("file", "abc");
  const HANDLE held = Opened({host::GENERIC_READ, 0});
  EXPECT_EQ(Open("file", kReadWrite, 7, host::CREATE_NEW), 80u);
  for (const std::uint32_t how : {host::CREATE_ALWAYS, host::OPEN_EXISTING, host::OPEN_ALWAYS}) {
    EXPECT_EQ(Open("file", kReadWrite, 7, how), 32u) << how;
  }
  // What needs no sharing.
  EXPECT_EQ(host::GetFileAttributesW(Name("file").c_str()), 0x20u);
  EXPECT_EQ(host::_waccess(Name("file").c_str(), 6), 0);
  EXPECT_TRUE(host::SetFileAttributesW(Name("file").c_str(), 0x21) &&
              host::SetFileAttributesW(Name("file").c_str(), 0x80));
  host::CloseHandle(held);
  EXPECT_EQ(Content("file"), "abc");
}

}  // namespace
