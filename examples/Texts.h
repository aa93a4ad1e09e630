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

/// Throws the text of a result that is not `resDone`.
inline void Check(std::int32_t res, const std::string& what) {
  if (res == resDone) return;
  TChar units[64];
  GetTextResMsg(units, 64, res);
  std::string text;
  for (const TChar* unit = units; *unit != 0; ++unit) text += static_cast<char>(*unit);
  throw std::runtime_error(what + ": " + text);
}
