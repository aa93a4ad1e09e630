// What every example needs: UTF-8 as the library takes it, and its results as texts.
#pragma once

#include <stdexcept>
#include <string>
#include <string_view>

#include "hsys/HSys.h"

/// Reads the UTF-8 character at the start of `bytes`, at least one, and gives the bytes that it takes; 0 if there is none.
inline std::size_t ReadCharacter(std::string_view bytes, char32_t& character) {
  constexpr char32_t kLeast[] = {0, 0, 0x80, 0x800, 0x10000};
  const auto byteAt = [&](std::size_t i) { return static_cast<unsigned char>(bytes[i]); };
  const unsigned char lead = byteAt(0);
  character = lead;
  if (lead < 0x80) return 1;
  const std::size_t size = lead < 0xC0 ? 0 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : lead < 0xF8 ? 4 : 0;
  if (size == 0 || size > bytes.size()) return 0;
  character = lead & (0xFFu >> (size + 1));
  for (std::size_t i = 1; i < size; ++i) {
    if ((byteAt(i) & 0xC0) != 0x80) return 0;
    character = character << 6 | (byteAt(i) & 0x3Fu);
  }
  const bool surrogate = character >= 0xD800 && character <= 0xDFFF;
  return character < kLeast[size] || character > 0x10FFFF || surrogate ? 0 : size;
}

inline void AppendCharacter(TString& units, char32_t character) {
  if (character >= 0x10000) {
    units += static_cast<TChar>(0xD800 + ((character - 0x10000) >> 10));
    character = 0xDC00 + (character & 0x3FF);
  }
  units += static_cast<TChar>(character);
}

/// A text in UTF-8, as a command line has it on Linux, in units. Throws if it is not.
inline TString UnitsOf(std::string_view text) {
  TString units;
  for (std::string_view left = text; !left.empty();) {
    char32_t character;
    const std::size_t size = ReadCharacter(left, character);
    if (size == 0) throw std::runtime_error(std::string(text) + ": not UTF-8");
    AppendCharacter(units, character);
    left.remove_prefix(size);
  }
  return units;
}

/// A name in UTF-8, as a command line has it on Linux, in units. A byte that is no UTF-8, or is a backslash, which is no separator to the system, stands
/// as U+DC00 plus the byte.
inline TString NameOf(std::string_view name) {
  TString units;
  for (std::string_view left = name; !left.empty();) {
    char32_t character;
    std::size_t size = ReadCharacter(left, character);
    if (size == 0 || character == '\\') {
      size = 1;
      units += static_cast<TChar>(0xDC00 + static_cast<unsigned char>(left[0]));
    } else {
      AppendCharacter(units, character);
    }
    left.remove_prefix(size);
  }
  return units;
}

/// A name or text in UTF-8; the other way of `NameOf`.
inline std::string NativeNameOf(const TString& name) {
  std::string bytes;
  const auto append = [&](char32_t character, int shift, unsigned mark) {
    bytes += static_cast<char>(mark | ((character >> shift) & 0x3F));
  };
  for (std::size_t i = 0; i < name.size(); ++i) {
    char32_t character = name[i];
    const bool first = character >= 0xD800 && character < 0xDC00 && i + 1 < name.size();
    if (first && name[i + 1] >= 0xDC00 && name[i + 1] < 0xE000) {
      character = 0x10000 + ((character - 0xD800) << 10) + (name[++i] - 0xDC00u);
    }
    if (character < 0x80 || (character >= 0xDC00 && character <= 0xDCFF)) {
      bytes += static_cast<char>(character);
    } else if (character < 0x800) {
      append(character, 6, 0xC0);
      append(character, 0, 0x80);
    } else if (character < 0x10000) {
      append(character, 12, 0xE0);
      append(character, 6, 0x80);
      append(character, 0, 0x80);
    } else {
      append(character, 18, 0xF0);
      append(character, 12, 0x80);
      append(character, 6, 0x80);
      append(character, 0, 0x80);
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

/// Throws the text of a result that is not `resDone`, behind the name.
inline void Check(std::int32_t res, const TString& name) {
  if (res != resDone) throw std::runtime_error(NativeNameOf(name) + ": " + TextOf(res));
}
