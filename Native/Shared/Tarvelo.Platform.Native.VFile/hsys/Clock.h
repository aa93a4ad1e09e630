/// @file
/// The host's clock in local time, and the kind of its line ends.
///
/// The clock belongs to the whole system. Setting reads it, replaces the fields given, each cut to its low 16 bits, and
/// writes it back, in two steps without a lock. A moment that does not exist, or a process that may not set the clock,
/// leaves it as it was; that is not reported.
#pragma once

#include <cstdint>

#include "host/Export.h"

/// Reads the time of day: hour 0 to 23.
VFILE_API void GetTime(std::int32_t& hour, std::int32_t& minute, std::int32_t& second, std::int32_t& millisecond);
/// Sets the time of day.
VFILE_API void SetTime(std::int32_t hour, std::int32_t minute, std::int32_t second, std::int32_t millisecond);
/// Reads the date: day and month from 1, the year in full.
VFILE_API void GetDate(std::int32_t& day, std::int32_t& month, std::int32_t& year);
/// Sets the date.
VFILE_API void SetDate(std::int32_t day, std::int32_t month, std::int32_t year);

/// The kinds of line end.
enum EolKind : std::int32_t {
  eolCrLf = 0,
};

/// The kind of this host: always `eolCrLf`. The library asks for it nowhere; it writes CR LF and reads all kinds.
VFILE_API EolKind GetEolKind();
