#include "Contents.h"

#include <filesystem>
#include <iterator>
#include <random>

#include "HostFile.h"
#include "Measuring.h"

namespace {

constexpr const char32_t* kWords[] = {
    U"the",  U"of",    U"and",    U"to",    U"in",   U"is",    U"you",   U"that",  U"it",    U"he",     U"was",
    U"for",  U"on",    U"are",    U"as",    U"with", U"his",   U"they",  U"I",     U"at",    U"be",     U"this",
    U"have", U"from",  U"or",     U"one",   U"had",  U"by",    U"word",  U"but",   U"not",   U"what",   U"all",
    U"were", U"we",    U"when",   U"your",  U"can",  U"said",  U"there", U"use",   U"an",    U"each",   U"which",
    U"she",  U"do",    U"how",    U"their", U"if",   U"will",  U"up",    U"other", U"about", U"out",    U"many",
    U"then", U"them",  U"these",  U"so",    U"some", U"her",   U"would", U"make",  U"like",  U"him",    U"into",
    U"time", U"has",   U"look",   U"two",   U"more", U"write", U"go",    U"see",   U"size",  U"number", U"no",
    U"way",  U"could", U"people", U"My",    U"than", U"first", U"water", U"been",  U"call",  U"who",    U"oil",
    U"its",  U"now",   U"find",   U"long",  U"down", U"day",   U"did",   U"get",
};
constexpr const char32_t* kForeign[] = {U"größe", U"façade", U"λόγος", U"слово", U"日本語",
                                        U"文字",  U"한국어", U"𝄞𝄢",    U"😀"};

bool IsMixed(ContentKind kind) {
  return kind == ContentKind::kUtf8 || kind == ContentKind::kUtf16 || kind == ContentKind::kUtf16Be;
}

std::string_view MarkOf(ContentKind kind) {
  switch (kind) {
    case ContentKind::kAsciiUtf8:
    case ContentKind::kUtf8:
      return "\xEF\xBB\xBF";
    case ContentKind::kUnits:
    case ContentKind::kUtf16:
      return "\xFF\xFE";
    case ContentKind::kUtf16Be:
      return "\xFE\xFF";
    default:
      return "";
  }
}

void AppendUtf8(std::string& bytes, char32_t character) {
  const auto append = [&](unsigned mark, int shift) {
    bytes += static_cast<char>(mark | (character >> shift & (mark == 0x80 ? 0x3Fu : 0x1Fu)));
  };
  if (character < 0x80) {
    bytes += static_cast<char>(character);
    return;
  }
  if (character < 0x800) {
    append(0xC0, 6);
  } else {
    if (character < 0x10000) {
      append(0xE0, 12);
    } else {
      append(0xF0, 18);
      append(0x80, 12);
    }
    append(0x80, 6);
  }
  append(0x80, 0);
}

void AppendUtf16(std::string& bytes, char32_t character, bool highFirst) {
  if (character >= 0x10000) {
    AppendUtf16(bytes, 0xD800 + ((character - 0x10000) >> 10), highFirst);
    character = 0xDC00 + (character & 0x3FF);
  }
  const char low = static_cast<char>(character & 0xFF);
  const char high = static_cast<char>(character >> 8);
  bytes += highFirst ? high : low;
  bytes += highFirst ? low : high;
}

void Append(std::string& bytes, const std::u32string& line, ContentKind kind) {
  for (const char32_t character : line) {
    if (kind == ContentKind::kUtf16Be || kind == ContentKind::kUtf16 || kind == ContentKind::kUnits) {
      AppendUtf16(bytes, character, kind == ContentKind::kUtf16Be);
    } else {
      AppendUtf8(bytes, character);
    }
  }
}

class Lines {
 public:
  explicit Lines(bool mixed) : mixed_(mixed) {}
  std::u32string Next() {
    std::u32string line;
    while (line.size() < 79) {
      line += Word();
      line += U' ';
    }
    line.resize(79);
    return line + U'\n';
  }

 private:
  const char32_t* Word() {
    if (mixed_ && random_() % 12 == 0) return kForeign[random_() % std::size(kForeign)];
    return kWords[random_() % std::size(kWords)];
  }
  const bool mixed_;
  std::mt19937 random_{5};
};

/// Puts the marks into a piece of the text.
void Mark(std::string& piece) {
  for (std::size_t at = 0; at < piece.size(); at += kMarkDistance) {
    piece.replace(at + at / 4096 * 977 % 4000, sizeof kMark - 1, kMark);
  }
}

}  // namespace

std::string ContentFile(const std::string& directory, ContentKind kind, std::int64_t size) {
  constexpr std::size_t kPiece = 1 << 20;
  const std::string name =
      directory + "/content-" + std::to_string(static_cast<int>(kind)) + "-" + std::to_string(size);
  if (std::filesystem::exists(name)) return name;
  HostFile file = HostFile::Create(name);
  Lines lines(IsMixed(kind));
  std::string bytes(MarkOf(kind));
  auto left = static_cast<std::size_t>(size);
  for (bool full = false; left > 0;) {
    while (bytes.size() < std::min(kPiece, left)) {
      const std::size_t before = bytes.size();
      if (!full) Append(bytes, lines.Next(), kind);
      full = full || bytes.size() > left;
      if (!full) continue;
      // A last line that does not fit becomes dots.
      bytes.resize(before);
      Append(bytes, U".", kind);
    }
    std::string rest = bytes.substr(std::min(kPiece, left));
    bytes.resize(std::min(kPiece, left));
    if (kind == ContentKind::kMarked) Mark(bytes);
    file.Write(bytes.data(), bytes.size());
    left -= bytes.size();
    bytes.swap(rest);
  }
  return name;
}
