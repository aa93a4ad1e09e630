/// @file
/// Whether this is a checking build, which tests the invariants after every change.
#pragma once

namespace hsys {

#if defined(VFILE_CHECKED)
inline constexpr bool kChecked = true;
#else
inline constexpr bool kChecked = false;
#endif

}  // namespace hsys
