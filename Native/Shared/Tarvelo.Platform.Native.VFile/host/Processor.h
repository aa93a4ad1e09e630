/// @file
/// What the processor that is compiled for has.
#pragma once

#if defined(__SSE2__) || defined(_M_X64)
#define VFILE_SSE2
#endif
