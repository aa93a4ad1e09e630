// What every example needs: texts of the command line as the library takes them, and its results as texts.
#pragma once

#include <filesystem>
#include <stdexcept>
#include <string>

#include "hsys/HSys.h"

/// A text or name of the command line, which is UTF-8, in units. Throws if it is not.
inline TString UnitsOf(const std::string& text) {
  const std::u16string units = std::filesystem::path(text).u16string();
  return {units.begin(), units.end()};
}

/// A name that the library gave, as the system has it: UTF-8, but for bytes that are none, which stand as U+DC80 to U+DCFF.
inline std::string NativeNameOf(const TString& name) {
  std::string bytes;
  for (auto unit = name.begin(); unit != name.end(); ++unit) {
    const bool pair = *unit >= 0xD800 && *unit < 0xDC00 && unit + 1 != name.end();
    if (*unit >= 0xDC80 && *unit <= 0xDCFF) {
      bytes += static_cast<char>(*unit - 0xDC00);
    } else if (*unit >= 0xD800 && *unit < 0xE000 && !pair) {
      bytes += '?';
    } else {
      bytes += std::filesystem::path(std::u16string(unit, unit + (pair ? 2 : 1))).string();
      if (pair) ++unit;
    }
  }
  return bytes;
}

/// The text of a result.
inline std::string TextOf(std::int32_t res) {
  TChar units[64];
  GetTextResMsg(units, 64, res);
  return NativeNameOf(units);
}

/// Throws the text of a result that is not `resDone`.
inline void Check(std::int32_t res, const std::string& what) {
  if (res != resDone) throw std::runtime_error(what + ": " + TextOf(res));
}
