/// @file
/// From local time to the system's.
#pragma once

#include <ctime>

#include "host/Host.h"

namespace host::posix {

/// The moment at which the clocks show the time, the first or the second where they show it twice; false where they never do:
/// no such date or time of day, or one that is left out when the clocks go forward.
bool MomentOf(const SYSTEMTIME& time, timespec& moment);

}  // namespace host::posix
