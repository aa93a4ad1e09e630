// The layer for the standard library, and what that library has itself: all bytes one by one or in pieces, lines and numbers by
// streams.

#include <algorithm>
#include <ext/rope>
#include <sstream>

#include "Ours.h"
#include "vf/Ranges.h"
#include "vf/Streams.h"

namespace {

// ---- Line ends ----

std::shared_ptr<VFile> FileOf(const Setting& setting) { return Loaded<VFile>(setting); }

std::shared_ptr<std::string> StringOf(const Setting& setting) {
  return std::make_shared<std::string>(Content(setting.content));
}

std::shared_ptr<__gnu_cxx::crope> RopeOf(const Setting& setting) {
  const std::string content = Content(setting.content);
  return std::make_shared<__gnu_cxx::crope>(content.data(), content.size());
}

template <typename Range>
std::ptrdiff_t LineEndsIn(const Range& range) {
  return std::count(range.begin(), range.end(), '\n');
}

std::ptrdiff_t ByBytes(VFile& file) { return LineEndsIn(vf::Bytes(file)); }

std::ptrdiff_t ByPieces(VFile& file) {
  std::ptrdiff_t count = 0;
  for (const std::string_view piece : vf::Pieces(file)) count += LineEndsIn(piece);
  return count;
}

std::ptrdiff_t ByReadByte(VFile& file) {
  std::ptrdiff_t count = 0;
  unsigned char byte = 0;
  file.Reset();
  for (file.ReadByte(byte); !file.eof; file.ReadByte(byte)) count += byte == '\n' ? 1 : 0;
  return count;
}

std::ptrdiff_t InString(std::string& text) { return LineEndsIn(text); }

std::ptrdiff_t InRope(__gnu_cxx::crope& rope) {
  const __gnu_cxx::crope& text = rope;
  return LineEndsIn(text);
}

std::ptrdiff_t InRopeByPieces(__gnu_cxx::crope& rope) {
  std::ptrdiff_t count = 0;
  char piece[kPage];
  for (std::size_t at = 0; at < rope.size(); at += kPage) {
    count += LineEndsIn(std::string_view(piece, rope.copy(at, kPage, piece)));
  }
  return count;
}

/// Counts line ends. All give the same number.
template <auto kSource, auto kCount>
Contestant LineEnds(const Setting& setting) {
  const auto source = kSource(setting);
  const auto count = std::make_shared<std::ptrdiff_t>(0);
  return {[=] { *count = kCount(*source); }, [=] { return static_cast<std::uint64_t>(*count); }};
}

// ---- Streams ----

/// The length of all lines that a stream gives.
template <auto kSource, typename Stream>
Contestant Lines(const Setting& setting) {
  const auto source = kSource(setting);
  const auto length = std::make_shared<std::uint64_t>(0);
  const auto run = [=] {
    Stream in(*source);
    *length = 0;
    for (std::string line; std::getline(in, line);) *length += line.size();
  };
  return {run, [=] { return *length; }};
}

void WriteNumbers(std::ostream& out, std::int32_t count) {
  for (std::int32_t i = 0; i < count; ++i) out << i << ' ' << count - i << '\n';
  Expect(!out.flush().fail(), "numbers into a stream");
}

Contestant NumbersIntoFile(const Setting& setting) {
  UseSettings(setting);
  const auto file = std::make_shared<VFile>();
  const auto run = [=] {
    vf::OStream out(*file);
    WriteNumbers(out, setting.count);
  };
  return {run, [=] { return SumOf(*file); },
          [=] {
            *file = "";
            file->Reset();
          }};
}

Contestant NumbersIntoString(const Setting& setting) {
  const auto text = std::make_shared<std::ostringstream>();
  const auto prepare = [=] { *text = std::ostringstream(); };
  return {[=] { WriteNumbers(*text, setting.count); }, [=] { return SumOf(text->str()); }, prepare};
}

}  // namespace

std::vector<ContestantEntry> LayerContestants() {
  return {
      {"line ends/bytes", LineEnds<FileOf, ByBytes>},
      {"line ends/pieces", LineEnds<FileOf, ByPieces>},
      {"line ends/ReadByte", LineEnds<FileOf, ByReadByte>},
      {"line ends/string", LineEnds<StringOf, InString>},
      {"line ends/rope", LineEnds<RopeOf, InRope>},
      {"line ends/rope's pieces", LineEnds<RopeOf, InRopeByPieces>},
      {"stream/vfile", Lines<FileOf, vf::IStream>},
      {"stream/string", Lines<StringOf, std::istringstream>},
      {"numbers/vfile", NumbersIntoFile},
      {"numbers/string", NumbersIntoString},
  };
}
