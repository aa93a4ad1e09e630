/// @file
/// Result codes of ordinary failures, their texts, and the host's errors as such codes.
///
/// `res`, the member of `HFile` and `VFile`, follows one rule:
/// - A new object has `resDone`. A failing operation replaces what stands there by its code.
/// - Transfers and changes are blocked by a standing failure: they do nothing. So a caller may run a sequence of them and
///   look once, at the end; it then sees the first failure.
/// - Operations that establish a state anew do not look at it and assign it their own outcome: opening, closing and
///   positioning of an `HFile`, a valid `SetPos` of a `VFile` and what begins with one. They are the way back to `resDone`,
///   and forget what stood there. hfile/HFile.h and vfile/VFile.h name them.
/// - No other operation that succeeds writes it. `eof` is not part of the rule.
#pragma once

#include <cstdint>

#include "host/Export.h"
#include "host/Unit.h"

/// The values of `res`. Functions take and give them as `std::int32_t`.
enum Res : std::int32_t {
  resDone = 0,
  resNotDone = 1,       ///< also every host error that has no code of its own
  resCallError = 2,     ///< a bad argument, or a call in the wrong state
  resContextError = 3,  ///< the object is locked
  resReadOnly = 4,
  resHeapOverflow = 5,
  resAlreadyExists = 6,
  resAlreadyOpen = 7,
  resIllegalDrive = 8,
  resIllegalPath = 9,  ///< also a missing directory of a path
  resIllegalName = 10,
  resIllegalFile = 11,
  resUnknownDrive = 12,
  resUnknownPath = 13,
  resNotFound = 14,
  resDiskFull = 15,
  resTooLong = 16,  ///< the result would pass 2^31-1 bytes, or the thread's space has no room for it
  resNoPermission = 17,
  resNotSupported = 18,
  resNotImplemented = 19,
  resTooManyFiles = 20,
  resDeviceOff = 21,
  resDiskParityError = 22,
  resHardwareError = 23,
  resNetworkError = 24,
};

/// Writes the English text of `code` into `buffer` of `size` units, terminator included; a text that does not fit is cut.
/// Halts like `AssignStr`.
VFILE_API void GetTextResMsg(TChar* buffer, std::uint32_t size, std::int32_t code);

/// The calling thread's last host error as a code. To be called directly after the host call that failed.
VFILE_API std::int32_t GetFileRes();
