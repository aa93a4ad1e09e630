/// @file
/// Text files in every form, loaded and saved, against a decoder of its own.
#pragma once

#include <fstream>
#include <iterator>
#include <random>
#include <utility>
#include <vector>

#include "fuzz/Fuzz.h"
#include "support/CodePage1252.h"
#include "support/Texts.h"

namespace fuzz {

using Code = std::uint32_t;

/// Of the forms, by their number.
inline const std::string kMarks[] = {"", "\xFF\xFE", "\xFE\xFF", "\xEF\xBB\xBF"};

/// The well-formed sequences of UTF-8: the first and last value of each byte.
using Sequence = std::vector<std::pair<Code, Code>>;
// clang-format off
inline const Sequence kSequences[] = {
    {{0x00, 0x7F}}, {{0xC2, 0xDF}, {0x80, 0xBF}}, {{0xE0, 0xE0}, {0xA0, 0xBF}, {0x80, 0xBF}},
    {{0xE1, 0xEC}, {0x80, 0xBF}, {0x80, 0xBF}}, {{0xED, 0xED}, {0x80, 0x9F}, {0x80, 0xBF}},
    {{0xEE, 0xEF}, {0x80, 0xBF}, {0x80, 0xBF}}, {{0xF0, 0xF0}, {0x90, 0xBF}, {0x80, 0xBF}, {0x80, 0xBF}},
    {{0xF1, 0xF3}, {0x80, 0xBF}, {0x80, 0xBF}, {0x80, 0xBF}},
    {{0xF4, 0xF4}, {0x80, 0x8F}, {0x80, 0xBF}, {0x80, 0xBF}}};
// clang-format on

inline Code ByteAt(const std::string& bytes, std::size_t at) { return static_cast<unsigned char>(bytes[at]); }

/// Each beginning of a sequence that does not go on is one U+FFFD.
inline TString FromUtf8(const std::string& bytes) {
  TString units;
  for (std::size_t at = 0; at < bytes.size();) {
    std::size_t longest = 1;
    Code character = 0xFFFD;
    for (const Sequence& sequence : kSequences) {
      Code value = 0;
      std::size_t n = 0;
      for (; n < sequence.size() && at + n < bytes.size(); ++n) {
        const Code byte = ByteAt(bytes, at + n);
        if (byte < sequence[n].first || byte > sequence[n].second) break;
        value = value * 64 + byte % (n > 0 ? 64 : sequence.size() == 1 ? 128 : 128u >> sequence.size());
      }
      longest = std::max(longest, n);
      if (n == sequence.size()) character = value;
    }
    at += longest;
    if (character > 0xFFFF) units += static_cast<TChar>(0xD7C0 + character / 1024);
    units += static_cast<TChar>(character > 0xFFFF ? 0xDC00 + character % 1024 : character);
  }
  return units;
}

inline TString WithoutUnpaired(TString units, TChar replacement) {
  for (std::size_t at = 0; at < units.size(); ++at) {
    const bool pair = units[at] / 1024 == 54 && at + 1 < units.size() && units[at + 1] / 1024 == 55;
    if (pair) ++at;
    if (!pair && units[at] / 2048 == 27) units[at] = replacement;
  }
  return units;
}

/// Whether the ANSI form is UTF-8; else it is 1252.
inline bool IsUtf8Active() { return host::GetACP() == host::CP_UTF8; }

/// Two bytes as a unit each, the one at `high` of them the high one.
inline TString FromUtf16(const std::string& bytes, std::size_t high) {
  TString units;
  for (std::size_t at = 0; at + 1 < bytes.size(); at += 2) {
    units += static_cast<TChar>(ByteAt(bytes, at + high) * 256 + ByteAt(bytes, at + 1 - high));
  }
  return units;
}

/// Loads the file, which holds `bytes`, and gives what must be in the text, a last odd byte of it included.
inline std::string CheckLoad(support::TextPeek& text, const TString& file, const std::string& bytes) {
  std::size_t form = 3;
  while (!bytes.starts_with(kMarks[form])) --form;
  const std::string rest = bytes.substr(kMarks[form].size());
  const TString units = form == TCharVFile::encUtf16     ? FromUtf16(rest, 1)
                        : form == TCharVFile::encUtf16BE ? FromUtf16(rest, 0)
                        : form == TCharVFile::encAnsi && !IsUtf8Active()
                            ? support::From1252(rest.substr(0, rest.find('\0')))
                            : FromUtf8(rest.substr(0, rest.find('\0')));
  TCharVFile::Encoding encoding = TCharVFile::encUtf8;
  text.LoadText(file, encoding, 0);
  Check(text.res == resDone && encoding == static_cast<int>(form) && text.pos == 0 && !text.eof);
  Check(text.ToString() == units && text.GetTCharPos() == text.TCharLength());
  return form == TCharVFile::encUtf16 ? rest : support::Bytes(units);
}

/// Loads the bytes, saves them in a form, from blocks of 1 to 9 bytes if `inSmallBlocks`, and loads that. A number that is none stands
/// for the ANSI form.
inline void CheckForm(const std::filesystem::path& path, const std::string& bytes, int number, bool withMark,
                      bool inSmallBlocks = false) {
  const std::u16string units16 = path.u16string();
  const TString name(units16.begin(), units16.end());
  const int form = number >= 0 && number < 4 ? number : TCharVFile::encAnsi;
  std::ofstream(path, std::ios::binary) << bytes;
  support::TextPeek text;
  const std::string content = CheckLoad(text, name, bytes);
  const TString units = FromUtf16(content, 1);
  if (inSmallBlocks) {
    std::minstd_rand random(static_cast<unsigned>(content.size()));
    text = TSTR("");
    support::FillInSmallBlocks(text, content, random);
  }
  text.SaveText(name, true, static_cast<TCharVFile::Encoding>(number), withMark);
  std::ifstream file(path, std::ios::binary);
  const std::string saved(std::istreambuf_iterator<char>(file), {});
  file.close();
  const std::string mark = withMark ? kMarks[form] : "";
  Check(text.res == resDone && saved.starts_with(mark));
  Check(text.pos == (form == TCharVFile::encUtf16 ? text.length : 2 * text.TCharLength()));
  const std::string rest = saved.substr(mark.size());
  if (form == TCharVFile::encUtf16) Check(rest == content);
  if (form == TCharVFile::encUtf16BE) Check(FromUtf16(rest, 0) == units && rest.size() == 2 * units.size());
  if (form == TCharVFile::encUtf8) Check(FromUtf8(rest) == WithoutUnpaired(units, 0xFFFD));
  if (form == TCharVFile::encAnsi) {
    Check(IsUtf8Active() ? FromUtf8(rest) == WithoutUnpaired(units, '?') : rest == support::To1252(units));
  }
  CheckLoad(text, name, saved);
}

}  // namespace fuzz
