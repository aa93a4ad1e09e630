/// @file
/// A hint to the processor.
#pragma once

#include "host/Processor.h"

#if defined(VFILE_SSE2)
#include <xmmintrin.h>
#endif

namespace vmem {

/// What lies at `p` is about to be used. It need not be anything.
inline void Prefetch([[maybe_unused]] const void* p) {
#if defined(VFILE_SSE2)
  _mm_prefetch(static_cast<const char*>(p), _MM_HINT_T0);
#endif
}

}  // namespace vmem
