/// @file
/// The mark of the documented interface: what carries it is exported from the shared library, all else is hidden.
#pragma once

#if defined(VFILE_STATIC)
#define VFILE_API
#define VFILE_LOCAL
#elif defined(_WIN32) && defined(VFILE_BUILDING)
#define VFILE_API __declspec(dllexport)
#define VFILE_LOCAL
#elif defined(_WIN32)
#define VFILE_API __declspec(dllimport)
#define VFILE_LOCAL
#else
#define VFILE_API __attribute__((visibility("default")))
/// Keeps a member of an exported class inside the library.
#define VFILE_LOCAL __attribute__((visibility("hidden")))
#endif
