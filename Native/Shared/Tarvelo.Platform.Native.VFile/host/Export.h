/// @file
/// The mark of the documented interface: what carries it is exported from the shared library, all else is hidden.
#pragma once

#if defined(_MSVC_LANG) ? _MSVC_LANG < 202002L : __cplusplus < 202002L
#error "This library needs C++20: compile with -std=c++20 or what your compiler has for it."
#endif

/// A declaration that does not compile where it is called with a constant of which the condition holds. Other calls do not see
/// it, and other compilers leave such a constant to their own warnings.
#if defined(__clang__)
#define VFILE_REFUSE_CONSTANT(condition, ...)                                                       \
  _Pragma("clang diagnostic push") _Pragma("clang diagnostic ignored \"-Wgcc-compat\"") __VA_ARGS__ \
      __attribute__((enable_if(condition, "the constant is out of range"))) = delete;               \
  _Pragma("clang diagnostic pop")
#else
#define VFILE_REFUSE_CONSTANT(condition, ...)
#endif

// `VFILE_LOCAL` keeps a member of an exported class inside the library. A compiler that exports classes whole leaves it out.
#if defined(VFILE_STATIC)
#define VFILE_API
#define VFILE_LOCAL
#elif defined(_WIN32) && !defined(VFILE_BUILDING)
#define VFILE_API __declspec(dllimport)
#define VFILE_LOCAL
#elif defined(__MINGW32__)
// The linker exports what the list of symbols names, see cmake/ListExports.cmake.
#define VFILE_API
#define VFILE_LOCAL
#elif defined(_WIN32)
#define VFILE_API __declspec(dllexport)
#define VFILE_LOCAL
#else
#define VFILE_API __attribute__((visibility("default")))
#define VFILE_LOCAL __attribute__((visibility("hidden")))
#endif
