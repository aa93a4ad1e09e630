/// @file
/// What the tests have to know of the system that they run on.
#pragma once

namespace support {

/// Whether this is Wine, whose answers are not the system's own in every point.
bool IsWine();

}  // namespace support

/// Leaves out what follows in the test under Wine. `reason` says what Wine does.
#define SKIP_UNDER_WINE(reason) \
  if (support::IsWine()) GTEST_SKIP() << "Wine: " << reason
