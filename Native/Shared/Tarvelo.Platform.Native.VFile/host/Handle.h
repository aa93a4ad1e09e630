/// @file
/// The handle of an open file of the host, and the sharing that an open grants to others.
///
/// The names and values are those of Win32. The system's header there may stand before or behind this one; what it has defined by
/// then is left alone.
#pragma once

#include <cstdint>

/// An open file of the host. Opaque; owned by whoever opened it or took it over.
using HANDLE = void*;

#ifndef INVALID_HANDLE_VALUE
/// The value of no open file: all bits one.
inline const HANDLE INVALID_HANDLE_VALUE = reinterpret_cast<HANDLE>(static_cast<std::intptr_t>(-1));
#endif

#ifndef FILE_SHARE_READ
/// Others may open the file for reading meanwhile.
inline constexpr std::uint32_t FILE_SHARE_READ = 1;
/// Others may open the file for writing meanwhile.
inline constexpr std::uint32_t FILE_SHARE_WRITE = 2;
/// Others may delete or rename the file meanwhile.
inline constexpr std::uint32_t FILE_SHARE_DELETE = 4;
#endif

#ifndef _WIN32
namespace host {

/// The handle of a file descriptor, so that a program can hand over a file that it opened by other means. Ownership goes
/// with the handle: what takes over the handle closes the descriptor. Descriptor 0 is a handle like others.
inline HANDLE HandleFromDescriptor(int descriptor) {
  return reinterpret_cast<HANDLE>(static_cast<std::intptr_t>(descriptor));
}

/// The file descriptor of a handle; -1 for `INVALID_HANDLE_VALUE`. Ownership stays with the handle.
inline int DescriptorFromHandle(HANDLE handle) { return static_cast<int>(reinterpret_cast<std::intptr_t>(handle)); }

}  // namespace host
#endif
