/// @file
/// The source line of a call, for the default argument of a function that tells it.
#pragma once

#include <cstdint>
#include <version>

#if defined(__cpp_lib_source_location)
#include <source_location>
#define VFILE_LINE static_cast<std::int32_t>(std::source_location::current().line())
#else
// Of the compilers that this library knows, older versions of clang++, which have the function behind it alone.
#define VFILE_LINE __builtin_LINE()
#endif
