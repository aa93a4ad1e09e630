/// @file
/// A hint to the processor.
#pragma once

#if defined(__SSE2__)
#include <xmmintrin.h>
#endif

namespace vmem {

/// What lies at `p` is about to be used. It need not be anything.
inline void Prefetch([[maybe_unused]] const void* p) {
#if defined(__SSE2__)
  _mm_prefetch(static_cast<const char*>(p), _MM_HINT_T0);
#endif
}

}  // namespace vmem
