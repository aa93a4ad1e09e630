// The pictures: measurements of their own over sizes and caches.
#pragma once

#include <cstdint>
#include <string>

#include "Runner.h"

/// Measures contents of up to `largest` bytes, and writes edits.svg, seeks.svg and cache.svg into `target`.
void DrawPictures(const std::string& target, const std::string& directory, std::int64_t largest, const Effort& effort);
