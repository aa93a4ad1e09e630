// The forms of a text file by their names, and what did not come through one.
#pragma once

#include <algorithm>
#include <cinttypes>
#include <cstdint>
#include <cstdio>
#include <iterator>
#include <string_view>

#include "vf/Losses.h"

inline constexpr std::string_view kForms[] = {"ansi", "utf16", "utf16be", "utf8"};  // by the value of Encoding

/// False if there is no form of that name.
inline bool GetForm(std::string_view name, TCharVFile::Encoding& form) {
  const auto* found = std::find(std::begin(kForms), std::end(kForms), name);
  form = static_cast<TCharVFile::Encoding>(found - kForms);
  return found != std::end(kForms);
}

/// Tells on standard error what was lost on the way to or from the file of that name.
inline void Tell(const vf::Losses& lost, const vf::Name& name) {
  if (lost.replaced > 0) {
    std::fprintf(stderr, "%s: %" PRId64 " characters could not be kept, the first at unit %" PRId64 "\n",
                 name.Utf8().c_str(), lost.replaced, lost.first);
  }
  if (lost.leftOut > 0) {
    std::fprintf(stderr, "%s: %" PRId64 " bytes at the end were left out\n", name.Utf8().c_str(), lost.leftOut);
  }
}
