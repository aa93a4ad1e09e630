#include "hsys/Strings.h"

#include <algorithm>
#include <string>

#include "host/Host.h"
#include "host/Line.h"
#include "hsys/Require.h"

namespace {

bool Require(bool holds, std::int32_t line = VFILE_LINE) { return hsys::Require(TSTR("HSys"), holds, line); }

template <typename Char>
std::size_t LengthOf(const Char* text) {
  return std::char_traits<Char>::length(text);
}

/// Copies what fits of `source` to `dest`, which has room for `size` characters, and terminates it.
template <typename Char>
void CopyCut(Char* dest, std::size_t size, const Char* source) {
  const std::size_t count = source == nullptr ? 0 : std::min(LengthOf(source), size - 1);
  if (count > 0) std::char_traits<Char>::copy(dest, source, count);
  dest[count] = 0;
}

template <typename Char>
void Assign(Char* dest, std::uint32_t size, const Char* source) {
  if (!Require(dest != nullptr) || !Require(size > 0)) return;
  CopyCut(dest, size, source);
}

template <typename Char>
void Append(Char* dest, std::uint32_t size, const Char* source) {
  if (!Require(dest != nullptr) || !Require(size > 0)) return;
  const std::size_t length = LengthOf(dest);
  if (!Require(length < size)) return;
  CopyCut(dest + length, size - length, source);
}

/// Makes the string the units from `first` to `end` of it.
void Keep(TChar* text, std::size_t first, std::size_t end) {
  if (first > 0) std::char_traits<TChar>::move(text, text + first, end - first);
  text[end - first] = 0;
}

std::size_t FirstNonBlank(const TChar* text) {
  std::size_t first = 0;
  while (IsBlank(text[first])) ++first;
  return first;
}

std::size_t EndOfNonBlank(const TChar* text, std::size_t first) {
  std::size_t end = first + LengthOf(text + first);
  while (end > first && IsBlank(text[end - 1])) --end;
  return end;
}

}  // namespace

void AssignStr(TChar* dest, std::uint32_t size, const TChar* source) { Assign(dest, size, source); }
void AssignStrW(TChar* dest, std::uint32_t size, const TChar* source) { Assign(dest, size, source); }
void AssignStrA(char* dest, std::uint32_t size, const char* source) { Assign(dest, size, source); }
void AppendStr(TChar* dest, std::uint32_t size, const TChar* source) { Append(dest, size, source); }
void AppendStrW(TChar* dest, std::uint32_t size, const TChar* source) { Append(dest, size, source); }
void AppendStrA(char* dest, std::uint32_t size, const char* source) { Append(dest, size, source); }

void CondAssignStr(TChar* dest, std::uint32_t size, const TChar* source) {
  if (dest != nullptr) Assign(dest, size, source);
}

void CondAppendStr(TChar* dest, std::uint32_t size, const TChar* source) {
  if (dest != nullptr) Append(dest, size, source);
}

bool EqualStr(const TChar* left, const TChar* right) {
  while (*left != 0 && *left == *right) {
    ++left;
    ++right;
  }
  return *left == *right;
}

bool EqualStrI(const TChar* left, const TChar* right) { return host::_wcsicmp(left, right) == 0; }

bool IsBlank(TChar unit) { return unit == 9 || unit == 10 || unit == 12 || unit == 13 || unit == 32; }

bool IsBlank(const TChar* text) { return text == nullptr || text[FirstNonBlank(text)] == 0; }

void Trim(TChar* text) {
  if (text == nullptr) return;
  const std::size_t first = FirstNonBlank(text);
  Keep(text, first, EndOfNonBlank(text, first));
}

void TrimLeft(TChar* text) {
  if (text == nullptr) return;
  const std::size_t first = FirstNonBlank(text);
  Keep(text, first, first + LengthOf(text + first));
}

void TrimRight(TChar* text) {
  if (text != nullptr) text[EndOfNonBlank(text, 0)] = 0;
}

void TrimZeroes(TChar* text) {
  if (text == nullptr) return;
  std::size_t end = LengthOf(text);
  const std::size_t dot = static_cast<std::size_t>(std::find(text, text + end, TChar{'.'}) - text);
  while (end > dot && text[end - 1] == '0') --end;
  if (end > dot && text[end - 1] == '.') --end;
  if (end == 0) text[end++] = '0';
  text[end] = 0;
}
