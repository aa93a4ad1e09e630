// Text files of all bytes and in every form, loaded and saved, against a decoder of its own.
//
// An input is a line of three numbers: of letters to put first, so that what follows lies across the border of a block, the
// form to save in, and 1 for a mark in it; then the bytes of the text, where "\" with two hexadecimal digits stands for a byte.
// The bytes are loaded behind each of the four marks.

#include <fstream>
#include <iterator>
#include <sstream>
#include <utility>
#include <vector>

#include "fuzz/Fuzz.h"
#include "support/Texts.h"

using fuzz::Check, support::TextPeek;
using Code = std::uint32_t;

namespace {

/// Of the forms, by their number.
const std::string kMarks[] = {"", "\xFF\xFE", "\xFE\xFF", "\xEF\xBB\xBF"};

/// The well-formed sequences of UTF-8: the first and last value of each byte.
using Sequence = std::vector<std::pair<Code, Code>>;
const Sequence kSequences[] = {{{0x00, 0x7F}},
                               {{0xC2, 0xDF}, {0x80, 0xBF}},
                               {{0xE0, 0xE0}, {0xA0, 0xBF}, {0x80, 0xBF}},
                               {{0xE1, 0xEC}, {0x80, 0xBF}, {0x80, 0xBF}},
                               {{0xED, 0xED}, {0x80, 0x9F}, {0x80, 0xBF}},
                               {{0xEE, 0xEF}, {0x80, 0xBF}, {0x80, 0xBF}},
                               {{0xF0, 0xF0}, {0x90, 0xBF}, {0x80, 0xBF}, {0x80, 0xBF}},
                               {{0xF1, 0xF3}, {0x80, 0xBF}, {0x80, 0xBF}, {0x80, 0xBF}},
                               {{0xF4, 0xF4}, {0x80, 0x8F}, {0x80, 0xBF}, {0x80, 0xBF}}};

Code ByteAt(const std::string& bytes, std::size_t at) { return static_cast<unsigned char>(bytes[at]); }

/// Each beginning of a sequence that does not go on is one U+FFFD.
TString FromUtf8(const std::string& bytes) {
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

TString WithoutUnpaired(TString units, TChar replacement) {
  for (std::size_t at = 0; at < units.size(); ++at) {
    const bool pair = units[at] / 1024 == 54 && at + 1 < units.size() && units[at + 1] / 1024 == 55;
    if (pair) ++at;
    if (!pair && units[at] / 2048 == 27) units[at] = replacement;
  }
  return units;
}

/// Two bytes as a unit each, the one at `high` of them the high one.
TString FromUtf16(const std::string& bytes, std::size_t high) {
  TString units;
  for (std::size_t at = 0; at + 1 < bytes.size(); at += 2) {
    units += static_cast<TChar>(ByteAt(bytes, at + high) * 256 + ByteAt(bytes, at + 1 - high));
  }
  return units;
}

const TString kName = TSTR("text");

/// Loads the file, which holds `bytes`, and gives what must be in the text, a last odd byte of it included.
std::string CheckLoad(TextPeek& text, const std::string& bytes) {
  std::size_t form = 3;
  while (!bytes.starts_with(kMarks[form])) --form;
  const std::string rest = bytes.substr(kMarks[form].size());
  const TString units = form == TCharVFile::encUtf16     ? FromUtf16(rest, 1)
                        : form == TCharVFile::encUtf16BE ? FromUtf16(rest, 0)
                                                         : FromUtf8(rest.substr(0, rest.find('\0')));
  TCharVFile::Encoding encoding = TCharVFile::encUtf8;
  text.LoadText(kName, encoding, 0);
  Check(text.res == resDone && encoding == static_cast<int>(form) && text.GetTCharPos() == 0);
  Check(text.ToString() == units && text.GetTCharPos() == text.TCharLength());
  return form == TCharVFile::encUtf16 ? rest : support::Bytes(units);
}

/// Loads the bytes, saves them in a form, and loads that.
void CheckForm(const std::string& bytes, unsigned form, bool withMark) {
  std::ofstream("text", std::ios::binary) << bytes;
  TextPeek text;
  const std::string content = CheckLoad(text, bytes);
  const TString units = FromUtf16(content, 1);
  text.SaveText(kName, true, static_cast<TCharVFile::Encoding>(form), withMark);
  std::ifstream file("text", std::ios::binary);
  const std::string saved(std::istreambuf_iterator<char>(file), {});
  const std::string mark = withMark ? kMarks[form] : "";
  Check(text.res == resDone && saved.starts_with(mark));
  const std::string rest = saved.substr(mark.size());
  if (form == TCharVFile::encUtf16) Check(rest == content);
  if (form == TCharVFile::encUtf16BE) Check(FromUtf16(rest, 0) == units && rest.size() == 2 * units.size());
  if (form == TCharVFile::encUtf8) Check(FromUtf8(rest) == WithoutUnpaired(units, 0xFFFD));
  if (form == TCharVFile::encAnsi) Check(FromUtf8(rest) == WithoutUnpaired(units, '?'));
  CheckLoad(text, saved);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
  static const int utf8 = setenv("LC_ALL", "C.UTF-8", 1);
  static const fuzz::Scratch scratch;
  Check(utf8 == 0);
  const std::string input(reinterpret_cast<const char*>(data), size);
  unsigned letters = 0;
  unsigned form = 0;
  unsigned withMark = 0;
  std::istringstream(input) >> letters >> form >> withMark;
  const std::u16string rest = fuzz::Unescaped(input.substr(std::min(input.find('\n'), input.size() - 1) + 1), '\\', 2);
  const std::string bytes = std::string(letters % 3000, 'a') + std::string(rest.begin(), rest.end());
  for (const std::string& mark : kMarks) CheckForm(mark + bytes, form % 4, withMark != 0);
  return 0;
}
