/// @file
/// Comparison of virtual files with one another and with strings.
///
/// By content: bytes as unsigned values, the first difference decides, and a beginning of the other is less than it. A string
/// counts up to its terminator and must not be null; a file may hold NUL bytes, which are compared like others. The files,
/// their position, `eof` and `res` are left as they are, and `file == file` is safe.
///
/// Thread: of both files; else `HaltA` under "VFile". Cost: reads up to the first difference, and nothing where `==` finds two
/// lengths; no allocation.
#pragma once

#include "host/Export.h"

class VFile;

/// @{
/// Whether the relation holds between the contents.
VFILE_API bool operator==(const VFile& left, const VFile& right);
VFILE_API bool operator!=(const VFile& left, const VFile& right);
VFILE_API bool operator<(const VFile& left, const VFile& right);
VFILE_API bool operator<=(const VFile& left, const VFile& right);
VFILE_API bool operator>(const VFile& left, const VFile& right);
VFILE_API bool operator>=(const VFile& left, const VFile& right);

VFILE_API bool operator==(const VFile& left, const char* right);
VFILE_API bool operator!=(const VFile& left, const char* right);
VFILE_API bool operator<(const VFile& left, const char* right);
VFILE_API bool operator<=(const VFile& left, const char* right);
VFILE_API bool operator>(const VFile& left, const char* right);
VFILE_API bool operator>=(const VFile& left, const char* right);

VFILE_API bool operator==(const char* left, const VFile& right);
VFILE_API bool operator!=(const char* left, const VFile& right);
VFILE_API bool operator<(const char* left, const VFile& right);
VFILE_API bool operator<=(const char* left, const VFile& right);
VFILE_API bool operator>(const char* left, const VFile& right);
VFILE_API bool operator>=(const char* left, const VFile& right);
/// @}
