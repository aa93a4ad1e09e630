/// @file
/// Texts whose parts, changes and blocks a test can see, and a search by hand.
#pragma once

#include <algorithm>
#include <sstream>
#include <string>

#include "host/Host.h"
#include "support/Chains.h"
#include "tcharvfile/TCharVFile.h"

namespace support {

/// A text that notes what goes through its slots and hooks, and can refuse changes.
struct TextPeek : TCharVFile {
  using TCharVFile::operator=;
  using VFile::flags, VFile::length, VFile::pos, VFile::ReadAt, VFile::ReplaceFile, VFile::SetPos;

  void ReplaceBuf(std::int32_t at, std::int32_t del, const void* bytes, std::int32_t count) override {
    Note("b", at, del, count);
    VFile::ReplaceBuf(at, del, bytes, count);
  }
  void ReplaceTxt(std::int32_t at, std::int32_t del, const VFile& source, std::int32_t from, std::int32_t n) override {
    Note("t", at, del, from, n);
    VFile::ReplaceTxt(at, del, source, from, n);
  }
  void ReplaceFile(std::int32_t at, std::int32_t del, HANDLE source, std::int32_t count) override {
    Note("f", at, del, count);
    VFile::ReplaceFile(at, del, source, count);
  }
  std::int32_t PreChange(std::int32_t at, std::int32_t del, std::int32_t ins) const override {
    if (notesHooks) Note("?", at, del, ins);
    return allowed-- == 0 ? resNotSupported : resDone;
  }
  void PostChange(std::int32_t at, std::int32_t del, std::int32_t ins) override {
    if (notesHooks) Note("!", at, del, ins);
  }
  template <typename... Argument>
  void Note(const char* call, Argument... arguments) const {
    log += std::string(" ") + call;
    (..., (log += arguments == MaxLen ? "max," : std::to_string(arguments) + ","));
    log.pop_back();
  }
  /// The content, with everything else left as it is.
  TString Units() const { return TCharVFile(*this).ToString(); }

  mutable std::string log;
  mutable int allowed = -1;  // changes before the one that is refused
  bool notesHooks = false;
};

/// The bytes or units that a text has in hexadecimal.
template <typename String>
String Hex(const std::string& row) {
  std::istringstream in(row);
  String values;
  for (unsigned value; in >> std::hex >> value;) values += static_cast<typename String::value_type>(value);
  return values;
}

/// The units as they lie in a text.
inline std::string Bytes(const TString& units) {
  return {reinterpret_cast<const char*>(units.data()), units.size() * sizeof(TChar)};
}

/// Makes the bytes the content of an empty text, in blocks of 1 to 9 bytes, and moves to its start.
template <typename Random>
void FillInSmallBlocks(TextPeek& text, const std::string& bytes, Random& random) {
  for (std::size_t at = 0; at < bytes.size(); at = Size(text.length)) {
    const std::string block = bytes.substr(at, 1 + random() % 9);
    text.ReplaceFile(text.length, 0, Pipe(block).Handle(), Count(block.size()));
  }
  text.Reset();
}

/// The start of the match that a search from `at` finds, or -1. Tries every place.
inline int NaiveFind(const TString& content, const TString& text, int at, bool back, bool ignoreCase, bool wholeWord) {
  const int n = Count(text.size());
  const int last = Count(content.size()) - n;
  const int step = back ? -1 : 1;
  const auto fold = [&](TChar unit) { return ignoreCase && unit >= 'a' && unit <= 'z' ? unit - 32 : unit; };
  const auto isWord = [&](int i) { return i >= 0 && i < last + n && host::iswalnum(content[Size(i)]); };
  for (int i = back ? std::min(at - n, last) : at; i >= 0 && i <= last; i += step) {
    if (!std::equal(text.begin(), text.end(), content.begin() + i,
                    [&](TChar a, TChar b) { return fold(a) == fold(b); })) {
      continue;
    }
    if (!wholeWord || (!isWord(i - 1) && !isWord(i + n))) return i;
    i += step * (n - 1);
  }
  return -1;
}

}  // namespace support
