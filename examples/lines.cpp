// lines: prints lines FIRST to LAST of a file of up to 2^31-1 bytes, each with its number and its indent, and tells how many
// lines there are if that is fewer. The file does not have to fit into memory, nor does a line.

#include <charconv>
#include <cstdio>
#include <string>

#include "System.h"
#include "Terminal.h"
#include "vf/Ranges.h"

namespace {

/// Gives the number of lines up to `last`, or of all. A line end at the end of the file begins no further line here.
std::int32_t PrintLines(VFile& text, std::int32_t first, std::int32_t last, Shown& shown) {
  std::int32_t number = 0;
  for (std::int32_t at = 0; at < text.Length() && number < last;) {
    std::int32_t start;
    std::int32_t size;
    std::int32_t eolSize;
    text.LineSize(at, start, size, eolSize);
    at = start + size;
    if (++number == first) shown.Wipe();
    if (number >= first) {
      std::printf("%9d %3d  ", number, text.LineIndent(start));
      for (const auto piece : vf::Pieces(text, start, at - eolSize)) std::fwrite(piece.data(), 1, piece.size(), stdout);
      std::putchar('\n');
    } else if (!shown.Show(at, text.Length())) {
      throw vf::Error(resNotDone);
    }
  }
  return number;
}

/// 0 if it is no number above 0.
std::int32_t NumberOf(const vf::Name& argument) {
  const std::string text = argument.Utf8();
  const char* const behind = text.data() + text.size();
  std::int32_t number = 0;
  const auto [end, error] = std::from_chars(text.data(), behind, number);
  return error == std::errc() && end == behind && number > 0 ? number : 0;
}

}  // namespace

int Run(const Arguments& arguments) {
  const std::size_t count = arguments.size();
  const std::int32_t first = count > 1 ? NumberOf(arguments[1]) : 1;
  const std::int32_t last = count > 2 ? NumberOf(arguments[2]) : count > 1 ? first : INT32_MAX;
  if (count < 1 || count > 3 || first == 0 || last < first) {
    std::fputs("usage: lines FILE [FIRST [LAST]]\n", stderr);
    return 2;
  }
  try {
    VFile::SetMaxCacheSize(1024);
    VFile text;
    const vf::Name& name = arguments[0];
    std::int32_t lines;
    {
      Shown shown(text, "loading");
      text.Load(name, FILE_SHARE_READ);
      vf::Check(text.res, name);
      shown.Next("counting");
      lines = PrintLines(text, first, last, shown);
    }
    if (lines < last && count > 1) std::fprintf(stderr, "lines: %s has %d lines\n", name.Utf8().c_str(), lines);
    return lines < first && count > 1 ? 1 : 0;
  } catch (const std::exception& failure) {
    std::fprintf(stderr, "lines: %s\n", failure.what());
    return 1;
  }
}
