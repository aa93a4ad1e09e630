// The pictures: measurements of their own over sizes and caches.
#pragma once

#include <functional>
#include <string>

/// Measures and writes edits.svg, seeks.svg and cache.svg into `target`.
void DrawPictures(const std::string& target, const std::string& directory, bool quick,
                  const std::function<void(const std::string&)>& progress);
